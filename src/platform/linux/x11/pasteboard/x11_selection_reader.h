#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_conversion.h"
#include "platform/pasteboard.h"

namespace quietlark {

/// Reads everything that another program offers in a selection: first the list of its targets
/// (TARGETS, ICCCM section 2.6.2), then several of them at a time, so that one which hangs does not
/// hold up the rest; text is asked for first. Targets that are about the transfer, that change
/// something in the owner, or whose value names a resource of the owner's, are left out. Give it
/// the events and take the result when it is done or when you have waited long enough. One thread.
class X11SelectionReader {
public:
    /// Takes at most `byteLimit` bytes in all; representations beyond that are left out.
    X11SelectionReader(X11PasteboardConnection& connection, X11RequestorWindows& windows,
                       xcb_atom_t selection, std::size_t byteLimit);

    void onSelectionNotify(const xcb_selection_notify_event_t& event);
    void onPropertyNotify(const xcb_property_notify_event_t& event);

    /// Another program has taken the selection, or none has it any more (None). What its contents
    /// were cannot be mixed with what they are: reading begins again, or ends.
    void onOwnerChanged(xcb_window_t owner);

    [[nodiscard]] xcb_atom_t selection() const { return m_selection; }
    [[nodiscard]] bool isDone() const { return m_isDone; }

    /// What has arrived so far, in the owner's order; absent when it could not be listed.
    [[nodiscard]] std::optional<PasteboardSnapshot> result();

private:
    void start();
    void onListed();
    void onProgress();
    void askForMore();
    std::vector<xcb_atom_t> listedTargets();
    X11Conversion* conversionFor(xcb_window_t requestor);

    X11PasteboardConnection& m_connection;
    X11RequestorWindows& m_windows;
    xcb_atom_t m_selection;
    std::size_t m_byteLimit;
    std::size_t m_budget = 0;
    std::unique_ptr<X11Conversion> m_list;  ///< until it is answered
    bool m_isListed = false;
    bool m_isDone = false;
    std::vector<xcb_atom_t> m_targets;                          ///< in the owner's order
    std::vector<std::unique_ptr<X11Conversion>> m_conversions;  ///< of those; null until asked
    std::deque<std::size_t> m_unasked;                          ///< which of those, in turn
};

}  // namespace quietlark
