#include <memory>

#include <QCoreApplication>
#include <QEventLoop>
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/qt/qt_http_client.h"
#include "timing_server.h"

namespace quietlark {
namespace {

using Clock = TimingServer::Clock;

/// Ten seconds of speech, as they are uploaded.
constexpr qsizetype uploadBytes = 320 * 1000;

enum class Until { FirstByte, LastByte };

double seconds(Clock::time_point start, const TimingServer::Arrival& arrival, Until until) {
    const auto end = until == Until::FirstByte ? arrival.firstByte : arrival.lastByte;
    return std::chrono::duration<double>(end - start).count();
}

HttpRequest upload(const TimingServer& server) {
    const QUrl url(QStringLiteral("http://127.0.0.1:%1/").arg(server.port()));
    return {HttpRequest::Method::Post, url, std::chrono::seconds(300), "audio/wav",
            QByteArray(uploadBytes, 'x')};
}

/// Sends one upload and waits for its answer; answers when send() was called.
Clock::time_point sendAndWait(QtHttpClient& client, HttpRequest request) {
    QEventLoop loop;
    const auto start = Clock::now();
    const Cancellable handle =
        client.send(std::move(request), [&loop](const HttpClient::Answer&) { loop.quit(); });
    loop.exec();
    return start;
}

void qtKeptConnection(benchmark::State& state, Until until) {
    TimingServer server;
    QtHttpClient client;
    sendAndWait(client, upload(server));
    (void)server.takeArrival();
    for (auto _ : state) {
        const auto start = sendAndWait(client, upload(server));
        state.SetIterationTime(seconds(start, server.takeArrival(), until));
    }
}

void qtNewConnection(benchmark::State& state, Until until) {
    TimingServer server;
    for (auto _ : state) {
        QtHttpClient client;
        const auto start = sendAndWait(client, upload(server));
        state.SetIterationTime(seconds(start, server.takeArrival(), until));
    }
}

/// The floor: head and body in one call on a connected socket.
void plainSocket(benchmark::State& state, Until until) {
    TimingServer server;
    const int connection = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(server.port());
    if (::connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        state.SkipWithError("cannot connect");
    }
    const std::string request =
        "POST / HTTP/1.1\r\nContent-Length: " + std::to_string(uploadBytes) + "\r\n\r\n" +
        std::string(uploadBytes, 'x');
    char answer[1024];
    for (auto _ : state) {
        const auto start = Clock::now();
        ::send(connection, request.data(), request.size(), 0);
        const auto arrival = server.takeArrival();
        benchmark::DoNotOptimize(::recv(connection, answer, sizeof answer, 0));
        state.SetIterationTime(seconds(start, arrival, until));
    }
    ::close(connection);
}

BENCHMARK_CAPTURE(plainSocket, firstByte, Until::FirstByte)->UseManualTime();
BENCHMARK_CAPTURE(plainSocket, lastByte, Until::LastByte)->UseManualTime();
BENCHMARK_CAPTURE(qtKeptConnection, firstByte, Until::FirstByte)->UseManualTime();
BENCHMARK_CAPTURE(qtKeptConnection, lastByte, Until::LastByte)->UseManualTime();
BENCHMARK_CAPTURE(qtNewConnection, firstByte, Until::FirstByte)->UseManualTime();
BENCHMARK_CAPTURE(qtNewConnection, lastByte, Until::LastByte)->UseManualTime();

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
