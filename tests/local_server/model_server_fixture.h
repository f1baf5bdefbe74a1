#pragma once

#include <optional>
#include <random>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTcpSocket>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>

#include "local_server/model_downloader.h"
#include "local_server/served_model.h"
#include "notifications/notification_center.h"
#include "support/wait.h"

namespace quietlark {

/// Whole downloads from a real server that does what the test tells it.
class ModelServerFixture : public testing::Test, protected ServedModel {
protected:
    using State = ModelDownloader::State;

    ModelServerFixture() { m_source.sha256 = sha256(m_model); }
    ~ModelServerFixture() override { m_downloader.reset(); }

    /// One attempt to its end; answers the state that it ends in.
    State download() {
        start();
        const bool hasEnded = waitUntil([this] {
            return m_downloader->state().kind == State::Case::ready ||
                   m_downloader->state().kind == State::Case::failed;
        });
        return hasEnded ? m_downloader->state() : State{};
    }
    void start() {
        m_downloader.reset();
        m_downloader.emplace(m_files, makeFetcher(), m_notifications, m_scheduler);
        m_downloader->start();
    }

    /// The model as a good server gives it, ranges included.
    [[nodiscard]] HttpServer::Reply model() {
        return [this](QTcpSocket& socket) { send(socket, m_model.size()); };
    }
    /// The same, but the connection is closed before the byte at `end`.
    [[nodiscard]] HttpServer::Reply modelCutAt(qsizetype end) {
        return [this, end](QTcpSocket& socket) {
            send(socket, end);
            http_reply::bytesAndClose()(socket);
        };
    }
    /// The same, but the connection is reset once the system has all up to there.
    [[nodiscard]] HttpServer::Reply modelResetAt(qsizetype end) {
        return [this, end](QTcpSocket& socket) {
            QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [this, end, &socket] {
                if (socket.bytesToWrite() > 0) return;
                m_sentUpTo = end - bytesOnTheWay(socket);
                http_reply::reset()(socket);
            });
            send(socket, end);
        };
    }
    /// The model up to its second mebibyte, and then nothing more.
    [[nodiscard]] HttpServer::Reply modelStallingInTheMiddle() {
        return [this](QTcpSocket& socket) { send(socket, 2 * mebibyte); };
    }
    /// Leaves an attempt that stalled after two mebibytes, all of which has arrived.
    void receiveTwoMebibytes() {
        serverDoes(modelStallingInTheMiddle());
        start();
        ASSERT_TRUE(waitUntil([this] { return m_downloader->bytesWritten() == 2 * mebibyte; }));
        m_downloader->cancel();
        ASSERT_TRUE(waitUntil([this] { return m_server.openConnectionCount() == 0; }));
    }
    /// That the next attempt goes on from what has arrived, and brings the model.
    void expectToContinueFromTwoMebibytes() {
        serverDoes(model());
        EXPECT_EQ(download().kind, State::Case::ready);
        EXPECT_EQ(lastRange(), "bytes=2097152-");
        EXPECT_TRUE(isInstalled());
    }
    [[nodiscard]] QByteArray head(qsizetype from) const {
        const QByteArray total = QByteArray::number(m_model.size());
        QByteArray text =
            from > 0 ? "HTTP/1.1 206 Rest\r\nContent-Range: bytes " + QByteArray::number(from) +
                           '-' + QByteArray::number(m_model.size() - 1) + '/' + total + "\r\n"
                     : QByteArray("HTTP/1.1 200 OK\r\n");
        return text + "ETag: " + tag +
               "\r\nContent-Length: " + QByteArray::number(m_model.size() - from) + "\r\n\r\n";
    }

    [[nodiscard]] bool isInstalled() const {
        QFile file(m_files.active());
        return file.open(QIODevice::ReadOnly) && file.readAll() == m_model;
    }
    [[nodiscard]] bool isSomethingInstalled() const { return QFile::exists(m_files.active()); }
    [[nodiscard]] qint64 receivedBytes() const { return QFile(m_files.received()).size(); }
    [[nodiscard]] QByteArray lastRange() const {
        return m_server.requests().back().header("Range");
    }

    [[nodiscard]] static QByteArray sha256(const QByteArray& bytes) {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    }
    [[nodiscard]] static QByteArray someBytes(qsizetype count) {
        std::mt19937 random(1);
        QByteArray bytes(count, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        return bytes;
    }
    [[nodiscard]] static std::string failure(const State& state) {
        return state.kind == State::Case::failed ? state.message.toStdString() : "no failure";
    }
    [[nodiscard]] std::string refusal(int status) const {
        return "Install failed: HTTP " + std::to_string(status) + " from " +
               m_source.url.toString().toStdString();
    }

    void send(QTcpSocket& socket, qsizetype end) {
        const HttpServer::Request& request = m_server.requests().back();
        const QByteArray range = request.header("Range");
        const bool isRest = !range.isNull() && request.header("If-Range") == tag;
        const qsizetype from = isRest ? range.sliced(6).chopped(1).toLongLong() : 0;
        socket.write(head(from));
        socket.write(m_model.sliced(from, end - from));
    }

    /// Of what was sent, as far as the other side has not acknowledged it.
    [[nodiscard]] static qint64 bytesOnTheWay(const QTcpSocket& socket) {
        int bytes = 0;
        ::ioctl(static_cast<int>(socket.socketDescriptor()), SIOCOUTQ, &bytes);
        return bytes;
    }

    static constexpr const char* tag = "\"one\"";
    static constexpr qsizetype mebibyte = 1024 * 1024;

    QByteArray m_model = someBytes(3 * mebibyte + 17);
    qint64 m_sentUpTo = 0;  ///< the byte of the model before which a connection was last reset
    NotificationCenter m_notifications;
    std::optional<ModelDownloader> m_downloader;
};

}  // namespace quietlark
