#include "platform/small_segments.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {
namespace {

bool sendsAtOnce(int socket) {
    int on = 0;
    socklen_t length = sizeof on;
    EXPECT_EQ(::getsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, &length), 0);
    return on != 0;
}

TEST(SmallSegmentsTest, EveryTcpSocketSendsAtOnce) {
    const int first = ::socket(AF_INET, SOCK_STREAM, 0);
    const int second = ::socket(AF_INET6, SOCK_STREAM, 0);
    EXPECT_FALSE(sendsAtOnce(first));
    sendSmallSegmentsAtOnce();
    EXPECT_TRUE(sendsAtOnce(first));
    EXPECT_TRUE(sendsAtOnce(second));
    ::close(first);
    ::close(second);
}

}  // namespace
}  // namespace quietlark
