#include "platform/linux/removal/registration.h"

#include <filesystem>
#include <system_error>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include "platform/regular_file.h"

namespace quietlark {

namespace {

// Hundreds of times what one holds.
constexpr qsizetype longestListBytes = 1024 * 1024;

const QStringList belowHome{QStringLiteral(".local/bin/quietlark"),
                            QStringLiteral(".local/bin/quietlark-server")};

const QStringList belowConfigHome{
    QStringLiteral("autostart/net.quietlark.app.desktop"),
    QStringLiteral("systemd/user/net.quietlark.server.service"),
    QStringLiteral("systemd/user/*.wants/net.quietlark.server.service")};

const QStringList belowDataHome{QStringLiteral("applications/net.quietlark.app.desktop"),
                                QStringLiteral("icons/hicolor/*/apps/net.quietlark.app*"),
                                QStringLiteral("man/man1/quietlark.1"),
                                QStringLiteral("man/man1/quietlark-server.1"),
                                QStringLiteral("metainfo/net.quietlark.app.metainfo.xml"),
                                QStringLiteral("systemd/user/net.quietlark.server.service")};

/// The existing paths that the pattern stands for, links to nothing included.
QStringList pathsLike(const QString& pattern) {
    QStringList paths{QStringLiteral("/")};
    for (const QString& component : pattern.split(u'/', Qt::SkipEmptyParts)) {
        QStringList longer;
        for (const QString& path : paths) {
            if (!component.contains(u'*')) {
                longer << QDir(path).filePath(component);
                continue;
            }
            const auto found = QDir(path).entryList(
                {component}, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
            for (const QString& name : found)
                longer << QDir(path).filePath(name);
        }
        paths = longer;
    }
    return paths;
}

/// Where the link ends, also if nothing is there; empty for what is no link, or one in a circle.
std::filesystem::path endOf(const QString& link) {
    const std::filesystem::path path(QFile::encodeName(link).toStdString());
    std::error_code failure;
    const auto target = std::filesystem::read_symlink(path, failure);
    if (failure) return {};
    const auto end = std::filesystem::weakly_canonical(path.parent_path() / target, failure);
    return failure ? std::filesystem::path() : end;
}

QSet<QString> foldersOnTheWayTo(const QStringList& paths) {
    QSet<QString> folders;
    for (const QString& path : paths) {
        for (QString at = QFileInfo(path).path(); at != QDir::rootPath() && !folders.contains(at);
             at = QFileInfo(at).path())
            folders << at;
    }
    return folders;
}

/// A line each, in the order in which they were made, with a final slash.
QStringList foldersMadeFor(const QString& bundle) {
    const auto list = readRegularFile(bundle + QStringLiteral("/share/quietlark/registered"),
                                      longestListBytes, FileTrust::Anyone);
    QStringList folders;
    for (const QByteArray& line : list.value_or(QByteArray()).split('\n')) {
        if (line.size() > 1 && line.endsWith('/'))
            folders.prepend(QFile::decodeName(line).chopped(1));
    }
    return folders;
}

}  // namespace

Registration::Registration(const QString& home, const QStringList& configHomes,
                           const QStringList& dataHomes) {
    const auto add = [this](const QString& folder, const QStringList& places) {
        for (const QString& place : places)
            m_patterns << folder + u'/' + place;
    };
    add(home, belowHome);
    for (const QString& folder : configHomes)
        add(folder, belowConfigHome);
    for (const QString& folder : dataHomes)
        add(folder, belowDataHome);
    m_patterns.removeDuplicates();
}

Registration::Traces Registration::of(const QString& bundlePath) const {
    const QString bundle = QFileInfo(bundlePath).canonicalFilePath();
    if (bundle.isEmpty()) return {};
    Traces traces;
    QStringList places{bundlePath};
    for (const QString& pattern : m_patterns) {
        for (const QString& path : pathsLike(pattern)) {
            const QString end = QFile::decodeName(QByteArray::fromStdString(endOf(path).native()));
            places << path;
            if (!end.startsWith(bundle + u'/')) continue;
            traces.links << path;
            // Which systemd makes for a service of its user's, and removes with the last one.
            const QString folder = QFileInfo(path).path();
            if (folder.endsWith(QStringLiteral(".wants"))) traces.folders << folder;
        }
    }
    const auto folders = foldersOnTheWayTo(places);
    for (const QString& folder : foldersMadeFor(bundle)) {
        if (folders.contains(folder)) traces.folders << folder;
    }
    return traces;
}

}  // namespace quietlark
