#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include "fakes/fake_log.h"
#include "server/fake_speech_engine.h"
#include "server/listening_check.h"
#include "server/speech_server.h"

namespace quietlark {
namespace {

/// Lets this process have no more sockets of IPv6, as where the system was built or started
/// without.
void removeIpv6() {
    constexpr unsigned number = offsetof(seccomp_data, nr);
    constexpr unsigned family = offsetof(seccomp_data, args);
    std::array<sock_filter, 6> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, number),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, family),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AF_INET6, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EAFNOSUPPORT),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program{filter.size(), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        std::_Exit(EXIT_FAILURE);
}

class ListeningTest : public testing::Test {
protected:
    /// Why nobody can listen there, which must be known beforehand.
    static std::string failureAt(SpeechServer& server, const std::string& host, int port = 0) {
        const std::string foreseen = listeningObstacle(host, port).value_or("");
        const auto bound = server.bind(host, port);
        const std::string failure = bound ? "" : bound.error();
        return failure == foreseen ? failure : failure + ", not " + foreseen;
    }
    std::string failureAt(const std::string& host) { return failureAt(m_server, host); }

    FakeSpeechEngine m_engine;
    FakeLog m_log;
    HttpApi m_api{m_engine};
    SpeechServer m_server{m_api, m_log};
};

}  // namespace

TEST_F(ListeningTest, AnAddressOfAnotherComputerIsNamedAsTheReason) {
    EXPECT_EQ(failureAt("198.51.100.7"), "Cannot assign requested address");
}

TEST_F(ListeningTest, APortThatIsTakenIsNamedAsTheReason) {
    ASSERT_EQ(failureAt("127.0.0.1"), "");
    SpeechServer second(m_api, m_log);
    EXPECT_EQ(failureAt(second, "127.0.0.1", m_server.port()), "Address already in use");
}

TEST_F(ListeningTest, WithoutIpv6AllAddressesAreThoseOfIpv4) {
    const auto listen = [this] {
        removeIpv6();
        std::cerr << "failure: " << failureAt("::1") << "; all: " << failureAt("::") << ";";
        std::_Exit(m_server.port() > 0 ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    EXPECT_EXIT(listen(), testing::ExitedWithCode(EXIT_SUCCESS),
                "failure: Address family not supported by protocol; all: ;");
}

}  // namespace quietlark
