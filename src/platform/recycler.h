#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace quietlark {

/// Why the program could not be moved to the Trash.
struct RecycleError {
    QString localizedDescription;  ///< for the user: what is in the way and what to do about it
};

/// The way of an installed program to the user's Trash. Main thread.
class Recycler {
public:
    virtual ~Recycler() = default;

    /// Moves the bundle to the Trash and removes what installing it has put elsewhere. Fails, with
    /// nothing touched, for what is not the program's alone.
    [[nodiscard]] virtual tl::expected<void, RecycleError> recycle(const QString& bundlePath) = 0;
};

}  // namespace quietlark
