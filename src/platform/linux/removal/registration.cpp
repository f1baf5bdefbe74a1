#include "platform/linux/removal/registration.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
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

/// The link of that path; its target is empty for what is none.
Registration::Link readLink(const QString& path) {
    std::error_code failure;
    const auto target =
        std::filesystem::read_symlink(QFile::encodeName(path).toStdString(), failure);
    return {path, QByteArray::fromStdString(target.native())};
}

/// Where the link ends, also if nothing is there; empty for what is no link, or one in a circle.
QString endOf(const Registration::Link& link) {
    if (link.target.isEmpty()) return {};
    const std::filesystem::path path(QFile::encodeName(link.path).toStdString());
    std::error_code failure;
    const auto end =
        std::filesystem::weakly_canonical(path.parent_path() / link.target.toStdString(), failure);
    return failure ? QString() : QFile::decodeName(QByteArray::fromStdString(end.native()));
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

/// What was made for the bundle, inner first.
struct Made {
    QStringList links;
    QStringList folders;
};

/// A line each, in the order in which they were made; folders with a final slash.
Made madeFor(const QString& bundle) {
    const auto list = readRegularFile(bundle + QStringLiteral("/share/quietlark/registered"),
                                      longestListBytes, FileTrust::Anyone);
    Made made;
    for (const QByteArray& line : list.value_or(QByteArray()).split('\n')) {
        if (!line.startsWith('/')) continue;
        QStringList& paths = line.endsWith('/') ? made.folders : made.links;
        paths.prepend(QDir::cleanPath(QFile::decodeName(line)));
    }
    return made;
}

/// Whether that is where a link of ours is below one folder or another.
bool isPlaceOfOurs(const QString& path) {
    return std::ranges::any_of(
        belowHome + belowConfigHome + belowDataHome, [&](const QString& place) {
            const int components = int(place.count(u'/')) + 1;
            const QString tail = path.section(u'/', -components);
            return QRegularExpression::fromWildcard(place).match(tail).hasMatch();
        });
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
    QStringList places;
    for (const QString& pattern : m_patterns)
        places << pathsLike(pattern);
    const Made made = madeFor(bundle);
    // Where the session that it was installed in had its directories.
    std::ranges::copy_if(made.links, std::back_inserter(places), isPlaceOfOurs);
    places.removeDuplicates();
    for (const QString& path : places) {
        const Link link = readLink(path);
        if (!endOf(link).startsWith(bundle + u'/')) continue;
        traces.links.push_back(link);
        // Which systemd makes for a service of its user's, and removes with the last one.
        const QString folder = QFileInfo(path).path();
        if (folder.endsWith(QStringLiteral(".wants"))) traces.folders << folder;
    }
    const auto folders = foldersOnTheWayTo(places << bundlePath);
    for (const QString& folder : made.folders) {
        if (folders.contains(folder)) traces.folders << folder;
    }
    return traces;
}

}  // namespace quietlark
