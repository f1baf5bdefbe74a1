#pragma once

#include <functional>
#include <memory>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "peers/x_server.h"
#include "platform/key_synthesizer.h"

namespace quietlark {

/// A real program with a window that text can be pasted into, and a way to see what arrived.
class PasteTarget {
public:
    virtual ~PasteTarget() = default;

    /// Starts the program, gives it the focus, and waits until it takes keys. The keyboard layout
    /// must be American meanwhile.
    [[nodiscard]] virtual bool open(XServer& server, KeySynthesizer& synthesizer) = 0;

    /// Everything that was typed or pasted since it was opened, once that ends with `end`; as far
    /// as it got when that does not happen. The layout must be American again.
    [[nodiscard]] virtual QByteArray contentsEndingWith(const QByteArray& end) = 0;
};

/// A text editor, which is told to save its file with Command-S.
std::unique_ptr<PasteTarget> makeEditor(const QString& program, const QStringList& arguments);

/// A terminal emulator, in which a program reads what arrives. `run` stands before the command.
std::unique_ptr<PasteTarget> makeTerminal(const QString& program, const QStringList& run);

}  // namespace quietlark
