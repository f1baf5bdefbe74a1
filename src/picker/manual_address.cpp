#include "picker/manual_address.h"

#include <algorithm>

namespace quietlark {

namespace {

constexpr QLatin1String schemeMark("://");
constexpr QLatin1String defaultScheme("http");

QStringView withoutPath(QStringView text) {
    for (const QChar mark : {u'/', u'?', u'#'}) {
        const auto end = text.indexOf(mark);
        if (end >= 0) text = text.first(end);
    }
    return text.trimmed();
}

std::optional<std::int64_t> portFrom(QStringView text) {
    constexpr std::int64_t maxPort = 65535;
    if (text.startsWith(u'+')) text = text.sliced(1);
    // Digits only: a negative number is no port, and neither is one in another script.
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (!std::all_of(text.begin(), text.end(), isDigit)) return std::nullopt;
    bool isNumber = false;
    const qlonglong port = text.toLongLong(&isNumber);
    if (!isNumber || port < 1 || port > maxPort) return std::nullopt;
    return port;
}

}  // namespace

std::optional<ManualAddress> ManualAddress::parse(const QString& typed) {
    const QStringView text = QStringView(typed).trimmed();
    const auto mark = text.indexOf(schemeMark);
    QString scheme = mark < 0 ? QString() : text.first(mark).trimmed().toString().toLower();
    if (scheme.isEmpty()) scheme = defaultScheme;

    const QStringView rest = withoutPath(mark < 0 ? text : text.sliced(mark + schemeMark.size()));
    const auto colon = rest.lastIndexOf(u':');
    if (colon < 0) return std::nullopt;
    const QStringView host = rest.first(colon).trimmed();
    const auto port = portFrom(rest.sliced(colon + 1).trimmed());
    if (host.isEmpty() || !port) return std::nullopt;
    return ManualAddress{scheme, host.toString(), *port};
}

QString ManualAddress::baseAddress() const {
    return scheme + schemeMark + host + u':' + QString::number(port);
}

QString typedForm(const ManualRemote& remote) {
    const QString hostPort = remote.host + u':' + QString::number(remote.port);
    if (remote.scheme.isEmpty() || remote.scheme == defaultScheme) return hostPort;
    return remote.scheme + schemeMark + hostPort;
}

}  // namespace quietlark
