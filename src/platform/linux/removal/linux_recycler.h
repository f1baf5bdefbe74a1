#pragma once

#include <optional>

#include <QCoreApplication>
#include <QStringList>

#include "platform/linux/removal/freedesktop_trash.h"
#include "platform/linux/removal/registration.h"
#include "platform/recycler.h"

namespace quietlark {

/// Moves a bundle to the Trash if it is a folder of the program's own: one called Quietlark, below
/// a directory for applications, of this user's, that holds the program and nothing besides it.
/// What a package manager has installed is left to that.
class LinuxRecycler final : public Recycler {
    Q_DECLARE_TR_FUNCTIONS(LinuxRecycler)

public:
    /// Where things are on this computer.
    struct Places {
        QStringList applicationRoots;  ///< without links and with a final slash
        QStringList keptPlaces;        ///< no folder that holds one is a bundle
        QString packageFiles;          ///< the list of the files of the package, if it is installed
    };

    LinuxRecycler(Places places, FreedesktopTrash trash, Registration registration);

    [[nodiscard]] tl::expected<void, RecycleError> recycle(const QString& bundlePath) override;

private:
    [[nodiscard]] std::optional<QString> objectionTo(const FreedesktopTrash::Item& bundle) const;
    [[nodiscard]] bool isProgramAlone(const Descriptor& folder) const;
    [[nodiscard]] bool isBelowRoot(const QString& bundlePath) const;
    [[nodiscard]] bool isPackaged(const QString& bundlePath) const;

    const Places m_places;
    const FreedesktopTrash m_trash;
    const Registration m_registration;
};

}  // namespace quietlark
