#pragma once

#include <QString>

namespace quietlark {

/// Why something cannot be had on this desktop.
struct Unavailable {
    QString reason;  ///< one sentence for the user, which says what to do about it
};

}  // namespace quietlark
