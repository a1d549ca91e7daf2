#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "service/daemonize.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Patience.h"
#include "tests/support/Text.h"
#include "tests/unit/service/OwnProcess.h"

namespace reticled {
namespace {

namespace fs = std::filesystem;

const fs::path FACTS = "/tmp/daemon-facts";
constexpr auto BOTH_FORKS = "1st fork sucess\n2nd fork sucess\n";

/// What a daemon can tell of itself.
struct Facts {
    pid_t process = 0;
    pid_t session = 0;
    mode_t mask = 0;
    std::string directory;
    std::string descriptors;  ///< number and target of each, in order
};

std::string describeDescriptors() {
    std::string all;
    for (int number = 0; number < 1024; ++number) {
        std::error_code isClosed;
        const fs::path target =
            fs::read_symlink("/proc/self/fd/" + std::to_string(number), isClosed);
        if (!isClosed) {
            all += std::to_string(number) + ':' + target.string() + ' ';
        }
    }
    return all;
}

/// Runs in the daemon, whose streams lead to nowhere: tells by a file, which appears when it is
/// whole.
void writeFacts() {
    const std::string descriptors = describeDescriptors();
    const mode_t mask = umask(0);
    const fs::path draft = FACTS.string() + ".draft";
    std::ofstream(draft) << getpid() << ' ' << getsid(0) << ' ' << mask << ' '
                         << fs::current_path().string() << '\n'
                         << descriptors;
    fs::rename(draft, FACTS);
}

Facts readFacts() {
    Facts facts;
    std::ifstream file(FACTS);
    file >> facts.process >> facts.session >> facts.mask >> facts.directory;
    file.ignore();
    std::getline(file, facts.descriptors);
    return facts;
}

class DaemonizeDeathTest : public testing::Test {
protected:
    DaemonizeDeathTest() { fs::remove(FACTS); }

    /// Becomes a daemon in a process of its own, after `prepare`.
    void daemonizeAfter(const std::function<void()>& prepare) {
        starter = runInOwnProcess([&]() -> int {
            prepare();
            daemonize();
            writeFacts();
            _exit(EXIT_SUCCESS);
        });
        ASSERT_TRUE(eventually([] { return fs::exists(FACTS); }));
        facts = readFacts();
    }

    /// Daemons come to us, the first process of the sandbox.
    void expectEndOfDaemon() const {
        EXPECT_EQ(ChildProcess(facts.process).waitForEnd(), EXIT_SUCCESS);
    }

    Outcome starter;
    Facts facts;
};

TEST_F(DaemonizeDeathTest, StarterEndsWithStatusZeroAfterTwoForks) {
    daemonizeAfter([] {});
    EXPECT_EQ(starter.status, EXIT_SUCCESS);
    EXPECT_EQ(starter.out, BOTH_FORKS);
    EXPECT_EQ(starter.err, "");
    expectEndOfDaemon();
}

TEST_F(DaemonizeDeathTest, DaemonIsInASessionOfItsOwnThatItDoesNotLead) {
    daemonizeAfter([] {});
    EXPECT_NE(facts.session, getsid(0));
    EXPECT_NE(facts.session, facts.process);
    expectEndOfDaemon();
}

TEST_F(DaemonizeDeathTest, NothingIsOpenButNull) {
    daemonizeAfter([] {
        dup2(STDOUT_FILENO, 3);
        dup2(STDOUT_FILENO, 900);
    });
    EXPECT_EQ(facts.descriptors, "0:/dev/null 1:/dev/null 2:/dev/null ");
    expectEndOfDaemon();
}

TEST_F(DaemonizeDeathTest, WhereManyCannotBeClosedAtOnceEachIsClosed) {
    daemonizeAfter([] {
        const rlimit limit{1024, 1024};
        setrlimit(RLIMIT_NOFILE, &limit);
        dup2(STDOUT_FILENO, 900);
        dup2(STDOUT_FILENO, 1023);
        refuseSystemCall(SYS_close_range, ENOSYS);
    });
    EXPECT_EQ(facts.descriptors, "0:/dev/null 1:/dev/null 2:/dev/null ");
    expectEndOfDaemon();
}

TEST_F(DaemonizeDeathTest, DirectoryAndMaskStay) {
    fs::create_directories("/tmp/elsewhere");
    daemonizeAfter([] {
        fs::current_path("/tmp/elsewhere");
        umask(0137);
    });
    EXPECT_EQ(facts.directory, "/tmp/elsewhere");
    EXPECT_EQ(facts.mask, 0137U);
    expectEndOfDaemon();
}

TEST_F(DaemonizeDeathTest, ClosedStandardInputIsReported) {
    daemonizeAfter([] { close(STDIN_FILENO); });
    EXPECT_EQ(starter.err, "Bad file descriptor: Bad file descriptor\n");
    EXPECT_EQ(facts.descriptors, "0:/dev/null 1:/dev/null 2:/dev/null ");
    expectEndOfDaemon();
}

TEST_F(DaemonizeDeathTest, ForksThatFailAreReportedAndTheProcessGoesOn) {
    daemonizeAfter([] { refuseSystemCall(SYS_clone, EAGAIN); });
    EXPECT_EQ(starter.out, "");
    EXPECT_EQ(starter.err,
              repeated("Resource temporarily unavailable: Resource temporarily unavailable\n", 2));
    // The process itself has become the daemon.
    EXPECT_EQ(facts.session, facts.process);
    EXPECT_EQ(facts.descriptors, "0:/dev/null 1:/dev/null 2:/dev/null ");
}

}  // namespace
}  // namespace reticled
