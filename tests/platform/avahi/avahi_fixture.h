#pragma once

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "peers/avahi_peer.h"
#include "peers/avahi_publisher.h"
#include "platform/linux/avahi/avahi_service_browser.h"
#include "platform/qt/qt_scheduler.h"
#include "support/wait.h"

namespace quietlark {

/// The adapter beside a daemon of its own. Skips where there can be no such daemon.
class AvahiFixture : public testing::Test {
protected:
    void SetUp() override {
        if (!AvahiPeer::canRun()) GTEST_SKIP() << "a network of one's own takes root";
        peer = std::make_unique<AvahiPeer>(network);
        publisher = std::make_unique<AvahiPublisher>(peer->busAddress());
        bus = std::make_unique<SystemBus>(scheduler, peer->busAddress());
        daemon = std::make_unique<AvahiDaemon>(*bus);
        backend = std::make_unique<AvahiServiceBrowser>(*daemon, scheduler);
    }

    AvahiPeer::Network network = AvahiPeer::Network::Loopback;
    QtScheduler scheduler;
    std::unique_ptr<AvahiPeer> peer;
    std::unique_ptr<AvahiPublisher> publisher;
    std::unique_ptr<SystemBus> bus;
    std::unique_ptr<AvahiDaemon> daemon;
    std::unique_ptr<AvahiServiceBrowser> backend;
};

}  // namespace quietlark
