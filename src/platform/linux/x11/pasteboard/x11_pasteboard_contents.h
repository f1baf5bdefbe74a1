#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <QByteArray>
#include <QString>
#include <xcb/xcb.h>

#include "platform/linux/x11/pasteboard/x11_pasteboard_connection.h"
#include "platform/pasteboard.h"

namespace quietlark {

/// The target that asks clipboard histories to leave the contents alone; its value is "secret".
inline constexpr std::string_view secretHintTarget = "x-kde-passwordManagerHint";

/// Dictated text in each encoding that readers ask for, and the hint that it is nothing to keep.
///
/// STRING is ISO 8859-1 (ICCCM section 2.7.1), with "?" for what that lacks. COMPOUND_TEXT is not
/// there: whoever reads it reads UTF8_STRING or STRING as well.
[[nodiscard]] PasteboardSnapshot dictatedText(const QString& text);

/// A snapshot made ready to be served: with the atoms of its names. Copies share their data.
class X11PasteboardContents {
public:
    struct Entry {
        xcb_atom_t target;
        xcb_atom_t type;
        std::uint8_t format;
        QByteArray data;
    };

    X11PasteboardContents(PasteboardSnapshot snapshot, X11PasteboardConnection& connection);

    /// In the snapshot's order.
    [[nodiscard]] const std::vector<Entry>& entries() const { return m_entries; }

    /// Null when there is nothing for that target.
    [[nodiscard]] const Entry* find(xcb_atom_t target) const;

    [[nodiscard]] const PasteboardSnapshot& snapshot() const { return m_snapshot; }

private:
    PasteboardSnapshot m_snapshot;
    std::vector<Entry> m_entries;
};

}  // namespace quietlark
