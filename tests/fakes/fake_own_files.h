#pragma once

#include <QStringList>

#include "platform/own_files.h"

namespace quietlark {

/// Files that are gone once somebody has said so.
class FakeOwnFiles final : public OwnFiles {
public:
    void removeFolder(const Folder& folder) override { m_folders << folder.path; }
    void removeFile(const QString& path) override { m_files << path; }
    [[nodiscard]] QStringList missingFolders() const override { return missing; }
    void removeEmptyFolders(const QStringList& paths) override { m_emptyFolders << paths; }

    QStringList missing;  ///< of the shared folders

    /// In order.
    [[nodiscard]] const QStringList& removedFolders() const { return m_folders; }
    [[nodiscard]] const QStringList& removedFiles() const { return m_files; }
    [[nodiscard]] const QStringList& removedEmptyFolders() const { return m_emptyFolders; }

private:
    QStringList m_folders;
    QStringList m_files;
    QStringList m_emptyFolders;
};

}  // namespace quietlark
