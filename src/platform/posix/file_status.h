#pragma once

#include <sys/stat.h>
#include <unistd.h>

namespace quietlark {

/// Whether the file belongs to the user whom this process acts for.
[[nodiscard]] inline bool isOwn(const struct stat& status) {
    return status.st_uid == ::geteuid();
}

/// Whether the two are of one file, be it under two names.
[[nodiscard]] inline bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace quietlark
