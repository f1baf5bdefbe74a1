// How long the windows keep the main thread from its other work: for each thing that a user does to
// them, the time until all of it is done and drawn, and the longest step of all: an event, or what
// an event of the user's or a timer would do. Everything is drawn into memory, with this system's
// wording.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <vector>

#include <QElapsedTimer>
#include <QPushButton>

#include "program/wording.h"
#include "ui/hotkey_capture_view.h"
#include "ui/windows_fixture.h"

namespace quietlark {
namespace {

constexpr int rounds = 21;

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Notes how long the longest step took.
class TimedApplication final : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        QElapsedTimer timer;
        timer.start();
        const bool handled = QApplication::notify(receiver, event);
        note(milliseconds(timer));
        return handled;
    }

    static void note(double milliseconds) { longestStep = std::max(longestStep, milliseconds); }

    static inline double longestStep = 0;
};

/// One user at one computer, from the first window to the last.
class Session final : public WindowsFixture {
public:
    using Note = std::function<void(const char* name, double milliseconds)>;

    void play(const Note& note) {
        m_note = note;
        installModel();
        service.current = ServiceStatus::enabled;
        serverPublishesItsEndpoint();
        serverAnswersAt("http://127.0.0.1:9000");
        grantAll();
        Config config;
        saved(config);
        state();
        walkThroughOnboarding();
        lookThroughPreferences();
        privacy = FakePrivacy();
        measure("open the permissions alert", [this] { windows().show(Kind::permissionsAlert); });
        closeAll();
    }

private:
    void TestBody() override {}

    void measure(const char* name, const std::function<void()>& act) {
        QElapsedTimer timer;
        timer.start();
        act();
        TimedApplication::note(milliseconds(timer));
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible()) window->repaint();
        }
        m_note(name, milliseconds(timer));
        scheduler.runPosted();
        network.runAnswers();
    }

    void walkThroughOnboarding() {
        measure("open the onboarding", [this] { windows().show(Kind::onboarding); });
        measure("go to the server step", [this] { press(Qt::Key_Return); });
        for (int i = 0; i < 40; ++i)
            publish(QByteArray("Box " + QByteArray::number(i)).constData());
        measure("choose this computer", [this] { press(Qt::Key_Return); });
        measure("go to the hotkeys", [this] { press(Qt::Key_Return); });
        measure("go to the done step", [this] { press(Qt::Key_Return); });
        measure("look for grants and the server",
                [this] { scheduler.advance(std::chrono::seconds(1)); });
        windows().close(Kind::onboarding);
    }

    void lookThroughPreferences() {
        measure("open Preferences", [this] { windows().show(Kind::preferences); });
        auto* prefs = shown().findChild<PrefsView*>();
        measure("go to the hotkey pane", [prefs] { prefs->select(PrefsTab::hotkey); });
        measure("capture a hotkey", [this] {
            shown().findChild<HotkeyCaptureView*>()->click();
            keyCapture.press(2, modifier::control);
        });
        measure("go to the server pane", [prefs] { prefs->select(PrefsTab::server); });
        measure("change the server", [this] { findButton("change")->click(); });
        measure("show 40 servers", [this] { findButton("connect")->click(); });
        windows().close(Kind::preferences);
    }

    QPushButton* findButton(const char* name) {
        return shown().findChild<QPushButton*>(text(name));
    }

    Note m_note;
};

void report(const char* name, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("%-34s %8.2f %8.2f\n", name, times[times.size() / 2], times.back());
}

int run() {
    std::vector<const char*> order;
    std::map<const char*, std::vector<double>> times;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        QWidget empty;
        empty.show();
        QCoreApplication::processEvents();
        empty.repaint();
        times["yardstick: open an empty window"].push_back(milliseconds(timer));
        empty.close();
        Session().play([&](const char* name, double taken) {
            if (!times.contains(name)) order.push_back(name);
            times[name].push_back(taken);
        });
    }
    std::printf("%-34s %8s %8s\n", "milliseconds", "median", "worst");
    for (const char* name : order)
        report(name, times[name]);
    report("yardstick: open an empty window", times["yardstick: open an empty window"]);
    return 0;
}

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    quietlark::TimedApplication application(argc, argv);
    quietlark::useWordingOfThisSystem(application);
    const int status = quietlark::run();
    std::printf("%-34s %17.2f\n", "the longest step of all", application.longestStep);
    return status;
}
