#pragma once

#include <chrono>
#include <list>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_incr_transfer.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_contents.h"

namespace quietlark {

/// Answers other programs' questions for a selection's contents, as the owner has to (ICCCM
/// section 2.2): TARGETS, TIMESTAMP, MULTIPLE, and each target of the contents, large ones in
/// pieces. What contents, the caller decides for each question. One thread.
class X11SelectionServer {
public:
    using Clock = std::chrono::steady_clock;

    /// A requestor that does not take its next piece for `patience` is given up.
    X11SelectionServer(X11PasteboardConnection& connection, std::chrono::milliseconds patience);

    /// What a question is answered with.
    struct Answer {
        const X11PasteboardContents* contents;  ///< null refuses
        xcb_timestamp_t ownedSince;
    };

    /// Answers a question. Returns the targets of the contents that were delivered, or begun.
    std::vector<xcb_atom_t> respond(const xcb_selection_request_event_t& request, Answer answer);

    void onPropertyNotify(const xcb_property_notify_event_t& event);

    /// The requestor is gone, and with it what was on the way there.
    void onWindowGone(xcb_window_t requestor);

    /// Gives up the transfers that are overdue; tells when to call again.
    std::optional<Clock::time_point> dropOverdue(Clock::time_point now);

    [[nodiscard]] bool hasTransfers() const { return !m_transfers.empty(); }

private:
    struct Question {
        xcb_window_t requestor;
        xcb_atom_t target;
        xcb_atom_t property;
    };

    void notify(const xcb_selection_request_event_t& request, xcb_atom_t property);
    bool convert(const Question& question, Answer answer, std::vector<xcb_atom_t>& delivered);
    bool convertMultiple(const Question& question, Answer answer,
                         std::vector<xcb_atom_t>& delivered);
    void sendTargets(const Question& question, const X11PasteboardContents& contents);
    void sendEntry(const Question& question, const X11PasteboardContents::Entry& entry);
    void setProperty(const Question& question, xcb_atom_t type,
                     const std::vector<std::uint32_t>& items);
    void watch(xcb_window_t requestor, std::uint32_t eventMask);
    void remove(std::list<X11IncrTransfer>::iterator transfer);

    X11PasteboardConnection& m_connection;
    std::chrono::milliseconds m_patience;
    std::list<X11IncrTransfer> m_transfers;
};

}  // namespace quietlark
