#include "tests/system/TranscriptPlayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <string_view>

#include "tests/support/Text.h"

namespace {

// A reply that must not come is awaited this long at the end of a transcript; within one, the next
// reply shows whether another came before it.
constexpr std::chrono::milliseconds NO_REPLY_WAIT{300};

constexpr int ANY_BUFFER = 0;
constexpr const char* HEX = " hex";
constexpr const char* NOTHING = " nothing";
constexpr std::string_view STORAGE_ROOT = "/tmp/FL0/";

std::string belowStorageRoot(const std::string& path) {
    if (!path.starts_with(STORAGE_ROOT)) {
        throw std::runtime_error(path + " is not below " + std::string(STORAGE_ROOT));
    }
    return path.substr(STORAGE_ROOT.size());
}

/// "" means once, " 16 times" what it says.
int timesIn(const std::string& what) {
    if (what.empty()) {
        return 1;
    }
    std::size_t digits = 0;
    const int times = std::stoi(what, &digits);
    EXPECT_EQ(what.substr(digits), " times");
    return times;
}

const std::string& textOf(const sim::Step& step) {
    if (!step.text) {
        throw std::runtime_error("the step has no text");
    }
    return *step.text;
}

}  // namespace

TranscriptPlayer::TranscriptPlayer(const FlashFiles& flash, std::uint16_t port)
    : _flash(flash), _port(port) {
    _service.waitUntilListening();
    _client.emplace(ANY_BUFFER, port);
}

void TranscriptPlayer::play(const Transcript& transcript) {
    for (const sim::Step& step : transcript.steps) {
        SCOPED_TRACE("line " + std::to_string(step.line) + ": " + step.instruction);
        _play(step);
    }
    if (transcript.steps.back().instruction == "client receives nothing") {
        EXPECT_EQ(_client->connection().receive(1, NO_REPLY_WAIT), "") << transcript.place;
    }
    EXPECT_TRUE(!_client || _client->connection().isQuiet()) << transcript.place;
    EXPECT_TRUE(_rtos.isQuiet()) << transcript.place;
}

void TranscriptPlayer::_play(const sim::Step& step) {
    struct Verb {
        std::string_view start;
        void (TranscriptPlayer::*play)(const std::string& object, const sim::Step& step);
    };
    // "file " comes last: the other verbs of files begin with it.
    constexpr std::array<Verb, 10> VERBS{
        {{"client sends", &TranscriptPlayer::_sendFromClient},
         {"client receives", &TranscriptPlayer::_receiveAtClient},
         {"client connects anew", &TranscriptPlayer::_connectClient},
         {"client half-closes", &TranscriptPlayer::_halfCloseClient},
         {"client closes", &TranscriptPlayer::_closeClient},
         {"rtos receives", &TranscriptPlayer::_receiveAtRtos},
         {"rtos answers", &TranscriptPlayer::_answerFromRtos},
         {"file exists ", &TranscriptPlayer::_checkFile},
         {"file missing ", &TranscriptPlayer::_checkMissing},
         {"file ", &TranscriptPlayer::_writeFile}}};
    const auto* verb = std::find_if(VERBS.begin(), VERBS.end(), [&step](const Verb& known) {
        return step.instruction.starts_with(known.start);
    });
    if (verb == VERBS.end()) {
        ADD_FAILURE() << "no instruction of a transcript";
        return;
    }
    (this->*verb->play)(step.instruction.substr(verb->start.size()), step);
}

void TranscriptPlayer::_sendFromClient(const std::string& what, const sim::Step& step) {
    if (what == HEX) {
        _client->sendBytes(fromHex(textOf(step)));
        return;
    }
    for (int times = timesIn(what); times > 0; --times) {
        _client->sendFrame(textOf(step));
    }
}

void TranscriptPlayer::_receiveAtClient(const std::string& what, const sim::Step& step) {
    if (what == NOTHING) {
        return;
    }
    if (what == HEX) {
        const std::string bytes = fromHex(textOf(step));
        EXPECT_EQ(_client->readBytes(bytes.size()), bytes);
        return;
    }
    EXPECT_EQ(what, "");
    EXPECT_EQ(_client->readReply(), textOf(step));
}

void TranscriptPlayer::_connectClient(const std::string& rest, const sim::Step& /*step*/) {
    EXPECT_EQ(rest, "");
    EXPECT_TRUE(_client->connection().seesEnd());
    _client.emplace(ANY_BUFFER, _port);
}

void TranscriptPlayer::_halfCloseClient(const std::string& rest, const sim::Step& /*step*/) {
    EXPECT_EQ(rest, "");
    _client->connection().closeWriting();
}

void TranscriptPlayer::_closeClient(const std::string& rest, const sim::Step& /*step*/) {
    EXPECT_EQ(rest, "");
    _client.reset();
}

void TranscriptPlayer::_receiveAtRtos(const std::string& rest, const sim::Step& step) {
    EXPECT_EQ(rest, "");
    EXPECT_EQ(_rtos.receive(textOf(step).size()), textOf(step));
    EXPECT_TRUE(_rtos.isQuiet());
}

void TranscriptPlayer::_answerFromRtos(const std::string& rest, const sim::Step& step) {
    EXPECT_EQ(rest, "");
    _rtos.answer(textOf(step));
}

void TranscriptPlayer::_checkFile(const std::string& path, const sim::Step& step) {
    EXPECT_TRUE(_flash.exists(belowStorageRoot(path)));
    if (step.text) {
        EXPECT_EQ(_flash.read(belowStorageRoot(path)), *step.text);
    }
}

void TranscriptPlayer::_checkMissing(const std::string& path, const sim::Step& /*step*/) {
    EXPECT_FALSE(_flash.exists(belowStorageRoot(path)));
}

void TranscriptPlayer::_writeFile(const std::string& path, const sim::Step& step) {
    _flash.write(belowStorageRoot(path), textOf(step));
}
