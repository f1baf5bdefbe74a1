// A window with a text field, and a capture of keys. Prints "window ID", and "active" when it has
// the keyboard. Obeys the lines "capture" and "release" with the same word, and answers "text" with
// what has been typed into the field. Of a captured key it prints "key CODE FLAGS", the flags in
// hex.

#include <iostream>
#include <optional>
#include <string>

#include <QApplication>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QWindow>

#include "platform/linux/x11/keys/evdev_key_codes.h"
#include "platform/qt_widgets/qt_key_capture.h"

using namespace quietlark;

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QtKeyCapture capture([](quint32 native) { return keyCodeOf(static_cast<XKeycode>(native)); });
    QLineEdit field;
    std::optional<Cancellable> token;
    QObject::connect(&application, &QApplication::focusWindowChanged, [](const QWindow* window) {
        if (window) std::cout << "active" << std::endl;
    });
    field.show();
    std::cout << "window " << field.winId() << std::endl;

    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string line;
        if (!std::getline(std::cin, line)) return QApplication::quit();
        if (line == "text") {
            std::cout << field.text().toStdString() << std::endl;
            return;
        }
        if (line == "capture") {
            token = capture.capture([](const KeyEvent& event) {
                std::cout << "key " << event.keyCode << std::hex << ' ' << event.modifierFlags
                          << std::dec << std::endl;
            });
        } else {
            token.reset();
        }
        std::cout << line << std::endl;
    });
    return QApplication::exec();
}
