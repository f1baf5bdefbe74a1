#include <cstdio>

#include <QCoreApplication>

#include "peers/http_server.h"

/// Answers every upload at once, until it is ended. Prints its port first.
int main(int argc, char** argv) {
    using namespace quietlark;
    QCoreApplication application(argc, argv);
    HttpServer server;
    server.on("/v1/models", http_reply::json(R"({"data": []})"));
    server.on("/inference", http_reply::json(R"({"text": "hello"})"));
    server.on("/v1/audio/transcriptions", http_reply::json(R"({"text": "hello"})"));
    std::printf("%d\n", server.port());
    std::fflush(stdout);
    return QCoreApplication::exec();
}
