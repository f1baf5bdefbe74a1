#include "platform/posix/open_descriptors.h"

#include <cstdlib>
#include <memory>

#include <dirent.h>

namespace quietlark {

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

}  // namespace

void forEachOpenDescriptor(const std::function<void(int descriptor)>& visit) {
    const std::unique_ptr<DIR, DirectoryCloser> descriptors(::opendir("/dev/fd"));
    if (!descriptors) return;
    while (const dirent* entry = ::readdir(descriptors.get())) {
        if (entry->d_name[0] != '.') visit(std::atoi(entry->d_name));
    }
}

}  // namespace quietlark
