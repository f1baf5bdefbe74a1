// How long the program itself takes within one dictation, on real parts: an X server, an audio
// server, HTTP over loopback. Each figure stands beside a yardstick from the same run, which does
// the least that anything could: it watches the same keys and writes to the same kind of socket
// without any layer in between.

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "config/config.h"
#include "latency/keyboard.h"
#include "latency/speech_server.h"
#include "peers/child_process.h"
#include "peers/pulse_server.h"
#include "peers/x_server.h"

namespace quietlark::benchmark {
namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int rounds = 30;
constexpr auto recordingTime = 1000ms;

class Samples {
public:
    void add(Clock::duration duration) { m_values.push_back(Milliseconds(duration).count()); }

    void print(const char* label) {
        std::sort(m_values.begin(), m_values.end());
        if (m_values.empty()) return;
        const auto at = [this](double part) {
            return m_values[std::size_t(part * double(m_values.size() - 1))];
        };
        std::printf("%-52s %8.2f %8.2f %8.2f\n", label, at(0.5), at(0.95), at(1));
    }

private:
    std::vector<double> m_values;
};

/// Writes as many bytes as an upload has to a connection that is already open.
class BareClient {
public:
    explicit BareClient(std::uint16_t port) : m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
    ~BareClient() { close(m_socket); }

    void post(std::size_t bytes) {
        QByteArray request =
            "POST / HTTP/1.1\r\nContent-Length: " + QByteArray::number(qsizetype(bytes)) +
            "\r\n\r\n";
        request.append(qsizetype(bytes), 'x');
        for (qsizetype sent = 0; sent < request.size();) {
            const ssize_t count = ::send(m_socket, request.constData() + sent,
                                         std::size_t(request.size() - sent), MSG_NOSIGNAL);
            if (count <= 0) return;
            sent += count;
        }
        char answer[1024];
        if (recv(m_socket, answer, sizeof answer, 0) <= 0) return;
    }

private:
    int m_socket;
};

/// When the key V went down last.
class PasteChord {
public:
    void onKey(bool isPress, std::uint8_t keycode, Clock::time_point seen) {
        if (!isPress || keycode != x_keycode::v) return;
        const std::scoped_lock lock(m_mutex);
        m_seen = seen;
        m_changed.notify_one();
    }

    [[nodiscard]] bool awaitAfter(Clock::time_point start, Clock::time_point& seen) {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, 5s, [&] { return m_seen > start; })) return false;
        seen = m_seen;
        return true;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Clock::time_point m_seen;
};

struct Figures {
    Samples firstByte;
    Samples lastByte;
    Samples chord;
    std::size_t uploadBytes = 0;
};

/// The program as it runs on a desktop, with a window that has the focus.
class Desk {
public:
    Desk(const XServer& xServer, const PulseServer& audio) : m_xServer(xServer) {
        m_environment = xServer.environment();
        m_environment.insert(audio.environment());
        m_environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(xServer.display()));
        m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path());
    }

    [[nodiscard]] bool start(int port) {
        Config config;
        config.serverMode = ManualRemote{QStringLiteral("127.0.0.1"), port, QStringLiteral("http")};
        if (!config.save(m_home.filePath(QStringLiteral("Quietlark/config.json")))) return false;
        // By a name that is no terminal's, so that the paste shortcut has the key V in it.
        const QString name = QStringLiteral("typing");
        m_window = m_xServer.start(QStringLiteral("xterm"),
                                   {QStringLiteral("-name"), name, QStringLiteral("-class"), name});
        m_program = std::make_unique<ChildProcess>(QStringLiteral(QUIETLARK_PROGRAM), QStringList(),
                                                   m_environment);
        if (!m_program->readLine().startsWith("ready")) return false;
        m_xServer.run(QStringLiteral("xdotool"),
                      {QStringLiteral("search"), QStringLiteral("--sync"),
                       QStringLiteral("--onlyvisible"), QStringLiteral("--class"), name,
                       QStringLiteral("windowfocus"), QStringLiteral("--sync")});
        return true;
    }

