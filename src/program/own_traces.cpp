#include "program/own_traces.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <pwd.h>
#include <unistd.h>

#include "platform/base_directories.h"

namespace quietlark {

namespace {

QString furtherRoot() {
    return qEnvironmentVariable("QUIETLARK_APPLICATIONS");
}

QString defaultsBeside(const QString& settingsFile) {
    return QFileInfo(settingsFile).dir().filePath(QStringLiteral("defaults.ini"));
}

/// Whatever HOME says.
QString registeredHome() {
    const passwd* user = ::getpwuid(::geteuid());
    return user ? QFile::decodeName(user->pw_dir) : QString();
}

/// Of the roots of applications the ones that are not a package manager's.
QStringList bundleRoots(const Installation& installation) {
    QStringList roots = installation.applicationRoots();
    roots.removeAll(QStringLiteral("/usr/"));
    return roots;
}

/// Which other programs use too, wherever the environment has put them.
QStringList sharedPlaces() {
    QStringList places{QDir::rootPath(), QDir::homePath(), registeredHome(), configHome(),
                       dataHome()};
    for (const char* variable : {"XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QString place = QFile::decodeName(qgetenv(variable));
        if (place.startsWith(u'/')) places << place;
    }
    return places;
}

/// Folders that using the program makes where they are missing: for its settings, the login item,
/// the service that systemd is to run, and the model. Each before those in it.
QStringList sharedFolders() {
    const QString home = QDir::homePath() + u'/';
    QStringList folders;
    for (const QString& base : {configHome(), dataHome()}) {
        const qsizetype outer = folders.size();
        folders << base;
        for (QString at = QFileInfo(base).path(); at.startsWith(home); at = QFileInfo(at).path())
            folders.insert(outer, at);
    }
    for (const char* inner : {"/autostart", "/systemd", "/systemd/user"})
        folders << configHome() + QLatin1String(inner);
    // A home directory, and what holds it, are not ours to remove.
    folders.removeIf([&](const QString& folder) {
        return home.startsWith(folder + u'/') ||
               (registeredHome() + u'/').startsWith(folder + u'/');
    });
    folders.removeDuplicates();
    return folders;
}

Registration registration() {
    return Registration(QDir::homePath(), {configHome(), usualConfigHome()},
                        {dataHome(), usualDataHome()});
}

}  // namespace

OwnTraces::OwnTraces(const QString& settingsFile)
    : installation(QCoreApplication::applicationFilePath(), QDir::homePath(), furtherRoot()),
      defaults(defaultsBeside(settingsFile)),
      loginItem(configHome(), QCoreApplication::applicationFilePath()),
      files({usualConfigHome(), usualDataHome()},
            sharedPlaces() << QDir::currentPath() << installation.bundlePath(), sharedFolders()),
      recycler({bundleRoots(installation), sharedPlaces(),
                QStringLiteral("/var/lib/dpkg/info/quietlark.list")},
               FreedesktopTrash(dataHome()), registration()) {}

}  // namespace quietlark
