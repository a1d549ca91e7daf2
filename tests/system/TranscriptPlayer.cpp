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

constexpr std::string_view STORAGE_ROOT = "/tmp/FL0/";

std::string belowStorageRoot(const std::string& path) {
    if (!path.starts_with(STORAGE_ROOT)) {
        throw std::runtime_error(path + " is not below " + std::string(STORAGE_ROOT));
    }
    return path.substr(STORAGE_ROOT.size());
}

// The document tells the number of bytes as well ("29 bytes"), and must be right.
void expectSize(const std::string& size, const TranscriptStep& step) {
    EXPECT_EQ(size, std::to_string(step.text.size()) + " bytes");
}

}  // namespace

TranscriptPlayer::TranscriptPlayer(const FlashFiles& flash) : _flash(flash) {
    _service.waitUntilListening();
    _client.emplace();
}

void TranscriptPlayer::play(const Transcript& transcript) {
    for (const TranscriptStep& step : transcript.steps) {
        SCOPED_TRACE(step.place + ": " + step.instruction);
        _play(step);
    }
    if (transcript.steps.back().instruction == "client receives nothing") {
        EXPECT_EQ(_client->connection().receive(1, NO_REPLY_WAIT), "") << transcript.place;
    }
    EXPECT_TRUE(_client->connection().isQuiet()) << transcript.place;
    EXPECT_TRUE(_rtos.isQuiet()) << transcript.place;
}

void TranscriptPlayer::_play(const TranscriptStep& step) {
    struct Verb {
        std::string_view start;
        void (TranscriptPlayer::*play)(const std::string& object, const TranscriptStep& step);
    };
    // "file " comes last: the other verbs of files begin with it.
    constexpr std::array<Verb, 7> VERBS{{{"client sends ", &TranscriptPlayer::_sendFromClient},
                                         {"client receives ", &TranscriptPlayer::_receiveAtClient},
                                         {"rtos receives ", &TranscriptPlayer::_receiveAtRtos},
                                         {"rtos answers ", &TranscriptPlayer::_answerFromRtos},
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

void TranscriptPlayer::_sendFromClient(const std::string& what, const TranscriptStep& step) {
    if (what == "hex") {
        _client->sendBytes(fromHex(step.text));
        return;
    }
    expectSize(what, step);
    _client->sendFrame(step.text);
}

void TranscriptPlayer::_receiveAtClient(const std::string& what, const TranscriptStep& step) {
    if (what == "nothing") {
        return;
    }
    if (what == "hex") {
        const std::string bytes = fromHex(step.text);
        EXPECT_EQ(_client->readBytes(bytes.size()), bytes);
        return;
    }
    expectSize(what, step);
    EXPECT_EQ(_client->readReply(), step.text);
}

void TranscriptPlayer::_receiveAtRtos(const std::string& size, const TranscriptStep& step) {
    expectSize(size, step);
    EXPECT_EQ(_rtos.receive(step.text.size()), step.text);
    EXPECT_TRUE(_rtos.isQuiet());
}

void TranscriptPlayer::_answerFromRtos(const std::string& size, const TranscriptStep& step) {
    expectSize(size, step);
    _rtos.answer(step.text);
}

void TranscriptPlayer::_checkFile(const std::string& path, const TranscriptStep& step) {
    EXPECT_TRUE(_flash.exists(belowStorageRoot(path)));
    if (step.hasText) {
        EXPECT_EQ(_flash.read(belowStorageRoot(path)), step.text);
    }
}

void TranscriptPlayer::_checkMissing(const std::string& path, const TranscriptStep& /*step*/) {
    EXPECT_FALSE(_flash.exists(belowStorageRoot(path)));
}

void TranscriptPlayer::_writeFile(const std::string& path, const TranscriptStep& step) {
    _flash.write(belowStorageRoot(path), step.text);
}
