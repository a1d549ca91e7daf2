#include "tests/sweep/Crew.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "tests/support/FileDescriptor.h"
#include "tests/support/Sandbox.h"
#include "tests/sweep/Programs.h"

namespace {

using Clock = std::chrono::steady_clock;

/// A line of text between processes; the kernel takes each in one piece.
constexpr std::size_t LONGEST_DETAIL = PIPE_BUF - 100;

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};

Pipe openPipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) < 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    return {FileDescriptor(ends[0], "pipe"), FileDescriptor(ends[1], "pipe")};
}

/// A daemon that must close each possible descriptor by itself is done soon.
void limitDescriptors() {
    const rlimit few{.rlim_cur = 256, .rlim_max = 256};
    setrlimit(RLIMIT_NOFILE, &few);
}

/// Runs `body` in namespaces of its own, in a child of this process. What it throws is written to
/// standard error and makes the child's status 1.
void startStage(const std::function<void()>& body) {
    std::cout.flush();
    const pid_t child = fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child > 0) {
        return;
    }
    try {
        const Sandbox sandbox({programs::SOURCE_DIRECTORY, programs::BUILD_DIRECTORY});
        sandbox.run([&] {
            try {
                // Daemons come to us when their parents end.
                prctl(PR_SET_CHILD_SUBREAPER, 1);
                limitDescriptors();
                body();
                return EXIT_SUCCESS;
            } catch (const std::exception& error) {
                std::cerr << "sweep: " << error.what() << std::endl;
                return EXIT_FAILURE;
            }
        });
    } catch (const std::exception& failure) {
        std::cerr << "sweep: no private namespaces: " << failure.what() << std::endl;
    }
    std::_Exit(EXIT_FAILURE);
}

/// Waits for all stages. \throws std::runtime_error when one failed.
void waitForStages() {
    bool haveAllEndedWell = true;
    int status = 0;
    while (wait(&status) > 0) {
        haveAllEndedWell = haveAllEndedWell && status == 0;
    }
    if (!haveAllEndedWell) {
        throw std::runtime_error("a stage has failed");
    }
}

void writeLine(const FileDescriptor& pipe, std::string line) {
    line += '\n';
    if (write(pipe.get(), line.data(), line.size()) < 0) {
        throw std::system_error(errno, std::generic_category(), "write to the sweep");
    }
}

using Stream = std::unique_ptr<FILE, decltype(&fclose)>;

void forEachLine(const FileDescriptor& pipe, const std::function<void(const std::string&)>& take) {
    const Stream stream(fdopen(dup(pipe.get()), "r"), &fclose);
    char* line = nullptr;
    std::size_t capacity = 0;
    for (ssize_t size = getline(&line, &capacity, stream.get()); size > 0;
         size = getline(&line, &capacity, stream.get())) {
        take(std::string(line, static_cast<std::size_t>(size) - 1));
    }
    std::free(line);  // NOLINT(*-no-malloc): getline's
}

std::string inOneLine(std::string text) {
    text.resize(std::min(text.size(), LONGEST_DETAIL));
    std::replace(text.begin(), text.end(), '\n', '\f');
    return text;
}

std::string inLines(std::string text) {
    std::replace(text.begin(), text.end(), '\f', '\n');
    return text;
}

/// A number that all stages draw from.
class Counter {
public:
    Counter()
        : _memory(mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0)) {
        if (_memory == MAP_FAILED) {
            throw std::bad_alloc();
        }
        _number = new (_memory) Number(0);
    }
    Counter(const Counter&) = delete;
    Counter& operator=(const Counter&) = delete;
    ~Counter() { munmap(_memory, sizeof(Number)); }

    [[nodiscard]] std::size_t draw() { return (*_number)++; }

private:
    using Number = std::atomic<std::size_t>;
    void* _memory;
    Number* _number = nullptr;
};

}  // namespace

std::vector<Fault> Crew::findFaults() {
    Pipe pipe = openPipe();
    startStage([&] {
        for (const Fault& fault : Stage().findFaults()) {
            std::ostringstream line;
            line << fault.site.program << ' ' << fault.site.thread << ' ' << fault.site.call << ' '
                 << fault.site.occurrence << ' ' << fault.error;
            writeLine(pipe.writing, line.str());
        }
    });
    pipe.writing.close();
    std::vector<Fault> faults;
    forEachLine(pipe.reading, [&](const std::string& line) {
        std::istringstream words(line);
        Fault fault;
        words >> fault.site.program >> fault.site.thread >> fault.site.call >>
            fault.site.occurrence >> fault.error;
        faults.push_back(fault);
    });
    waitForStages();
    return faults;
}

void Crew::tryOut(const std::vector<Fault>& faults, std::chrono::seconds duration,
                  const std::function<void(const Fault&, const Verdict&)>& take) const {
    Pipe pipe = openPipe();
    Counter next;
    const Clock::time_point end = Clock::now() + duration;
    for (int i = 0; i < _stages; ++i) {
        startStage([&] {
            Stage stage;
            for (std::size_t index = next.draw(); index < faults.size() && Clock::now() < end;
                 index = next.draw()) {
                const Verdict verdict = stage.tryOut(faults[index]);
                writeLine(pipe.writing, std::to_string(index) + ' ' +
                                            std::to_string(static_cast<int>(verdict.end)) + ' ' +
                                            inOneLine(verdict.detail));
            }
        });
    }
    pipe.writing.close();
    forEachLine(pipe.reading, [&](const std::string& line) {
        std::istringstream words(line);
        std::size_t index = 0;
        int ending = 0;
        words >> index >> ending;
        std::string detail;
        std::getline(words.ignore(), detail);
        take(faults.at(index), {static_cast<End>(ending), inLines(detail)});
    });
    waitForStages();
}
