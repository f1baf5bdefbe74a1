#include "app/made_folders.h"

namespace quietlark {

namespace {

const QString key = QStringLiteral("foldersMissingAtLaunch");

}  // namespace

void noteMissingFolders(UserDefaults& defaults, const OwnFiles& files) {
    QStringList noted = notedFolders(defaults);
    const qsizetype known = noted.size();
    noted << files.missingFolders();
    noted.removeDuplicates();
    // Otherwise every launch would write.
    if (noted.size() > known) defaults.set(key, noted.join(u'\n'));
}

QStringList notedFolders(const UserDefaults& defaults) {
    return defaults.string(key).value_or(QString()).split(u'\n', Qt::SkipEmptyParts);
}

}  // namespace quietlark
