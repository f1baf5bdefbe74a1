#pragma once

#include <sys/stat.h>
#include <unistd.h>

namespace quietlark {

/// Whether the file belongs to the user whom this process acts for.
[[nodiscard]] inline bool isOwn(const struct stat& status) {
    return status.st_uid == ::geteuid();
}

}  // namespace quietlark
