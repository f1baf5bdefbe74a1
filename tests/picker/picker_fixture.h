#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "fakes/fake_processor.h"
#include "picker/server_picker_model.h"
#include "servers/hardware_profile.h"
#include "servers/server_ranker.h"
#include "state/app_state_fixture.h"

namespace quietlark {

/// The choice of a server on a computer and a network that the test plays. This computer is an
/// M1 Pro (estimate 10.0) unless the test says otherwise before the first question.
class PickerFixture : public AppStateFixture {
protected:
    using Phase = ServerPickerModel::Phase;
    using Card = ServerPickerModel::CardChoice;
    using WayOut = ServerPickerModel::WayOut;
    using Probe = ProbeState::Case;

    static QString text(const char* utf8) { return QString::fromUtf8(utf8); }

    static Config discoveredRemote() {
        Config config = unconfigured();
        config.serverMode = DiscoveredRemote{text("Box"), text("box.local"), 8001};
        return config;
    }

    static Config manual(const char* host, std::int64_t port, const char* scheme) {
        Config config = unconfigured();
        config.serverMode = ManualRemote{text(host), port, text(scheme)};
        return config;
    }

    /// The model, which the first call creates.
    ServerPickerModel& model() {
        if (!m_model) {
            m_model =
                std::make_unique<ServerPickerModel>(state(), ranker, resolver, scheduler, options);
        }
        return *m_model;
    }
    void dropModel() { m_model.reset(); }

    /// A server appears on the network, which is searched from the first one on.
    void publish(const char* name, std::optional<const char*> rtf = std::nullopt) {
        if (!std::exchange(m_isBrowsing, true)) state().discoveredServers().start();
        ResolvedService says{text(name).toLower() + text(".local"), 8001, std::nullopt};
        if (rtf) says.txtRecord = ResolvedService::TxtRecord{{"rtf", *rtf}};
        browser.publish(text(name), says);
        scheduler.runPosted();
        hostName.answer(text("this-computer"));
        scheduler.runPosted();
    }
    /// The server of that name answers from another host as well.
    void publishAlsoAt(const char* name, const char* host) {
        browser.reportResolved(text(name), {text(host), 8001, std::nullopt});
        scheduler.runPosted();
    }
    void withdraw(const char* name) {
        browser.withdraw(text(name));
        scheduler.runPosted();
    }

    static QString idOf(const char* name) {
        return text(name) + u'|' + text(name).toLower() + text(".local:8001");
    }

    /// From now on a transcription server that names this model answers there.
    void serverAnswersAt(const char* baseAddress, const char* modelName = "whisper-1") {
        network.respondTo(text(baseAddress) + text("/api/v1/models"), 200,
                          QByteArray("{\"data\":[{\"id\":\"") + modelName + "\"}]}");
    }

    void type(const char* address) { model().setManualHostPort(text(address)); }

    /// The user pauses, the check begins, and the network answers.
    void pauseAndCheck() {
        scheduler.advance(AddressProbe::typingPause);
        network.runAnswers();
    }

    ServerMode storedMode() const { return Config::load(files.config).serverMode; }
    bool isSaved() const { return QFile::exists(files.config); }

    FakeProcessor processor{"Apple M1 Pro"};
    HardwareProfile hardware{processor};
    ServerRanker ranker{hardware};
    ServerResolver resolver{network};
    ServerPickerModel::Options options;

private:
    std::unique_ptr<ServerPickerModel> m_model;
    bool m_isBrowsing = false;
};

}  // namespace quietlark
