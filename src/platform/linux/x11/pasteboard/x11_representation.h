#pragma once

#include <cstdint>
#include <string>

#include <QByteArray>

#include "platform/pasteboard.h"

namespace quietlark {

/// What a selection's owner answers for one target: a property's type, format and data (ICCCM
/// section 2.2). Items of 16 and 32 bits are in this machine's byte order.
struct X11Representation {
    std::string target;
    std::string type;
    std::uint8_t format = 8;  ///< bits of an item: 8, 16 or 32
    QByteArray data;

    bool operator==(const X11Representation&) const = default;

    /// Named by its target alone where the type is called the same and the data are bytes, as
    /// nearly always; otherwise by target, type and format, a line for each.
    [[nodiscard]] CapturedType captured() const;

    /// The way back.
    [[nodiscard]] static X11Representation from(const CapturedType& captured);
};

}  // namespace quietlark
