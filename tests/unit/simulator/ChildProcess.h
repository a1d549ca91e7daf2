#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace sim::test {

/// The simulator as a program of its own; killed with this object if it still runs.
class ChildProcess {
public:
    /// Starts `rtos-sim` with `arguments`.
    explicit ChildProcess(const std::vector<std::string>& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess(ChildProcess&&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ChildProcess& operator=(ChildProcess&&) = delete;

    /// The next line of its standard output without its end; what there is when it has ended.
    [[nodiscard]] std::string readLine();

    /// The port in the line that says where it listens, which is read here.
    [[nodiscard]] std::uint16_t readPort();

    void signal(int number) const;

    /// Waits for its end, reading the rest of its output on the way.
    /// \return the exit status; minus the number of the signal that ended it
    [[nodiscard]] int wait();

    /// What it wrote on standard output, or on standard error. After `wait`.
    [[nodiscard]] const std::string& out() const { return _out; }
    [[nodiscard]] const std::string& err() const { return _err; }

private:
    pid_t _pid = -1;
    int _outPipe = -1;
    int _errPipe = -1;
    std::string _out;
    std::string _err;
};

}  // namespace sim::test
