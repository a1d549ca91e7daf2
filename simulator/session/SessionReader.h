#pragma once

#include <istream>
#include <string>

#include "simulator/session/Session.h"
#include "simulator/session/StepReader.h"

namespace sim {

/// Reads a session file.
class SessionReader {
public:
    /// \param input outlives the reader
    explicit SessionReader(std::istream& input) : _steps(input) {}

    /// The whole session. Call it once.
    /// \throws std::runtime_error "line N: " and what is wrong there.
    [[nodiscard]] Session read();

private:
    void _readHead();
    void _take(const Step& step);
    // One operation for each instruction; `object` is what follows its verb.
    void _takeClientRequest(const std::string& object, const Step& step);
    void _takeRequest(const std::string& object, const Step& step);
    void _takeNewData(const std::string& name, const Step& step);
    void _takeFile(const std::string& name, const Step& step);
    void _takeDelay(const std::string& time, const Step& step);
    void _takeGap(const std::string& time, const Step& step);
    void _takeSilence(const std::string& object, const Step& step);
    void _takeAnswer(const std::string& object, const Step& step);
    void _takeClose(const std::string& object, const Step& step);
    void _takeReset(const std::string& object, const Step& step);
    void _requireOpen() const;
    void _finish();
    void _end(Delivery::End end);

    StepReader _steps;
    Session _session;
    Exchange _exchange;    ///< the one that is being read
    bool _isOpen = false;  ///< whether its request has been read
};

}  // namespace sim
