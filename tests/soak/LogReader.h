#pragma once

#include <string>
#include <thread>

#include "tests/soak/Ledger.h"
#include "tests/support/FileDescriptor.h"

/// Reads the service's log, both streams on one pipe so that their order is that of the events,
/// and enters it into a ledger. One thread of its own until the service has closed the pipe.
class LogReader {
public:
    /// \param ledger must outlive this object.
    LogReader(FileDescriptor pipe, Ledger& ledger);
    LogReader(const LogReader&) = delete;
    LogReader& operator=(const LogReader&) = delete;
    ~LogReader() { _thread.join(); }

private:
    void _read();
    void _handle(const std::string& line);
    void _beginText(void (Ledger::*entry)(const std::string&), const std::string& firstLine);
    void _enterRequest(const std::string& text);

    FileDescriptor _pipe;
    Ledger& _ledger;
    void (Ledger::*_textEntry)(const std::string&) = nullptr;  ///< while a reply's lines come
    std::string _text;
    std::thread _thread;
};