private:
    const XServer& m_xServer;
    QTemporaryDir m_home;
    QProcessEnvironment m_environment;
    std::unique_ptr<ChildProcess> m_window;
    std::unique_ptr<ChildProcess> m_program;
};

/// Dictates again and again with the real program.
bool measureProgram(const XServer& xServer, const PulseServer& audio, Figures& figures) {
    SpeechServer server;
    Desk desk(xServer, audio);
    if (!desk.start(server.port())) return false;

    PasteChord chord;
    const KeyWatcher watcher(xServer.display(), [&chord](auto... event) { chord.onKey(event...); });
    Fingers fingers(xServer.display());
    for (int round = 0; round <= rounds; ++round) {
        for (const auto key : {x_keycode::controlLeft, x_keycode::altLeft, x_keycode::space})
            fingers.press(key);
        std::this_thread::sleep_for(recordingTime);
        const auto released = Clock::now();
        for (const auto key : {x_keycode::space, x_keycode::altLeft, x_keycode::controlLeft})
            fingers.release(key);
        SpeechServer::Upload upload;
        Clock::time_point pasted;
        if (!server.awaitUpload(upload) || !chord.awaitAfter(upload.answered, pasted)) return false;
        std::this_thread::sleep_for(400ms);  // until the old clipboard is back
        if (round == 0) continue;            // the one that finds the server
        figures.firstByte.add(upload.firstByte - released);
        figures.lastByte.add(upload.lastByte - released);
        figures.chord.add(pasted - upload.answered);
        figures.uploadBytes = upload.bytes;
    }
    return true;
}

/// A key release that sends as many bytes, and an answer that presses V 50 ms later, with nothing
/// in between.
bool measureYardstick(const XServer& xServer, std::size_t uploadBytes, Figures& figures) {
    SpeechServer server;
    BareClient client(server.port());
    Fingers fingers(xServer.display());
    Fingers typist(xServer.display());
    PasteChord chord;
    const KeyWatcher watcher(xServer.display(), [&](bool isPress, std::uint8_t keycode, auto seen) {
        chord.onKey(isPress, keycode, seen);
        if (isPress || keycode != x_keycode::space) return;
        client.post(uploadBytes);
        std::this_thread::sleep_for(50ms);
        typist.press(x_keycode::v);
        typist.release(x_keycode::v);
    });
    for (int round = 0; round < rounds; ++round) {
        fingers.press(x_keycode::space);
        std::this_thread::sleep_for(50ms);
        const auto released = Clock::now();
        fingers.release(x_keycode::space);
        SpeechServer::Upload upload;
        Clock::time_point pasted;
        if (!server.awaitUpload(upload) || !chord.awaitAfter(upload.answered, pasted)) return false;
        figures.firstByte.add(upload.firstByte - released);
        figures.lastByte.add(upload.lastByte - released);
        figures.chord.add(pasted - upload.answered);
    }
    return true;
}

int measure() {
    const XServer xServer;
    const PulseServer audio;
    Figures program;
    Figures yardstick;
    if (!measureProgram(xServer, audio, program) ||
        !measureYardstick(xServer, program.uploadBytes, yardstick)) {
        std::fputs("The measurement broke off.\n", stderr);
        return 1;
    }
    std::printf("%d dictations of %.1f s, %zu bytes each   [ms] median      95%%     most\n",
                rounds, std::chrono::duration<double>(recordingTime).count(), program.uploadBytes);
    program.firstByte.print("key release to first byte sent");
    yardstick.firstByte.print("    bare key watcher and socket");
    program.lastByte.print("key release to last byte sent");
    yardstick.lastByte.print("    bare key watcher and socket");
    program.chord.print("answer to paste chord, 50 ms of it by design");
    yardstick.chord.print("    bare socket, 50 ms of sleep, key press");
    return 0;
}

}  // namespace
}  // namespace quietlark::benchmark

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return quietlark::benchmark::measure();
}
