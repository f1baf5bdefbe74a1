#include "local_server/model_source.h"

namespace quietlark {

namespace {

// As the whisper.cpp project publishes them with its models.
const QByteArray publishedSha256 =
    QByteArrayLiteral("1fc70f774d38eb169993ac391eea357ef47c88757ef72ee5943879b7e8e2bc69");
constexpr qint64 publishedLengthBytes = 1'624'555'275;

}  // namespace

ModelSource ModelSource::configured(const QProcessEnvironment& environment) {
    ModelSource source;
    const QString url = environment.value(QStringLiteral("QUIETLARK_MODEL_URL"));
    if (url.isEmpty()) {
        source.url = QUrl(QStringLiteral(QUIETLARK_MODEL_URL));
        source.sha256 = publishedSha256;
        source.lengthBytes = publishedLengthBytes;
        return source;
    }
    source.url = QUrl(url);
    const QString sha256 = environment.value(QStringLiteral("QUIETLARK_MODEL_SHA256"));
    if (!sha256.isEmpty()) source.sha256 = sha256.trimmed().toLower().toUtf8();
    return source;
}

}  // namespace quietlark
