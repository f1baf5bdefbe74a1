#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "platform/log.h"
#include "server/service_announcer.h"

struct sd_bus;
struct sd_bus_message;

namespace quietlark {

/// One connection to the system bus, and what Avahi has been told over it. One thread.
class AvahiSession {
public:
    /// Null when there is no bus.
    [[nodiscard]] static std::unique_ptr<AvahiSession> open(Log& log);
    ~AvahiSession();
    AvahiSession(const AvahiSession&) = delete;
    AvahiSession& operator=(const AvahiSession&) = delete;

    /// Makes Avahi announce just that, or nothing; to be asked again after every wait(). False when
    /// it cannot: it is not running, does not answer or has no room.
    [[nodiscard]] bool update(const std::optional<ServiceAnnouncement>& wanted);

    /// Waits until the bus has something to say, and hears it, until `wakeEvent` is readable, or
    /// until the time is over, if there is a limit. False when the connection is lost.
    [[nodiscard]] bool wait(int wakeEvent, std::optional<std::chrono::milliseconds> limit);

private:
    struct Closer {
        void operator()(sd_bus* bus) const;
    };

    AvahiSession(sd_bus* bus, Log& log);
    [[nodiscard]] bool subscribe();
    void heard(sd_bus_message* signal);

    enum class Added { Yes, NameTaken, No };

    [[nodiscard]] bool isServerRunning() const;
    [[nodiscard]] bool publish(const ServiceAnnouncement& wanted);
    [[nodiscard]] bool newGroup();
    [[nodiscard]] Added addService(const ServiceAnnouncement& wanted) const;
    [[nodiscard]] bool updateTxt(const ServiceAnnouncement& wanted) const;
    [[nodiscard]] bool callGroup(const char* method) const;
    void takeAnotherName();
    void forgetGroup();
    void freeGroup();

    std::unique_ptr<sd_bus, Closer> m_bus;
    Log& m_log;
    std::string m_group;  ///< the object path of what we announce
    std::string m_requestedName;
    std::string m_name;  ///< that one, or another when somebody else has it
    std::optional<ServiceAnnouncement> m_published;  ///< as it was wanted
    bool m_hasFailed = false;                        ///< since it was last published
};

}  // namespace quietlark
