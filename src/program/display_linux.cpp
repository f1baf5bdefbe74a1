#include <csignal>
#include <cstdlib>
#include <iostream>
#include <utility>

#include <QCoreApplication>
#include <QString>
#include <xcb/xcb.h>

#include "program/display.h"

namespace quietlark {

namespace {

QtMessageHandler defaultHandler = nullptr;

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.startsWith(QLatin1String("The X11 connection broke")))
        return defaultHandler(type, context, text);
    sayDisplayIsLost();
    // At once: Qt would end the process in the midst of whatever its threads are doing.
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

bool hasDisplay() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool isUp = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isUp;
}

void sayDisplayIsLost() {
    static bool isSaid = false;
    if (std::exchange(isSaid, true)) return;
    const QString sentence = QCoreApplication::translate(
        "Display", "The connection to the X server was lost, so no hotkey can work any more.");
    std::cerr << "quietlark: " << sentence.toStdString() << std::endl;
}

void reportLostDisplay() {
    // Who writes to the X server before he notices would be ended without a word.
    std::signal(SIGPIPE, SIG_IGN);
    defaultHandler = qInstallMessageHandler(handleMessage);
}

}  // namespace quietlark
