#include "server/server_load.h"

#include <array>
#include <atomic>
#include <memory>
#include <thread>

#include "audio/wav.h"
#include "server/raw_http_client.h"

namespace quietlark {
namespace {

constexpr const char* inference = "/inference";
constexpr const char* transcriptions = "/v1/audio/transcriptions";

/// One request and what is to come of it.
struct Exchange {
    std::string request;
    int status = 200;
    std::string inBody = {};   ///< what the answer must hold
    bool isBrokenOff = false;  ///< the client leaves instead of waiting for an answer
};

/// As a first sample it kills the stand-in, which does nothing out of the ordinary below 101.
constexpr std::int16_t deadlySample = 106;

/// A recording that no other request of the last thousands had.
Exchange recordingThatBegins(std::int16_t firstSample, int number, const char* path,
                             const std::string& fields) {
    std::vector<std::int16_t> samples(static_cast<std::size_t>(17600 + number % 997));
    samples.front() = firstSample;
    const WavBytes wav = WAV::encode(samples, 16000, 1);
    return {.request = postOf(
                path, formOf({reinterpret_cast<const char*>(wav.data()), wav.size()}, fields)),
            .inBody = "samples=" + std::to_string(samples.size()) +
                      " first=" + std::to_string(samples.front())};
}

Exchange recording(int number, const char* path, const std::string& format,
                   const std::string& fields = "") {
    return recordingThatBegins(static_cast<std::int16_t>(number % 89 + 1), number, path,
                               fieldOf("response_format", format) + fields);
}

Exchange deadlyRecording(int number) {
    Exchange deadly = recordingThatBegins(deadlySample, number, inference, "");
    deadly.status = 503;
    deadly.inBody = "The speech engine is not running.";
    return deadly;
}

/// A recording with the times of its segments, the first of which ends within the first word.
Exchange subtitles(int number) {
    Exchange subtitles = recording(number, transcriptions, "vtt");
    subtitles.inBody.erase(0, std::string("samp").size());
    return subtitles;
}

Exchange exchange(int number) {
    switch (number % 16) {
        case 0:
            return {.request = "GET /v1/models HTTP/1.1\r\n\r\n", .inBody = R"("object":"list")"};
        case 1:
            return {.request = postOf(inference, formOf("no wav")), .status = 400, .inBody = "WAV"};
        case 2:
            return {.request = postOf(transcriptions, "--B--\r\n"), .status = 400};
        case 3:
            return {.request = "GET /nothing HTTP/1.1\r\n\r\n", .status = 404};
        case 4:
            return {.request = "GET / HTTP/1.1\r\nHost: a.example\r\n\r\n", .status = 403};
        case 5:
            return {.request = "no request\r\n\r\n", .status = 400};
        case 6: {
            Exchange half = recording(number, inference, "json");
            half.request.resize(half.request.size() / 2);
            half.isBrokenOff = true;
            return half;
        }
        case 7: {
            Exchange impatient = recording(number, inference, "json");
            impatient.isBrokenOff = true;
            return impatient;
        }
        case 8: {
            Exchange odd = recording(number, inference, "pdf");
            odd.status = 400;
            odd.inBody = "response_format";
            return odd;
        }
        case 9:
            return recording(number, transcriptions, "verbose_json");
        case 10:
            return recording(number, inference, "text");
        case 11:
            return subtitles(number);
        case 12:
            return recording(number, transcriptions, "json",
                             fieldOf("prompt", std::string(5000, 'a')) +
                                 fieldOf("temperature", "0.2") + fieldOf("language", "de"));
        case 13:
            return recording(number, inference, "json", fieldOf("translate", "true"));
        default:
            return recording(number, number % 2 == 0 ? inference : transcriptions, "json");
    }
}

}  // namespace

/// One client, which keeps its connection for as long as the server does.
class ServerLoad::Client {
public:
    Client(int port, Result& result) : m_port(port), m_result(result) {}

    void send(int number, const Exchange& wanted) {
        if (!m_connection) m_connection = std::make_unique<RawHttpClient>(m_port);
        m_connection->send(wanted.request);
        if (wanted.isBrokenOff) {
            m_connection.reset();
            ++m_result.answers;
            return;
        }
        const auto answer = m_connection->receive();
        judge(number, wanted, answer);
        if (answer.status == 0 || answer.head.find("Connection: close") != std::string::npos)
            m_connection.reset();
    }

private:
    void judge(int number, const Exchange& wanted, const RawHttpClient::Answer& answer) {
        if (answer.status == wanted.status &&
            answer.body.find(wanted.inBody) != std::string::npos) {
            ++m_result.answers;
        } else if (wanted.status == 200 && answer.status == 503) {
            ++m_result.lost;
        } else {
            m_result.wrong.push_back(std::to_string(number) + ": " + std::to_string(answer.status) +
                                     " " + answer.body);
        }
    }

    const int m_port;
    Result& m_result;
    std::unique_ptr<RawHttpClient> m_connection;
};

ServerLoad::ServerLoad(int port, std::optional<int> deadly) : m_port(port), m_deadly(deadly) {}

ServerLoad::Result ServerLoad::run(int first, int count) const {
    std::atomic<int> next = first;
    std::array<Result, clients> results;
    std::vector<std::thread> threads;
    for (Result& result : results) {
        threads.emplace_back([this, &next, &result, end = first + count] {
            Client client(m_port, result);
            for (int number = next++; number < end; number = next++)
                client.send(number,
                            number == m_deadly ? deadlyRecording(number) : exchange(number));
        });
    }
    Result sum;
    for (std::size_t i = 0; i < threads.size(); ++i) {
        threads[i].join();
        sum.answers += results[i].answers;
        sum.lost += results[i].lost;
        sum.wrong.insert(sum.wrong.end(), results[i].wrong.begin(), results[i].wrong.end());
    }
    return sum;
}

}  // namespace quietlark
