#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include <QByteArray>
#include <QString>
#include <xcb/xfixes.h>

#include "platform/linux/x11/pasteboard/x11_clipboard_handover.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_limits.h"
#include "platform/linux/x11/pasteboard/x11_requestor_windows.h"
#include "platform/linux/x11/pasteboard/x11_selection_owner.h"
#include "platform/linux/x11/pasteboard/x11_selection_reader.h"
#include "platform/linux/x11/pasteboard/x11_selection_server.h"
#include "platform/pasteboard.h"

namespace quietlark {

/// What the pasteboard's thread does: the order of commands, and which part an event is for.
///
/// Where the program that gets the keys pastes the PRIMARY selection instead of the clipboard, that
/// one has the text as well, from setString() until the clipboard no longer has it. So it has while
/// the selection is ours for having been restored: it must not be pasted in place of the text.
///
/// A command may need several events until it is carried out; begin the next one when isBusy() no
/// longer holds.
class X11PasteboardSession {
public:
    using Clock = std::chrono::steady_clock;
    using Answer = std::function<void(std::optional<PasteboardSnapshot>)>;

    enum class Outcome {
        set,
        takenByAnother,
        primaryTakenByAnother,  ///< the clipboard has the text, PRIMARY does not
        disconnected
    };
    using OutcomeHandler = std::function<void(Outcome)>;

    X11PasteboardSession(const QByteArray& display, X11PasteboardLimits limits);

    /// To wait on for events; -1 when there is no X server.
    [[nodiscard]] int fileDescriptor() const { return m_connection.fileDescriptor(); }
    [[nodiscard]] bool isConnected() const { return m_connection.isOpen(); }
    [[nodiscard]] bool isBusy() const;

    void snapshot(Answer answer);
    void setString(const QString& text, OutcomeHandler onSet);
    void restore(PasteboardSnapshot snapshot);
    void keepString();

    /// A snapshot that is under way ends unanswered; a text that waits for the selection's old
    /// contents is set without them.
    void stopReading();

    /// Hands what we own over to a clipboard manager; hasQuit() when that is done.
    void quit();
    [[nodiscard]] bool isQuitting() const { return m_quitDeadline.has_value(); }
    [[nodiscard]] bool hasQuit() const;

    /// Returns when the server has done all that was asked of it. What a client sent last may be
    /// lost if it is gone before that.
    void synchronize() { m_connection.synchronize(); }

    /// Deals with deadlines that have passed. Tells when to come back at the latest.
    std::optional<Clock::time_point> processTime(Clock::time_point now);

    /// Sends what is to be sent and deals with everything that has come from the X server. False
    /// when nothing has; what comes later makes the file descriptor readable. The end of the
    /// connection counts as something.
    bool processEvents();

private:
    void watchOwners();
    void read(xcb_atom_t selection, Answer answer);
    void takeClipboard(const QString& text);
    void takeBoth(const QString& text, std::optional<PasteboardSnapshot> selected);
    void dispatch(const xcb_generic_event_t& event);
    void onSelectionRequest(const xcb_selection_request_event_t& request);
    void onSelectionNotify(const xcb_selection_notify_event_t& event);
    void onPropertyNotify(const xcb_property_notify_event_t& event);
    void onError(const xcb_generic_error_t& error);
    void onOwnerChanged(const xcb_xfixes_selection_notify_event_t& event);
    void answerReader();
    void reportOutcome();
    [[nodiscard]] Outcome outcome() const;

    X11PasteboardLimits m_limits;
    X11PasteboardConnection m_connection;
    X11RequestorWindows m_requestors{m_connection};
    xcb_atom_t m_clipboard = m_connection.atom("CLIPBOARD");
    X11SelectionServer m_server{m_connection, m_limits.piece};
    X11SelectionOwner m_owner{m_connection, m_server, m_clipboard, m_limits.grace};
    X11SelectionOwner m_primary{m_connection, m_server, XCB_ATOM_PRIMARY, m_limits.grace};
    bool m_needsPrimary = false;  ///< the text that was set last has to be there, too
    bool m_isCopiedAnew = false;  ///< since PRIMARY began to be read
    int m_ownerChangedEvent = -1;
    bool m_wasConnected = true;

    std::optional<X11SelectionReader> m_reader;
    Answer m_answer;  ///< to whom the reader's result goes
    Clock::time_point m_readerDeadline;
    OutcomeHandler m_onSet;  ///< who waits for the owner to have taken the clipboard
    std::optional<PasteboardSnapshot> m_lastRead;  ///< until somebody else copies
    std::optional<X11ClipboardHandover> m_handover;
    std::optional<Clock::time_point> m_quitDeadline;  ///< once quit() was called
};

}  // namespace quietlark
