#include "tests/soak/Visitor.h"

#include <array>
#include <chrono>
#include <mutex>
#include <stdexcept>

#include "client/FrameFormat.h"
#include "tests/soak/ListReply.h"
#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"

namespace {

constexpr std::size_t LARGEST_BODY_BYTES = 4194303;
constexpr std::size_t GIANT_BYTES = 3000000;
constexpr int SMALL_BUFFER_BYTES = 4096;
/// Far more than the service keeps waiting.
constexpr std::size_t FLOOD = 40;
constexpr std::chrono::milliseconds QUIET{200};
constexpr auto GIANT = "giant";
constexpr auto LIST = R"("action":"RETICLES_GET_ALL")";
constexpr Ledger::Range NONE{0, 0};
constexpr Ledger::Range ONE{1, 1};
constexpr Ledger::Range PERHAPS_ONE{0, 1};

}  // namespace

void Visitor::play(const std::atomic<bool>& isStopped) {
    constexpr std::array<Visit, 8> WITHOUT_REQUEST{&Visitor::_leave,
                                                   &Visitor::_sayNothing,
                                                   &Visitor::_sendHalfAHeader,
                                                   &Visitor::_sendHalfABody,
                                                   &Visitor::_sendGarbage,
                                                   &Visitor::_announceTooMuch,
                                                   &Visitor::_sendLargeGarbage,
                                                   &Visitor::_resetWithinABody};
    constexpr std::array<Visit, 6> WITH_REQUESTS{
        &Visitor::_askAndReset, &Visitor::_askAndClose, &Visitor::_askAndHalfClose,
        &Visitor::_askWrongly,  &Visitor::_askAtLength, &Visitor::_askTooOften};
    constexpr std::size_t STALL_IN_VISITS = 60;
    while (!isStopped) {
        if (_mayStall && _pick(1, STALL_IN_VISITS) == 1) {
            const std::unique_lock alone(_stall);
            _stopReading();
        } else if (_pick(0, 1) == 0) {
            (this->*WITHOUT_REQUEST.at(_pick(0, WITHOUT_REQUEST.size() - 1)))();
        } else {
            const std::shared_lock together(_stall);
            (this->*WITH_REQUESTS.at(_pick(0, WITH_REQUESTS.size() - 1)))();
        }
    }
}

void Visitor::_leave() {
    const FrameClient client;
}

void Visitor::_sayNothing() {
    FrameClient client;
    static_cast<void>(client.connection().receive(1, QUIET));
}

void Visitor::_sendHalfAHeader() {
    _visitWithoutRequest(FrameClient::header(1).substr(0, _pick(1, reticle::FRAME_SYNC_BYTES - 1)),
                         ONE, NONE);
}

void Visitor::_sendHalfABody() {
    const std::string body = R"({"action":"RETICLES_GET_ALL"})";
    _visitWithoutRequest(FrameClient::header(static_cast<std::uint32_t>(body.size())) +
                             body.substr(0, _pick(1, body.size() - 1)),
                         NONE, ONE);
}

// No byte of it can stand in a sync sequence, so each 36 bytes are one refused header.
void Visitor::_sendGarbage() {
    constexpr std::size_t MOST_BYTES = 2000;
    constexpr std::size_t FIRST = 0x80;
    constexpr std::size_t LAST = 0xFF;
    std::string garbage(_pick(1, MOST_BYTES), '\0');
    for (char& byte : garbage) {
        byte = static_cast<char>(_pick(FIRST, LAST));
    }
    const std::size_t headers =
        (garbage.size() + reticle::FRAME_HEADER_BYTES - 1) / reticle::FRAME_HEADER_BYTES;
    _visitWithoutRequest(garbage, {headers, headers}, NONE);
}

void Visitor::_announceTooMuch() {
    _visitWithoutRequest(FrameClient::header(LARGEST_BODY_BYTES + 1), ONE, NONE);
}

void Visitor::_sendLargeGarbage() {
    _visitWithoutRequest(
        FrameClient::header(LARGEST_BODY_BYTES) + std::string(LARGEST_BODY_BYTES, '['), NONE, ONE);
}

