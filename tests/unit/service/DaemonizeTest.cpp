#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
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

/// Leaves descriptors from `limit` on to those who have them: no such number can be had anew.
void limitDescriptors(rlim_t limit) {
    rlimit limits{};
    getrlimit(RLIMIT_NOFILE, &limits);
    limits.rlim_cur = limit;
    setrlimit(RLIMIT_NOFILE, &limits);
}

/// Runs in the daemon, whose streams lead to nowhere: tells by a file, which appears when it is
/// whole.
void writeFacts() {
    limitDescriptors(1024);
    const std::string descriptors = describeDescriptors();
    const fs::path draft = FACTS.string() + ".draft";
    std::ofstream(draft) << getpid() << ' ' << getsid(0) << '\n' << descriptors;
    fs::rename(draft, FACTS);
}

Facts readFacts() {
    Facts facts;
    std::ifstream file(FACTS);
    file >> facts.process >> facts.session;
    file.ignore();
    std::getline(file, facts.descriptors);
    return facts;
}

/// A process that becomes a daemon after `prepare`, and what the daemon tells.
class Daemonizing {
public:
    explicit Daemonizing(const std::function<void()>& prepare)
        : starter([&]() -> int {
              fs::remove(FACTS);
              prepare();
              daemonize();
              writeFacts();
              endAtOnce(EXIT_SUCCESS);
          }) {
        EXPECT_EQ(starter.waitForEnd(), EXIT_SUCCESS);
        EXPECT_TRUE(eventually([] { return fs::exists(FACTS); }));
        facts = readFacts();
    }

    Daemonizing(const Daemonizing&) = delete;
    Daemonizing& operator=(const Daemonizing&) = delete;

    ~Daemonizing() {
        fs::remove(FACTS);
        // Daemons come to us, the first process of the sandbox; not the starter, which has ended.
        if (facts.session != facts.process) {
            EXPECT_EQ(ChildProcess(facts.process).waitForEnd(), EXIT_SUCCESS);
        }
    }

    OwnProcess starter;
    Facts facts;
};

TEST(DaemonizeDeathTest, NothingIsOpenButNull) {
    const Daemonizing daemon([] {
        limitDescriptors(1024);
        dup2(STDOUT_FILENO, 3);
        dup2(STDOUT_FILENO, 1023);
    });
    EXPECT_EQ(daemon.facts.descriptors, "0:/dev/null 1:/dev/null 2:/dev/null ");
}

TEST(DaemonizeDeathTest, WhereManyCannotBeClosedAtOnceEachIsClosed) {
    const Daemonizing daemon([] {
        const rlimit limit{1024, 1024};
        setrlimit(RLIMIT_NOFILE, &limit);
        dup2(STDOUT_FILENO, 900);
        dup2(STDOUT_FILENO, 1023);
        refuseSystemCall(SYS_close_range, ENOSYS);
    });
    EXPECT_EQ(daemon.facts.descriptors, "0:/dev/null 1:/dev/null 2:/dev/null ");
}

// The leak check at the end of the starter needs descriptors for itself.
#if !defined(__SANITIZE_ADDRESS__)

// A limit may be in the millions: one call each would take a second.
TEST(DaemonizeDeathTest, AllButTheStandardStreamsAreClosedByOneCall) {
    const Daemonizing daemon([] {
        limitDescriptors(1024);
        dup2(STDOUT_FILENO, 900);
        refuseSystemCall(SYS_close, EPERM);
    });
    EXPECT_EQ(daemon.facts.descriptors.find(" 900:"), std::string::npos)
        << daemon.facts.descriptors;
}

TEST(DaemonizeDeathTest, WhereTheLimitIsBelowTheStandardStreamsOnlyThoseWithinItAreReplaced) {
    const Daemonizing daemon([] { limitDescriptors(2); });
    EXPECT_EQ(daemon.starter.out(), BOTH_FORKS);
    EXPECT_TRUE(daemon.facts.descriptors.starts_with("0:/dev/null 1:/dev/null 2:/memfd:"))
        << daemon.facts.descriptors;
}

TEST(DaemonizeDeathTest, WhereNoDescriptorMayBeOpenedTheStreamsStayAndTheStarterIsTold) {
    const Daemonizing daemon([] { limitDescriptors(0); });
    EXPECT_EQ(daemon.starter.out(),
              std::string(BOTH_FORKS) + "Error: stdin wasn't closed successfully\n");
    EXPECT_NE(daemon.facts.descriptors.find(" 1:/memfd:"), std::string::npos)
        << daemon.facts.descriptors;
    EXPECT_NE(daemon.facts.descriptors.find(" 2:/memfd:"), std::string::npos)
        << daemon.facts.descriptors;
}

#endif

TEST(DaemonizeDeathTest, ForksThatFailAreReportedAndTheProcessGoesOn) {
    const Daemonizing daemon([] { refuseSystemCall(SYS_clone, EAGAIN); });
    EXPECT_EQ(daemon.starter.out(), "");
    EXPECT_EQ(daemon.starter.err(),
              repeated("Resource temporarily unavailable: Resource temporarily unavailable\n", 2));
    // The process itself has become the daemon.
    EXPECT_EQ(daemon.facts.session, daemon.facts.process);
    EXPECT_EQ(daemon.facts.descriptors, "0:/dev/null 1:/dev/null 2:/dev/null ");
}

}  // namespace
}  // namespace reticled
