#include "platform/linux/removal/linux_own_files.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/removal/own_tree.h"
#include "platform/own_file.h"

namespace quietlark {

namespace {

const QString programName = QStringLiteral("Quietlark");

/// The directory that holds `path`, by way of links or not: that is where the program has written.
/// Not open for a path that depends on where the program was started.
Descriptor openParent(const QString& path) {
    if (!path.startsWith(u'/')) return {};
    return Descriptor(::open(QFile::encodeName(QFileInfo(path).path()).constData(),
                             O_PATH | O_DIRECTORY | O_CLOEXEC));
}

QByteArray nameIn(const QString& path) {
    return QFile::encodeName(QFileInfo(path).fileName());
}

bool isOfLetter(const QByteArray& text, int (*isKind)(int)) {
    return std::ranges::any_of(text, [&](char each) { return isKind(uchar(each)) != 0; });
}

/// As Qt ends the name of a file that is being written: six random letters. A word, such as
/// "backup", has one case only.
bool isRandomEnding(const QByteArray& ending) {
    constexpr int randomLetters = 6;
    return ending.size() == randomLetters && isOfLetter(ending, std::islower) &&
           isOfLetter(ending, std::isupper) &&
           std::ranges::all_of(ending, [](char each) { return std::isalnum(uchar(each)) != 0; });
}

/// The file itself, or what is left of writing it.
bool standsFor(const QString& entry, const QByteArray& name) {
    const QByteArray known = QFile::encodeName(entry);
    if (name == known || name == known + ".lock" || name == known + ".new") return true;
    return name.startsWith(known + '.') && isRandomEnding(name.mid(known.size() + 1));
}

/// Only the named entries, and folders on the way to them that this leaves empty.
void removeEntries(const Descriptor& folder, const QStringList& entries) {
    for (const QString& entry : entries) {
        const QString below = entry.section(u'/', 1);
        const QByteArray name = QFile::encodeName(entry.section(u'/', 0, 0));
        if (below.isEmpty()) {
            removeOwnEntries(folder,
                             [&](const QByteArray& each) { return standsFor(entry, each); });
            continue;
        }
        const Descriptor way = openOwnFolder(folder, name);
        if (!way.isOpen()) continue;
        removeEntries(way, {below});
        ::unlinkat(folder.number(), name.constData(), AT_REMOVEDIR);
    }
}

}  // namespace

LinuxOwnFiles::LinuxOwnFiles(QStringList conventionalParents, QStringList keptPlaces,
                             QStringList sharedFolders)
    : m_conventionalParents(std::move(conventionalParents)),
      m_keptPlaces(std::move(keptPlaces)),
      m_sharedFolders(std::move(sharedFolders)) {}

void LinuxOwnFiles::removeFolder(const Folder& folder) {
    const QByteArray name = nameIn(folder.path);
    const Descriptor parent = openParent(folder.path);
    if (!parent.isOpen() || name != QFile::encodeName(programName)) return;
    const bool isOurs = isByConvention(folder.path);
    const Descriptor directory = openOwnFolder(parent, name);
    if (!directory.isOpen()) {
        // What a link leads to may be anything; the link itself is all that is there of ours.
        if (isOurs && QFileInfo(folder.path).isSymLink()) removeFile(folder.path);
        return;
    }
    const bool isKept = std::ranges::any_of(
        m_keptPlaces, [&](const QString& place) { return isAtOrAbove(directory, place); });
    if (isOurs && !isKept)
        removeOwnEntries(directory, [](const QByteArray&) { return true; });
    else
        removeEntries(directory, folder.entries);
    // Refused by the system as long as anything is left.
    if (!isKept) ::unlinkat(parent.number(), name.constData(), AT_REMOVEDIR);
}

void LinuxOwnFiles::removeFile(const QString& path) {
    // What depends on where the program was started means nothing.
    if (path.startsWith(u'/')) static_cast<void>(removeOwnFile(path));
}

QStringList LinuxOwnFiles::missingFolders() const {
    QStringList missing;
    for (const QString& folder : m_sharedFolders) {
        // A link to nothing is the user's, and is not replaced.
        const QFileInfo info(folder);
        if (!info.exists() && !info.isSymLink()) missing << folder;
    }
    return missing;
}

void LinuxOwnFiles::removeEmptyFolders(const QStringList& paths) {
    // Inner ones first.
    for (auto folder = m_sharedFolders.rbegin(); folder != m_sharedFolders.rend(); ++folder) {
        if (!paths.contains(*folder)) continue;
        const Descriptor parent = openParent(*folder);
        const QByteArray name = nameIn(*folder);
        // Refused by the system where there is something in it.
        if (openOwnFolder(parent, name).isOpen())
            ::unlinkat(parent.number(), name.constData(), AT_REMOVEDIR);
    }
}

bool LinuxOwnFiles::isByConvention(const QString& path) const {
    return m_conventionalParents.contains(QDir::cleanPath(QFileInfo(path).path()));
}

}  // namespace quietlark