void Visitor::_resetWithinABody() {
    _ledger.expectRefusals(NONE, PERHAPS_ONE);
    FrameClient client;
    client.sendBytes(FrameClient::header(LARGEST_BODY_BYTES) +
                     std::string(_pick(1, LARGEST_BODY_BYTES / 2), '['));
    client.connection().reset();
}

void Visitor::_askAndReset() {
    Conversation conversation(_ledger);
    conversation.client().sendBytes(conversation.frame(LIST));
    conversation.reset();
}

void Visitor::_askAndClose() {
    Conversation conversation(_ledger);
    conversation.client().sendBytes(conversation.frame(LIST));
    conversation.close();
}

void Visitor::_askAndHalfClose() {
    Conversation conversation(_ledger);
    conversation.client().sendBytes(conversation.frame(LIST));
    conversation.finish();
}

void Visitor::_askWrongly() {
    Conversation conversation(_ledger);
    static_cast<void>(conversation.ask(R"("no action":true)"));
    static_cast<void>(conversation.ask(R"("action":"RETICLE_SET_ACTIVE","index":"first")"));
    conversation.finish();
}

void Visitor::_askAtLength() {
    constexpr std::size_t ROOM_FOR_THE_REST = 100;
    Conversation conversation(_ledger);
    static_cast<void>(conversation.ask(
        LIST + (R"(,"padding":")" + std::string(LARGEST_BODY_BYTES - ROOM_FOR_THE_REST, 'x')) +
        "\""));
    conversation.finish();
}

void Visitor::_askTooOften() {
    Conversation conversation(_ledger);
    std::string frames;
    for (std::size_t i = 0; i < FLOOD; ++i) {
        frames += conversation.frame(LIST);
    }
    conversation.client().sendBytes(frames);
    while (conversation.read(QUIET)) {
    }
    conversation.finish();
}

// The reply to an addition of this size does not fit what the kernel keeps for a small buffer, so
// the replies of all others wait meanwhile: those of the ordinary clients, one each. What was asked
// before is answered before.
void Visitor::_stopReading() {
    constexpr std::size_t SHORTEST_MS = 100;
    constexpr std::size_t LONGEST_MS = 2000;
    Conversation conversation(_ledger, SMALL_BUFFER_BYTES);
    conversation.client().sendBytes(conversation.frame(
        std::string(R"("action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":")") + GIANT +
        R"(","data":")" + std::string(GIANT_BYTES, 'x') + R"("}])"));
    // Whether or not it fails meanwhile: nothing is read.
    const std::chrono::milliseconds pause(_pick(SHORTEST_MS, LONGEST_MS));
    const auto end = Ledger::Clock::now() + pause;
    static_cast<void>(eventually([end] { return Ledger::Clock::now() >= end; }));
    static_cast<void>(conversation.waitForReply());
    _removeGiant(conversation);
    conversation.finish();
}

// A spoilt list does not tell whether the giant is there, nor a refusal whether it has gone.
void Visitor::_removeGiant(Conversation& conversation) {
    constexpr int ATTEMPTS = 50;
    bool isThere = false;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        const auto text = conversation.ask(LIST);
        if (!text || ListReply(*text).isSpoilt()) {
            continue;
        }
        const auto index = ListReply(*text).indexOf(GIANT);
        isThere = index.has_value();
        if (!isThere) {
            return;
        }
        static_cast<void>(conversation.ask(R"("action":"RETICLES_DELETE","indices":[)" +
                                           std::to_string(*index) + "]"));
    }
    // A device that no longer answers has not kept it.
    if (isThere) {
        throw std::runtime_error("the device keeps what it was told to delete");
    }
}

void Visitor::_visitWithoutRequest(const std::string& bytes, Ledger::Range headers,
                                   Ledger::Range bodies) {
    _ledger.expectRefusals(headers, bodies);
    FrameClient client;
    client.sendBytes(bytes);
    client.connection().closeWriting();
    if (!client.connection().seesEnd()) {
        throw std::runtime_error("the service does not end a connection that has ended");
    }
}

std::size_t Visitor::_pick(std::size_t least, std::size_t most) {
    return std::uniform_int_distribution<std::size_t>(least, most)(_random);
}
