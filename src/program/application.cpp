#include "program/application.h"

#include <cstdlib>
#include <iostream>

#include <QCoreApplication>

namespace quietlark {

namespace {

void complain(const QString& sentence) {
    std::cerr << "quietlark: " << sentence.toStdString() << std::endl;
}

/// What the user can do now, such as "hold ctrl+alt+space to dictate".
QString invitation(const Config& config, const DictationHotkeys& hotkeys) {
    QStringList ways;
    if (hotkeys.hasHold()) ways << Application::tr("hold %1").arg(config.hotkey);
    if (hotkeys.hasToggle()) ways << Application::tr("press %1").arg(config.toggleHotkey);
    return Application::tr("ready: %1 to dictate").arg(ways.join(Application::tr(" or ")));
}

}  // namespace

Application::Application()
    : m_log("net.quietlark.app", "dictation"),
      // There is no window of our own that could have the focus.
      m_keyboard(m_keyConnection, [] { return false; }),
      m_keys(m_keyConnection),
      m_pasteboard(m_scheduler),
      m_config(Config::load(Config::defaultFileURL())),
      m_transcription{ServerEndpoint(m_endpointFile), ServerResolver(m_http),
                      TranscriptionClient(m_http, m_scheduler, m_log)},
      m_recorder(Dictation::sampleRateHz, m_microphone),
      m_paster(m_pasteboard, m_keys, m_scheduler),
      m_dictation([this] { return m_config; }, m_recorder, m_transcription, m_paster, m_scheduler),
      m_hotkeys(m_dictation, m_keyboard, m_scheduler) {
    connect(&m_dictation, &Dictation::onStateChange, this, &Application::report);
    connect(&m_keyConnection, &X11KeyConnection::displayLost, this,
            &Application::endWithoutDisplay);
    connect(&m_quitSignals, &QuitSignals::quitRequested, qApp, &QCoreApplication::quit);
}

int Application::run() {
    if (const auto unavailable = m_keyboard.unavailable()) {
        complain(unavailable->reason);
        return EXIT_FAILURE;
    }
    for (const QString& complaint : m_hotkeys.reload(m_config))
        complain(complaint);
    if (!m_hotkeys.hasHold() && !m_hotkeys.hasToggle()) {
        complain(tr("There is no hotkey to dictate with: see \"hotkey\" in %1.")
                     .arg(Config::defaultFileURL()));
        return EXIT_FAILURE;
    }
    std::cout << invitation(m_config, m_hotkeys).toStdString() << std::endl;
    return QCoreApplication::exec();
}

void Application::report(const DictationState& state) {
    if (!state.message.isEmpty()) complain(state.message);
}

void Application::endWithoutDisplay() {
    complain(tr("The connection to the X server was lost, so no hotkey can work any more."));
    QCoreApplication::exit(EXIT_FAILURE);
}

}  // namespace quietlark
