// How long the clipboard takes to be read, replaced and put back, beside xclip and a plain reader,
// on an X server of its own.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

#include <QCoreApplication>

#include "peers/x_peer.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/x11/pasteboard/clipboard_peers.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int runs = 50;

double millisecondsSince(Clock::time_point before) {
    return std::chrono::duration<double, std::milli>(Clock::now() - before).count();
}

/// Least, median and greatest of many runs.
void printRow(const char* name, const std::function<double()>& measure) {
    std::vector<double> milliseconds;
    for (int run = 0; run < runs; ++run)
        milliseconds.push_back(measure());
    std::ranges::sort(milliseconds);
    std::printf("%-52s %8.2f %8.2f %8.2f\n", name, milliseconds.front(),
                milliseconds[milliseconds.size() / 2], milliseconds.back());
}

class Desk {
public:
    const char* display() const { return m_server.display().constData(); }

    void copy(const QStringList& offers) { m_owner.emplace(m_server, offers); }
    void copyAgain() { (void)m_owner->linesBeforeCopyingAgain(); }

    PasteboardSnapshot snapshot() {
        bool isAnswered = false;
        PasteboardSnapshot snapshot;
        const auto question = m_pasteboard.snapshot([&](auto answer) {
            isAnswered = true;
            if (answer) snapshot = *std::move(answer);
        });
        // The event loop is turned as in the program: an answer wakes it.
        while (!isAnswered)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return snapshot;
    }

    void setString() {
        bool isSet = false;
        const auto question =
            m_pasteboard.setString(QStringLiteral("A sentence as one dictates it."),
                                   [&isSet](const auto&) { isSet = true; });
        while (!isSet)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    double timeOfSnapshot() {
        const auto before = Clock::now();
        (void)snapshot();
        return millisecondsSince(before);
    }

    /// Until the text is there for others.
    double timeOfSetting() {
        copyAgain();
        (void)snapshot();
        const auto before = Clock::now();
        setString();
        return millisecondsSince(before);
    }

    double timeOfRestoring() {
        copyAgain();
        auto before = snapshot();
        setString();
        const auto start = Clock::now();
        m_pasteboard.restore(std::move(before));
        (void)snapshot();
        return millisecondsSince(start);
    }

    double timeOfXclip(const char* target) {
        const auto before = Clock::now();
        m_server.run(
            QStringLiteral("xclip"),
            {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard"),
             QStringLiteral("-target"), QString::fromLatin1(target)});
        return millisecondsSince(before);
    }

    void restoreNow() {
        auto before = snapshot();
        setString();
        m_pasteboard.restore(std::move(before));
        (void)snapshot();
    }

private:
    XServer m_server;
    std::optional<ClipboardOwner> m_owner;
    QtScheduler m_scheduler;
    X11Pasteboard m_pasteboard{m_scheduler, m_server.display()};
};

void measureText() {
    Desk desk;
    desk.copy({QStringLiteral("UTF8_STRING=text:words"), QStringLiteral("STRING=text:words"),
               QStringLiteral("text/plain=text:words"), QStringLiteral("text/html=pattern:5000")});
    printRow("snapshot of 4 formats", [&] { return desk.timeOfSnapshot(); });
    printRow("set, until others can read it", [&] { return desk.timeOfSetting(); });
    printRow("restore, until others can read it", [&] { return desk.timeOfRestoring(); });
    desk.copyAgain();
    printRow("xclip -o, one format, with its start",
             [&] { return desk.timeOfXclip("UTF8_STRING"); });
}

void measureImage() {
    Desk desk;
    desk.copy({QStringLiteral("image/png=pattern:9500000")});
    printRow("snapshot of a 9.5 MB image", [&] { return desk.timeOfSnapshot(); });
    printRow("xclip -o of the image, from its owner",
             [&] { return desk.timeOfXclip("image/png"); });
    desk.restoreNow();
    printRow("xclip -o of the image, restored", [&] { return desk.timeOfXclip("image/png"); });
    XPeer reader(desk.display());
    printRow("a plain reader of the image, restored", [&] {
        const auto before = Clock::now();
        (void)reader.read("image/png");
        return millisecondsSince(before);
    });
}

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::printf("%-52s %8s %8s %8s\n", "milliseconds", "least", "median", "most");
    quietlark::measureText();
    quietlark::measureImage();
}
