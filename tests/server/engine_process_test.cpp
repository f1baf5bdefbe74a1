#include "server/engine_process.h"

#include <array>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include "support/wait.h"

namespace quietlark {
namespace {

EngineProcess shell(const std::string& script) {
    return EngineProcess::start("/bin/sh", {"-c", script}).value();
}

/// All that it writes until it closes its output.
std::string outputOf(const EngineProcess& process) {
    std::string text;
    std::array<char, 256> bytes{};
    while (true) {
        pollfd descriptor{process.output(), POLLIN, 0};
        poll(&descriptor, 1, -1);
        const auto count = read(process.output(), bytes.data(), bytes.size());
        if (count <= 0) return text;
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

bool hasEnded(const EngineProcess& process) {
    pollfd descriptor{process.end(), POLLIN, 0};
    return poll(&descriptor, 1, 20000) == 1;
}

}  // namespace

TEST(EngineProcessTest, WhatItWritesIsRead) {
    EXPECT_EQ(outputOf(shell("echo one; echo two >&2")), "one\ntwo\n");
}

TEST(EngineProcessTest, ItWorksInTheRootFolder) {
    EXPECT_EQ(outputOf(shell("pwd")), "/\n");
}

TEST(EngineProcessTest, HowItEndedIsTold) {
    auto failing = shell("exit 3");
    EXPECT_TRUE(hasEnded(failing));
    EXPECT_EQ(failing.wait(), "exited with status 3");
    auto killed = shell("kill -9 $$");
    EXPECT_TRUE(hasEnded(killed));
    EXPECT_EQ(killed.wait(), "was ended by signal 9");
}

TEST(EngineProcessTest, AProgramThatIsNotThereEndsAtOnce) {
    auto nothing = EngineProcess::start("/nowhere/program", {}).value();
    EXPECT_TRUE(hasEnded(nothing));
    EXPECT_EQ(nothing.wait(), "exited with status 127");
}

TEST(EngineProcessTest, ItHasNoInputAndNoneOfOurFiles) {
    std::array<int, 2> ours{};
    ASSERT_EQ(pipe(ours.data()), 0);
    EXPECT_EQ(outputOf(shell("cat; echo /proc/self/fd/*")),
              "/proc/self/fd/0 /proc/self/fd/1 /proc/self/fd/2 /proc/self/fd/3\n")
        << "3 is the shell's own, for reading the folder";
    close(ours[0]);
    close(ours[1]);
}

TEST(EngineProcessTest, ItEndsWithTheObject) {
    std::string id;
    {
        const auto process = shell("echo $$; exec sleep 1000");
        std::array<char, 32> bytes{};
        ASSERT_TRUE(waitUntil([&] { return read(process.output(), bytes.data(), 31) > 0; }));
        id = bytes.data();
        EXPECT_EQ(kill(std::stoi(id), 0), 0);
    }
    EXPECT_NE(kill(std::stoi(id), 0), 0);
}

TEST(EngineProcessTest, SignalsThatWeBlockReachIt) {
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, &before);
    auto process = shell("kill -TERM $$; echo survived");
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(outputOf(process), "");
    EXPECT_TRUE(hasEnded(process));
    EXPECT_EQ(process.wait(), "was ended by signal 15");
}

}  // namespace quietlark
