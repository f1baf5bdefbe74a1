#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace quietlark {

/// Removes that file, or that link and not what it leads to, if it belongs to the user whom this
/// process acts for. Nothing there is no failure; a folder, or what is another user's, stays, and
/// is one. A failure is the system's description. Any thread.
tl::expected<void, QString> removeOwnFile(const QString& path);

}  // namespace quietlark
