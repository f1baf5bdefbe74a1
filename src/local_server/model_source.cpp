#include "local_server/model_source.h"

#include <algorithm>
#include <cctype>

#include <QCoreApplication>

namespace quietlark {

namespace {

// As the whisper.cpp project publishes them with its models.
const QByteArray publishedSha256 =
    QByteArrayLiteral("1fc70f774d38eb169993ac391eea357ef47c88757ef72ee5943879b7e8e2bc69");
constexpr qint64 publishedLengthBytes = 1'624'555'275;

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(ModelSource)

public:
    static QString noDigest(const QByteArray& value) {
        return tr("QUIETLARK_MODEL_SHA256 is no checksum: it needs 64 hexadecimal digits, but is "
                  "\"%1\".")
            .arg(QString::fromUtf8(value.left(80)));
    }
};

bool isDigest(const QByteArray& value) {
    return value.size() == 64 && std::all_of(value.begin(), value.end(), [](char digit) {
               return std::isxdigit(static_cast<unsigned char>(digit)) != 0;
           });
}

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

QString ModelSource::address() const {
    return url.toString(QUrl::FullyEncoded | QUrl::RemoveUserInfo);
}

std::optional<QString> ModelSource::mistake() const {
    if (sha256 && !isDigest(*sha256)) return Sentences::noDigest(*sha256);
    return std::nullopt;
}

}  // namespace quietlark
