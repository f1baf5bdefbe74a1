#include "platform/linux/removal/installed_links.h"

#include <filesystem>
#include <system_error>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace quietlark {

namespace {

const QStringList belowHome{QStringLiteral(".local/bin/quietlark"),
                            QStringLiteral(".local/bin/quietlark-server")};

const QStringList belowConfigHome{
    QStringLiteral("autostart/net.quietlark.app.desktop"),
    QStringLiteral("systemd/user/net.quietlark.server.service"),
    QStringLiteral("systemd/user/*.wants/net.quietlark.server.service")};

const QStringList belowDataHome{QStringLiteral("applications/net.quietlark.app.desktop"),
                                QStringLiteral("icons/hicolor/*/apps/net.quietlark.app*"),
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

}  // namespace

InstalledLinks::InstalledLinks(const QString& home, const QStringList& configHomes,
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

QStringList InstalledLinks::into(const QString& bundlePath) const {
    const QString bundle = QFileInfo(bundlePath).canonicalFilePath();
    if (bundle.isEmpty()) return {};
    QStringList links;
    for (const QString& pattern : m_patterns) {
        for (const QString& path : pathsLike(pattern)) {
            const QString end = QFile::decodeName(QByteArray::fromStdString(endOf(path).native()));
            if (end.startsWith(bundle + u'/')) links << path;
        }
    }
    return links;
}

}  // namespace quietlark
