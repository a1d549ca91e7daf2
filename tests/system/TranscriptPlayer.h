#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/FlashFiles.h"
#include "tests/support/FrameClient.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/system/Daemon.h"
#include "tests/system/Transcript.h"

/// Plays a transcript against a fresh daemon, as its one client and its RTOS, strictly in the order
/// of the steps. What differs becomes a test failure that names the step's place.
class TranscriptPlayer {
public:
    /// \param flash the shared storage, empty; must outlive the player.
    /// \param port where the client connects to.
    explicit TranscriptPlayer(const FlashFiles& flash, std::uint16_t port = CLIENT_PORT);

    void play(const Transcript& transcript);

private:
    void _play(const sim::Step& step);
    // One operation for each verb; the first argument is what follows the verb.
    void _sendFromClient(const std::string& what, const sim::Step& step);
    void _receiveAtClient(const std::string& what, const sim::Step& step);
    void _connectClient(const std::string& rest, const sim::Step& step);
    void _halfCloseClient(const std::string& rest, const sim::Step& step);
    void _closeClient(const std::string& rest, const sim::Step& step);
    void _receiveAtRtos(const std::string& rest, const sim::Step& step);
    void _answerFromRtos(const std::string& rest, const sim::Step& step);
    void _checkFile(const std::string& path, const sim::Step& step);
    void _checkMissing(const std::string& path, const sim::Step& step);
    void _writeFile(const std::string& path, const sim::Step& step);

    const FlashFiles& _flash;
    std::uint16_t _port;
    ScriptedRtos _rtos;
    Daemon _service;
    std::optional<FrameClient> _client;  ///< none once it has closed
};
