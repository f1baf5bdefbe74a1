#include "screens/prefs_tab.h"

#include <QCoreApplication>

namespace quietlark {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PrefsTab)
};

}  // namespace

QString rawValue(PrefsTab tab) {
    switch (tab) {
        case PrefsTab::general:
            return QStringLiteral("general");
        case PrefsTab::hotkey:
            return QStringLiteral("hotkey");
        case PrefsTab::server:
            return QStringLiteral("server");
    }
    return {};
}

QString label(PrefsTab tab) {
    switch (tab) {
        case PrefsTab::general:
            return Texts::tr("General");
        case PrefsTab::hotkey:
            return Texts::tr("Hotkey");
        case PrefsTab::server:
            return Texts::tr("Server");
    }
    return {};
}

QString symbol(PrefsTab tab) {
    switch (tab) {
        case PrefsTab::general:
            return QStringLiteral("gearshape");
        case PrefsTab::hotkey:
            return QStringLiteral("keyboard");
        case PrefsTab::server:
            return QStringLiteral("server.rack");
    }
    return {};
}

}  // namespace quietlark
