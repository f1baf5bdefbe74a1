#pragma once

#include <memory>
#include <optional>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_http_streams.h"
#include "fakes/fake_scheduler.h"
#include "local_server/background_model_fetcher.h"
#include "local_server/model_downloader.h"
#include "local_server/resume_data.h"
#include "notifications/notification_center.h"
#include "platform/boot_session.h"

namespace quietlark {

/// The checksum of what serverOffersTenBytes() promises, "0123456789".
inline const QByteArray digestOfTenDigits =
    QByteArrayLiteral("84d89877f0d4041efb6bf91a16f0248f2fd573e6af05c19f96bedb9f882f7882");

/// A whole download over a network that says what the test says, on virtual time: the worker's
/// thread is the test's own.
class ModelDownloadFixture : public testing::Test {
protected:
    using Case = ModelDownloader::State::Case;

    ModelDownloadFixture() {
        m_source.url = QUrl(QStringLiteral("https://models.example/ggml-large-v3-turbo.bin"));
    }

    void start() {
        m_downloader.reset();
        m_scheduler.runPosted();
        m_fetcher.emplace(m_source, m_files, m_scheduler, m_scheduler,
                          [this] { return std::make_unique<Line>(m_network); });
        m_downloader.emplace(m_files, *m_fetcher, m_notifications, m_scheduler);
        m_downloader->start();
        m_scheduler.runPosted();
    }
    void serverSays(int status, std::vector<HttpHeader> headers = {}) {
        m_network.head({status, std::move(headers)});
        m_scheduler.runPosted();
    }
    void serverSends(const QByteArray& bytes) {
        m_network.bytes(bytes);
        m_scheduler.runPosted();
    }
    void serverIsDone() {
        m_network.end();
        m_scheduler.runPosted();
    }
    void connectionBreaks() {
        m_network.fail(QStringLiteral("The connection broke."));
        m_scheduler.runPosted();
    }
    void advance(std::chrono::milliseconds duration) { m_scheduler.advance(duration); }

    /// The head of a good answer of ten bytes.
    void serverOffersTenBytes() {
        serverSays(200, {{"Content-Length", "10"}, {"ETag", "\"one\""}});
    }
    /// What an earlier attempt would have left: so many of ten bytes.
    void leave(const QByteArray& received, const QByteArray& validator = "\"one\"") {
        const ResumeData data{m_source.url.toString(), validator, 10, received.size(),
                              bootSession()};
        write(m_files.received(), received);
        write(m_files.resume(), data.toJson());
    }

    void write(const QString& path, const QByteArray& content) const {
        QDir().mkpath(m_files.directory());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    /// Null when there is no such file.
    [[nodiscard]] static QByteArray read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] QStringList filesThere() const {
        return QDir(m_files.directory()).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    }
    [[nodiscard]] Case kind() const { return m_downloader->state().kind; }
    [[nodiscard]] std::string message() const {
        return m_downloader->state().message.toStdString();
    }

    QTemporaryDir m_home;
    ModelFiles m_files{m_home.filePath(QStringLiteral("models"))};
    ModelSource m_source;
    FakeHttpStreams m_network;
    FakeScheduler m_scheduler;
    NotificationCenter m_notifications;
    std::optional<BackgroundModelFetcher> m_fetcher;
    std::optional<ModelDownloader> m_downloader;

private:
    /// What an attempt owns; the network stays the test's.
    class Line final : public HttpStreams {
    public:
        explicit Line(FakeHttpStreams& network) : m_network(network) {}
        [[nodiscard]] Cancellable get(HttpStreamRequest request, Handlers handlers) override {
            return m_network.get(std::move(request), std::move(handlers));
        }

    private:
        FakeHttpStreams& m_network;
    };
};

}  // namespace quietlark
