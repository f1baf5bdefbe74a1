#include "platform/linux/xdg/desktop_entry.h"

namespace quietlark {

QString quotedForExec(const QString& argument) {
    QString quoted;
    for (const QChar character : argument) {
        if (character == QLatin1Char('%')) {
            quoted += QStringLiteral("%%");  // else a field code
        } else if (character == QLatin1Char('\\')) {
            // Quoted for the argument and, both of these, for the value of the key.
            quoted += QStringLiteral("\\\\\\\\");
        } else if (QStringLiteral("\"`$").contains(character)) {
            quoted += QStringLiteral("\\\\") + character;
        } else if (character == QLatin1Char('\n')) {
            quoted += QStringLiteral("\\n");
        } else if (character == QLatin1Char('\t')) {
            quoted += QStringLiteral("\\t");
        } else {
            quoted += character;
        }
    }
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

std::optional<QString> desktopEntryValue(const QByteArray& file, const QString& key) {
    bool isInGroup = false;
    for (const QString& line : QString::fromUtf8(file).split(QLatin1Char('\n'))) {
        const QString text = line.trimmed();
        if (text.startsWith(QLatin1Char('['))) {
            isInGroup = text == QLatin1String("[Desktop Entry]");
            continue;
        }
        const auto equals = text.indexOf(QLatin1Char('='));
        if (!isInGroup || equals < 0 || text.startsWith(QLatin1Char('#'))) continue;
        if (text.left(equals).trimmed() == key) return text.mid(equals + 1).trimmed();
    }
    return std::nullopt;
}

}  // namespace quietlark
