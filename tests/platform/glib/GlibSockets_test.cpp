// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/GlibSockets.h>

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <csignal>
#include <thread>
#include <vector>

namespace vorna {
namespace {

void handle(int /*signal*/) {}

struct sigaction pipeAction() {
    struct sigaction action = {};
    sigaction(SIGPIPE, nullptr, &action);
    return action;
}

void setPipeAction(void (*handler)(int), int flags = 0) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaddset(&action.sa_mask, SIGUSR1);
    ASSERT_EQ(sigaction(SIGPIPE, &action, nullptr), 0);
}

TEST(GlibSockets, AreInitialised) {
    ASSERT_EQ(g_type_class_peek(G_TYPE_SOCKET), nullptr);
    glib::initialiseSockets();
    EXPECT_NE(g_type_class_peek(G_TYPE_SOCKET), nullptr);
}

TEST(GlibSockets, LeaveSigpipeAtItsDefault) {
    setPipeAction(SIG_DFL);
    glib::initialiseSockets();
    EXPECT_EQ(pipeAction().sa_handler, SIG_DFL);
}

TEST(GlibSockets, LeaveTheHostsHandlerWithItsFlagsAndMask) {
    setPipeAction(handle, SA_NODEFER);
    glib::initialiseSockets();
    EXPECT_EQ(pipeAction().sa_handler, handle);
    EXPECT_NE(pipeAction().sa_flags & SA_NODEFER, 0);
    const struct sigaction action = pipeAction();
    EXPECT_EQ(sigismember(&action.sa_mask, SIGUSR1), 1);
}

TEST(GlibSockets, LeaveSigpipeIgnored) {
    setPipeAction(SIG_IGN);
    glib::initialiseSockets();
    EXPECT_EQ(pipeAction().sa_handler, SIG_IGN);
}

TEST(GlibSockets, LeaveTheDispositionAloneIfTheHostHasUsedThemBefore) {
    g_type_class_ref(G_TYPE_SOCKET);
    setPipeAction(handle);
    glib::initialiseSockets();
    EXPECT_EQ(pipeAction().sa_handler, handle);
    setPipeAction(SIG_IGN);
    glib::initialiseSockets();
    EXPECT_EQ(pipeAction().sa_handler, SIG_IGN);
}

TEST(GlibSockets, AreReadyForEachOfSeveralThreads) {
    setPipeAction(SIG_DFL);
    std::vector<std::thread> threads;
    for (int count = 0; count < 8; ++count) {
        threads.emplace_back([] {
            glib::initialiseSockets();
            EXPECT_EQ(pipeAction().sa_handler, SIG_DFL);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace vorna
