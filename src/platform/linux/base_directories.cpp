#include "platform/base_directories.h"

#include <QDir>
#include <QFile>

namespace quietlark {

namespace {

QString fromEnvironment(const char* variable, const QString& usual) {
    const QString directory = QFile::decodeName(qgetenv(variable));
    // The standard has relative paths ignored; Qt 6.4 does not.
    return directory.startsWith(u'/') ? QDir::cleanPath(directory) : usual;
}

QString belowHome(const char* path) {
    // As Qt has it, the root directory where the environment says nothing.
    const QString home = QDir::homePath();
    const QString directory = home.startsWith(u'/') ? home : QDir::rootPath();
    return QDir::cleanPath(directory + QLatin1String(path));
}

}  // namespace

QString configHome() {
    return fromEnvironment("XDG_CONFIG_HOME", usualConfigHome());
}

QString dataHome() {
    return fromEnvironment("XDG_DATA_HOME", usualDataHome());
}

QString usualConfigHome() {
    return belowHome("/.config");
}

QString usualDataHome() {
    return belowHome("/.local/share");
}

}  // namespace quietlark
