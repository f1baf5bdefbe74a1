#include "platform/boot_session.h"

#include <QFile>

namespace quietlark {

QString bootSession() {
    QFile file(QStringLiteral("/proc/sys/kernel/random/boot_id"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QString::fromLatin1(file.readLine().trimmed());
}

}  // namespace quietlark
