#include "platform/receive_buffers.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark {
namespace {

class ReceiveBuffersTest : public testing::Test {
protected:
    ReceiveBuffersTest() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ::bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::listen(m_listener, 1);
        socklen_t length = sizeof address;
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
        EXPECT_EQ(::connect(m_client, reinterpret_cast<sockaddr*>(&address), length), 0);
    }
    ~ReceiveBuffersTest() override {
        for (const int socket : {m_listener, m_client, m_other})
            ::close(socket);
    }

    [[nodiscard]] static int bufferBytes(int socket) {
        int bytes = 0;
        socklen_t length = sizeof bytes;
        EXPECT_EQ(::getsockopt(socket, SOL_SOCKET, SO_RCVBUF, &bytes, &length), 0);
        return bytes;
    }

    const int m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    const int m_client = ::socket(AF_INET, SOCK_STREAM, 0);
    const int m_other = ::socket(AF_INET, SOCK_STREAM, 0);  ///< not connected
};

TEST_F(ReceiveBuffersTest, AConnectionWithinThisComputerIsBounded) {
    const int maxBytes = 512 * 1024;
    ::setsockopt(m_client, SOL_SOCKET, SO_RCVBUF, &maxBytes, sizeof maxBytes);
    boundReceiveBuffersOfNearConnections();
    EXPECT_LE(bufferBytes(m_client), maxBytes);
}

TEST_F(ReceiveBuffersTest, EverythingElseIsLeftAlone) {
    const int listener = bufferBytes(m_listener);
    const int other = bufferBytes(m_other);
    boundReceiveBuffersOfNearConnections();
    EXPECT_EQ(bufferBytes(m_listener), listener);
    EXPECT_EQ(bufferBytes(m_other), other);
}

}  // namespace
}  // namespace quietlark
