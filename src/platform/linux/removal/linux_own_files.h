#pragma once

#include <QStringList>

#include "platform/own_files.h"

namespace quietlark {

/// The program's files among the user's others. `~/.config/Quietlark` and the like are the
/// program's by convention; a Quietlark elsewhere may be anything.
class LinuxOwnFiles final : public OwnFiles {
public:
    /// `conventionalParents`: folders in which one of the program's name is the program's, absolute
    /// and without a final slash. `keptPlaces`: directories that stay whatever their name, as does
    /// every directory that holds one, such as the user's home. `sharedFolders`: absolute, and each
    /// before those in it.
    LinuxOwnFiles(QStringList conventionalParents, QStringList keptPlaces,
                  QStringList sharedFolders);

    void removeFolder(const Folder& folder) override;
    void removeFile(const QString& path) override;
    [[nodiscard]] QStringList missingFolders() const override;
    void removeEmptyFolders(const QStringList& paths) override;

private:
    [[nodiscard]] bool isByConvention(const QString& path) const;

    const QStringList m_conventionalParents;
    const QStringList m_keptPlaces;
    const QStringList m_sharedFolders;
};

}  // namespace quietlark
