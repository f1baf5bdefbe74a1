#include "platform/linux/processor/linux_processor.h"

#include <utility>

#include <QFile>
#include <QList>

#include "platform/linux/processor/apple_soc.h"

namespace quietlark {

namespace {

/// The content of a small file; empty when there is none.
QByteArray contentOf(const QString& path) {
    constexpr qint64 maxBytes = 64 * 1024;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.read(maxBytes);
}

/// The value of the first "model name" line of /proc/cpuinfo.
QString modelName(const QByteArray& cpuinfo) {
    for (const QByteArray& line : cpuinfo.split('\n')) {
        const auto colon = line.indexOf(':');
        if (colon < 0 || line.first(colon).trimmed() != "model name") continue;
        const QByteArray value = line.sliced(colon + 1);
        return QString::fromUtf8(value.first(qstrnlen(value.constData(), value.size())));
    }
    return {};
}

}  // namespace

LinuxProcessor::LinuxProcessor(QString procDirectory) : m_procDirectory(std::move(procDirectory)) {}

QString LinuxProcessor::brandString() const {
    const QString brand =
        appleSocBrand(contentOf(m_procDirectory + QStringLiteral("/device-tree/compatible")));
    if (!brand.isEmpty()) return brand;
    return modelName(contentOf(m_procDirectory + QStringLiteral("/cpuinfo")));
}

}  // namespace quietlark
