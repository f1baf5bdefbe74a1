#include "platform/linux/removal/linux_recycler.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/removal/own_tree.h"
#include "platform/own_file.h"

namespace quietlark {

namespace {

constexpr const char* packageName = "quietlark";
constexpr const char* program = "bin/quietlark";
constexpr const char* desktopEntry = "share/applications/net.quietlark.app.desktop";

bool holdsFile(const Descriptor& folder, const char* path) {
    struct stat status {};
    return ::fstatat(folder.number(), path, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISREG(status.st_mode);
}

bool holdsNothingElse(const Descriptor& folder) {
    const std::vector<QByteArray> parts{"bin", "lib", "share"};
    return std::ranges::all_of(entryNames(folder), [&](const QByteArray& name) {
        return std::ranges::find(parts, name) != parts.end();
    });
}

}  // namespace

LinuxRecycler::LinuxRecycler(Places places, FreedesktopTrash trash, Registration registration)
    : m_places(std::move(places)),
      m_trash(std::move(trash)),
      m_registration(std::move(registration)) {}

tl::expected<void, RecycleError> LinuxRecycler::recycle(const QString& bundlePath) {
    const QFileInfo info(bundlePath);
    const Descriptor parent(
        ::open(QFile::encodeName(info.path()).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const Descriptor folder = openOwnFolder(parent, QFile::encodeName(info.fileName()));
    const FreedesktopTrash::Item bundle{bundlePath, parent, folder};
    if (const auto objection = objectionTo(bundle)) return tl::unexpected(RecycleError{*objection});
    // Also where the Trash then refuses: all that is left for the user to remove is the bundle.
    const Registration::Traces traces = m_registration.of(bundlePath);
    for (const Registration::Link& link : traces.links)
        removeOwnLink(link.path, link.target);
    const auto moved = m_trash.move(bundle);
    // Refused by the system where there is something in them.
    for (const QString& made : traces.folders) {
        if (QFileInfo(made).ownerId() == ::geteuid()) QDir().rmdir(made);
    }
    return moved.map_error([](const QString& sentence) { return RecycleError{sentence}; });
}

std::optional<QString> LinuxRecycler::objectionTo(const FreedesktopTrash::Item& bundle) const {
    const QString& bundlePath = bundle.path;
    if (isPackaged(bundlePath)) {
        return tr("Quietlark was installed as a package. Remove the package %1 with your package "
                  "manager, for example with: sudo apt remove %1")
            .arg(QLatin1String(packageName));
    }
    const QFileInfo info(bundlePath);
    const bool isInPlace =
        isBelowRoot(bundlePath) && info.fileName() == QStringLiteral("Quietlark");
    if (isInPlace && isProgramAlone(bundle.itself)) return std::nullopt;
    if (isInPlace && info.isDir() && info.ownerId() != ::geteuid())
        return tr("%1 belongs to another user, who alone can remove it.").arg(bundlePath);
    return tr("%1 is not a folder of Quietlark's alone, and has been left as it is. Remove the "
              "program the way you installed it.")
        .arg(bundlePath);
}

bool LinuxRecycler::isProgramAlone(const Descriptor& folder) const {
    const bool isKept = std::ranges::any_of(
        m_places.keptPlaces, [&](const QString& place) { return isAtOrAbove(folder, place); });
    return folder.isOpen() && !isKept && holdsFile(folder, program) &&
           holdsFile(folder, desktopEntry) && holdsNothingElse(folder);
}

bool LinuxRecycler::isBelowRoot(const QString& bundlePath) const {
    if (!bundlePath.startsWith(u'/')) return false;
    const QString parent = QFileInfo(QFileInfo(bundlePath).path()).canonicalFilePath() + u'/';
    return std::ranges::any_of(m_places.applicationRoots,
                               [&](const QString& root) { return parent.startsWith(root); });
}

bool LinuxRecycler::isPackaged(const QString& bundlePath) const {
    QFile list(m_places.packageFiles);
    if (!list.open(QIODevice::ReadOnly)) return false;
    const QString executable =
        QFileInfo(bundlePath).isDir() ? bundlePath + u'/' + QLatin1String(program) : bundlePath;
    return list.readAll().split('\n').contains(QFile::encodeName(executable));
}

}  // namespace quietlark
