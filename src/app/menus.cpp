#include "app/menus.h"

#include <QCoreApplication>

namespace quietlark {

namespace {

constexpr ModifierFlags commandOption = modifier::command | modifier::option;
constexpr ModifierFlags commandShift = modifier::command | modifier::shift;

QString tr(const char* text) {
    return QCoreApplication::translate("Menus", text);
}

MenuItem item(const QString& title, MenuAction action) {
    return {title, action, {}};
}

MenuItem item(const QString& title, MenuAction action, QChar key,
              ModifierFlags modifiers = modifier::command) {
    return {title, action, KeyEquivalent{QString(key), modifiers}};
}

Menu applicationMenu(const QString& processName) {
    return {{},
            {
                item(tr("About %1").arg(processName), MenuAction::about),
                MenuItem::separator(),
                item(tr("Settings…"), MenuAction::openPrefs, u','),
                MenuItem::separator(),
                item(tr("Hide %1").arg(processName), MenuAction::hide, u'h'),
                item(tr("Hide Others"), MenuAction::hideOthers, u'h', commandOption),
                item(tr("Show All"), MenuAction::unhideAll),
                MenuItem::separator(),
                item(tr("Quit %1").arg(processName), MenuAction::terminate, u'q'),
            }};
}

Menu fileMenu() {
    return {tr("File"), {item(tr("Close Window"), MenuAction::closeWindow, u'w')}};
}

Menu editMenu() {
    return {tr("Edit"),
            {
                item(tr("Undo"), MenuAction::undo, u'z'),
                item(tr("Redo"), MenuAction::redo, u'z', commandShift),
                MenuItem::separator(),
                item(tr("Cut"), MenuAction::cut, u'x'),
                item(tr("Copy"), MenuAction::copy, u'c'),
                item(tr("Paste"), MenuAction::paste, u'v'),
                item(tr("Delete"), MenuAction::deleteSelection),
                item(tr("Select All"), MenuAction::selectAll, u'a'),
            }};
}

Menu windowMenu() {
    return {tr("Window"),
            {
                item(tr("Minimize"), MenuAction::minimize, u'm'),
                item(tr("Zoom"), MenuAction::zoom),
                MenuItem::separator(),
                item(tr("Bring All to Front"), MenuAction::arrangeInFront),
            },
            Menu::Role::windows};
}

}  // namespace

Menu statusMenu() {
    return {{},
            {
                item(tr("Preferences…"), MenuAction::openPrefs, u','),
                MenuItem::separator(),
                item(tr("Quit Quietlark"), MenuAction::terminate, u'q'),
            }};
}

std::vector<Menu> buildMainMenu(const QString& processName) {
    return {applicationMenu(processName), fileMenu(), editMenu(), windowMenu()};
}

}  // namespace quietlark
