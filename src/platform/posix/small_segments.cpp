#include "platform/small_segments.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include "platform/posix/open_descriptors.h"

namespace quietlark {

void sendSmallSegmentsAtOnce() {
    forEachOpenDescriptor([](int descriptor) {
        // Everything but a TCP socket refuses this and is none the worse.
        const int on = 1;
        ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    });
}

}  // namespace quietlark
