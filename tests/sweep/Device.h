#pragma once

#include <poll.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FileDescriptor.h"
#include "tests/support/FlashFiles.h"

/// The RTOS of all stories: accepts every change, and has the list that it is told.
///
/// Listens from construction on and takes the connection of whichever service runs.
class Device {
public:
    explicit Device(const FlashFiles& flash);
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    ~Device();

    /// \param file the list file that answers name from now on.
    void nameList(const std::string& file);

    /// What the service has sent since the last call, the data file of a change, where there is one, behind its
    /// request. The numbers of data files are left out.
    [[nodiscard]] std::vector<std::string> takeRequests();

    /// How often the service has sent something; negative while that is not answered.
    [[nodiscard]] long answers();

private:
    [[nodiscard]] pollfd _source() const;
    void _serve();
    void _receive();
    void _answer(const std::string& request);

    const FlashFiles& _flash;
    FileDescriptor _listener;
    FileDescriptor _stop;
    std::mutex _mutex;  ///< for what follows; the link is exchanged by the own thread only
    FileDescriptor _link;
    std::string _received;  ///< of the next request
    std::vector<std::string> _requests;
    std::string _answerText;
    long _answers = 0;
    std::thread _thread;
};
