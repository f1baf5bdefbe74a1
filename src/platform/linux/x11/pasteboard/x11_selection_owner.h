#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include <QString>
#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_contents.h"
#include "platform/linux/x11/pasteboard/x11_selection_server.h"
#include "platform/pasteboard.h"

namespace quietlark {

/// Owns a selection for the time of one paste (ICCCM section 2.1): first with dictated text, then
/// with what was there before, or with the text for good. One thread.
///
/// It takes the selection with a timestamp of the server's and announces every later change with
/// that same timestamp. The server ignores it once somebody has taken the selection at a later
/// time, so that a newer copy is never undone.
///
/// The client that had the keyboard focus when the text was put there is the paste target. If it
/// has not read the text by the time of restore(), it alone still gets the text for a while, until
/// it has read it. Everybody else, clipboard managers above all, gets the restored contents.
class X11SelectionOwner {
public:
    using Clock = std::chrono::steady_clock;

    X11SelectionOwner(X11PasteboardConnection& connection, X11SelectionServer& server,
                      xcb_atom_t selection, std::chrono::milliseconds grace);

    [[nodiscard]] xcb_window_t window() const { return m_window; }
    [[nodiscard]] bool isOwner() const { return m_isOwner; }

    /// Takes the selection with a text in place of `covered`, the contents so far where they are
    /// known. The server has to be asked for the time first: isTaking() until it has answered.
    void take(const QString& text, std::optional<PasteboardSnapshot> covered);
    [[nodiscard]] bool isTaking() const { return m_taking.has_value(); }

    /// Serves `snapshot` in place of the text, or gives the selection up if it is empty. Does
    /// nothing unless a text awaits it.
    void restore(PasteboardSnapshot snapshot, Clock::time_point now);

    /// restore() of what the text covers, as far as that is known.
    void restoreCovered(Clock::time_point now);

    /// Makes the text, without its hint, contents of the user's own, and forgets what it covers.
    /// Does nothing unless a text awaits restore().
    void keep();

    /// Ends the paste now: the text gives way to what it covered.
    void finish();

    /// What the user has on the pasteboard, the text apart that awaits restore().
    [[nodiscard]] PasteboardSnapshot snapshot() const;

    /// True when what is served is the user's and would be lost with this program.
    [[nodiscard]] bool servesRestored() const { return m_isOwner && !m_text && m_contents; }

    void onRequest(const xcb_selection_request_event_t& request);
    void onClear(const xcb_selection_clear_event_t& event);
    void onPropertyNotify(const xcb_property_notify_event_t& event);

    /// Ends the paste target's time when it is over; tells when to call again.
    std::optional<Clock::time_point> onTime(Clock::time_point now);

private:
    struct Text {
        X11PasteboardContents contents;
        std::optional<PasteboardSnapshot> covered;
        std::optional<std::uint32_t> pasteTarget = std::nullopt;  ///< a client
        bool isRead = false;                                      ///< by the paste target
        bool isShown = false;  ///< to the paste target alone, after restore()
        std::optional<Clock::time_point> ends = std::nullopt;  ///< set by restore()
    };

    [[nodiscard]] bool awaitsRestore() const { return m_text && !m_text->ends; }
    [[nodiscard]] bool seesText(std::uint32_t client) const;
    void announce();
    void endText();
    void letGo();

    X11PasteboardConnection& m_connection;
    X11SelectionServer& m_server;
    xcb_atom_t m_selection;
    xcb_atom_t m_hint;
    xcb_atom_t m_timeProperty;
    std::chrono::milliseconds m_grace;
    xcb_window_t m_window;
    bool m_isOwner = false;
    xcb_timestamp_t m_ownedSince = XCB_CURRENT_TIME;
    std::optional<Text> m_taking;                     ///< until the server has told the time
    std::optional<Text> m_text;                       ///< what everyone, or the target, reads
    std::optional<X11PasteboardContents> m_contents;  ///< what was restored or kept
};

}  // namespace quietlark
