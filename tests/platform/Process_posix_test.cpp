#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "support/ChildProgram.h"

namespace tavlo::test {
namespace {

TEST(ProcessOnPosix, SignalsAndFilesAreNotPassedOn) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipeSignal = ::signal(SIGPIPE, SIG_IGN);
    const int file = ::open("/dev/null", O_RDONLY);
    EXPECT_EQ(outputOf("inheritance"), "");
    ::close(file);
    ::signal(SIGPIPE, pipeSignal);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST(ProcessOnPosix, EndedOnesLeaveTheSystemsList) {
    ASSERT_NE(startChild("sleep=50", ""), nullptr);
    EXPECT_TRUE(comesTrue([] {
        siginfo_t found;
        return ::waitid(P_ALL, 0, &found, WEXITED | WNOHANG | WNOWAIT) == -1 && errno == ECHILD;
    }));
}

}  // namespace
}  // namespace tavlo::test
