#include "platform/small_segments.h"

#include <cstdlib>
#include <memory>

#include <dirent.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace quietlark {

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

}  // namespace

void sendSmallSegmentsAtOnce() {
    const std::unique_ptr<DIR, DirectoryCloser> descriptors(::opendir("/dev/fd"));
    if (!descriptors) return;
    while (const dirent* entry = ::readdir(descriptors.get())) {
        if (entry->d_name[0] == '.') continue;
        // Everything but a TCP socket refuses this and is none the worse.
        const int on = 1;
        ::setsockopt(std::atoi(entry->d_name), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
}

}  // namespace quietlark
