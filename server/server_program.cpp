#include "server/server_program.h"

#include <condition_variable>
#include <iostream>
#include <mutex>
#include <utility>

#include "server/bench.h"
#include "server/host_description.h"
#include "server/listening_check.h"
#include "server/self_test.h"
#include "server/serial_engine.h"
#include "server/text_forms.h"

namespace quietlark {
namespace {

/// Where those who share are found by people who type an address.
constexpr int usualSharedPort = 8178;
constexpr std::chrono::seconds betweenLooks{10};

tl::unexpected<std::string> cannotListen(const std::string& host, int port,
                                         const std::string& reason) {
    return tl::unexpected("Cannot listen on " + localAddress(host, port) + ": " + reason + ".");
}

}  // namespace

ServerProgram::ServerProgram(const ServerOptions& options,
                             const ServerOptions::Settings& environment,
                             ServiceAnnouncer* announcer, Log& log)
    : m_options(options),
      m_choice(options, environment, log),
      m_log(log),
      m_endpointFile(options.endpointFile),
      m_presence(m_endpointFile, announcer, log) {}

ServerProgram::Outcome ServerProgram::serve(const std::stop_token& stop) {
    m_endpointFile.removeLeftover();
    if (auto place = checkPlace(); !place) return place;
    auto prepared = prepareEngine(stop);
    if (!prepared || stop.stop_requested()) return prepared;

    SerialEngine engine(*m_measured);
    HttpApi api(engine, {.limits = m_options.limits,
                         .audience = m_options.audience,
                         .ownNames = ownNames(),
                         .language = m_options.language});
    SpeechServer server(api, m_log);
    if (auto listening = listen(server); !listening) return listening;
    if (auto appeared = appear(server.port()); !appeared) return appeared;
    const std::stop_callback onStop(stop, [&] {
        m_presence.disappear();
        engine.stop();
        server.stop();
    });
    const auto keeper = keepPresent();
    const bool wasStopped = server.run();
    m_presence.disappear();
    if (!wasStopped) return tl::unexpected(std::string("The network connection was lost."));
    return {};
}

ServerProgram::Outcome ServerProgram::bench(const std::stop_token& stop) {
    auto prepared = prepareEngine(stop);
    if (!prepared || stop.stop_requested()) return prepared;
    const std::stop_callback onStop(stop, [this] { m_engine->stop(); });
    const auto report =
        benchReport(*m_engine, m_options.benchFile, m_options.language, m_options.limits.bodyBytes);
    if (!report) return tl::unexpected(report.error());
    std::cout << *report;
    return {};
}

ServerProgram::Outcome ServerProgram::checkPlace() const {
    const int port = m_options.port.value_or(0);
    if (const auto obstacle = listeningObstacle(m_options.host, port))
        return cannotListen(m_options.host, port, *obstacle);
    return m_endpointFile.check();
}

ServerProgram::Outcome ServerProgram::prepareEngine(const std::stop_token& stop) {
    if (m_options.engine != ServerOptions::Engine::PocketSphinx) {
        auto used =
            use(m_choice.whisper([this](bool isReady) { m_presence.setReady(isReady); }), stop);
        if (used || stop.stop_requested()) return {};
        if (m_options.engine == ServerOptions::Engine::Whisper) return used;
        m_log.write(m_choice.prefersWhisper() ? LogLevel::Error : LogLevel::Info,
                    used.error() + " PocketSphinx takes its place.");
        m_measured.reset();
        m_engine.reset();
        m_presence.setReady(true);
    }
    auto used = use(EngineChoice::pocketSphinx(), stop);
    return stop.stop_requested() ? Outcome() : used;
}

ServerProgram::Outcome ServerProgram::use(EngineChoice::Engine engine,
                                          const std::stop_token& stop) {
    if (!engine) return tl::unexpected(engine.error());
    m_engine = std::move(*engine);
    if (!m_engine->understands(m_options.language))
        return tl::unexpected("The model " + m_engine->modelId() +
                              " does not understand the language " + m_options.language + ".");
    m_measured = std::make_unique<MeasuredEngine>(*m_engine,
                                                  [this](double rtf) { m_presence.setSpeed(rtf); });
    const std::stop_callback onStop(stop, [this] { m_engine->stop(); });
    const auto speed = measureSpeed(*m_measured);
    if (!speed) return tl::unexpected(speed.error());
    // The measured engine may have counted the first, slow time as well.
    m_presence.setSpeed(*speed);
    m_log.write(LogLevel::Info, "Transcribing with " + m_engine->modelId() + ", " +
                                    decimals(*speed) + " times as fast as speech.");
    return {};
}

std::vector<std::string> ServerProgram::ownNames() const {
    auto names = m_options.knownAs;
    names.push_back(hostNameForm(fullComputerName()));
    return names;
}

ServerProgram::Outcome ServerProgram::listen(SpeechServer& server) {
    const bool isShared = m_options.audience == Audience::Network;
    if (!m_options.port && isShared && server.bind(m_options.host, usualSharedPort)) return {};
    const int port = m_options.port.value_or(0);
    const auto bound = server.bind(m_options.host, port);
    if (bound) return {};
    return cannotListen(m_options.host, port, bound.error());
}

ServerProgram::Outcome ServerProgram::appear(int port) {
    const std::string address = localAddress(m_options.host, port);
    const bool isShared = m_options.audience == Audience::Network;
    const std::string name = computerName();
    auto appeared =
        m_presence.appear({.local = address,
                           .display = isShared ? name + ".local:" + std::to_string(port) : address,
                           .name = m_options.name.empty() ? name : m_options.name,
                           .port = port,
                           .model = m_engine->modelId(),
                           .cpu = processorName()});
    if (appeared) std::cout << "listening on http://" << address << std::endl;
    return appeared;
}

std::jthread ServerProgram::keepPresent() {
    return std::jthread([this](const std::stop_token& end) {
        std::mutex mutex;
        std::condition_variable_any ended;
        std::unique_lock lock(mutex);
        while (!end.stop_requested()) {
            ended.wait_for(lock, end, betweenLooks, [] { return false; });
            m_presence.refresh();
        }
    });
}

}  // namespace quietlark
