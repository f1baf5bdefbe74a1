#pragma once

#include <cstdint>

#include <QAbstractNativeEventFilter>
#include <QObject>

namespace quietlark {

/// Looks out for a status bar that takes icons of other programs; asks once and then waits to be
/// told. Main thread, with a QGuiApplication.
///
/// Qt decides once per process which kind of status bar it speaks to, at the first question about
/// one. A program that starts with the session, before the panel does, must not ask too early.
class TrayHosts final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayHosts() = default;

    /// Looks from now on, until one is found.
    void start();

Q_SIGNALS:
    /// The first is there. Once; may come during start().
    void found();

private Q_SLOTS:
    void lookForNotifierHost();

private:
    void lookForXEmbedHost();
    void finish();
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::uint32_t m_manager = 0;    ///< the atom of the message by which an XEmbed host announces
    std::uint32_t m_selection = 0;  ///< the atom of the selection that it owns
    bool m_found = false;
};

}  // namespace quietlark
