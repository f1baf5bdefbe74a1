#pragma once

#include <memory>
#include <optional>

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "local_server/background_model_fetcher.h"
#include "peers/http_server.h"
#include "platform/curl/curl_http_streams.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/qt/qt_worker_thread.h"

namespace quietlark {

/// A real server of one model, the place where the model goes, and what fetches it.
class ServedModel {
protected:
    ServedModel() { m_source.url = QUrl(m_server.url(QString::fromLatin1(path))); }

    void serverDoes(const HttpServer::Reply& reply) { m_server.on(path, reply); }
    /// A fetcher in the place of the one before.
    ModelFetcher& makeFetcher() {
        return m_fetcher.emplace(m_source, m_files, m_scheduler, m_worker.scheduler(),
                                 [] { return std::make_unique<CurlHttpStreams>(); });
    }

    QTemporaryDir m_home;
    ModelFiles m_files{m_home.filePath(QStringLiteral("models"))};
    HttpServer m_server;
    ModelSource m_source;
    QtScheduler m_scheduler;
    QtWorkerThread m_worker;
    std::optional<BackgroundModelFetcher> m_fetcher;

private:
    static constexpr const char* path = "/model.bin";
};

}  // namespace quietlark
