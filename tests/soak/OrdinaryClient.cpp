#include "tests/soak/OrdinaryClient.h"

#include <array>

#include "tests/soak/ListReply.h"

namespace {

constexpr int UNKNOWN_INDEX = 1000000;

std::string addOrUpdate(const std::string& index, const std::string& name) {
    return R"("action":"RETICLES_ADD_OR_UPDATE","reticles":[{)" + index + R"("name":")" + name +
           R"(","data":"<circle fill=\"user_color\"/>"}])";
}

}  // namespace

void OrdinaryClient::play(const std::atomic<bool>& isStopped) {
    constexpr std::array COMMANDS{&OrdinaryClient::_list, &OrdinaryClient::_activate,
                                  &OrdinaryClient::_update, &OrdinaryClient::_add,
                                  &OrdinaryClient::_deleteUnknown};
    std::uniform_int_distribution<std::size_t> any(0, COMMANDS.size() - 1);
    while (!isStopped) {
        (this->*COMMANDS.at(any(_random)))();
    }
}

// Its own reticle has a name that it was given since the last update that was seen done.
void OrdinaryClient::_list() {
    _ask(R"("action":"RETICLES_GET_ALL")",
         [this, first = _confirmedRound, last = _lastRound](const std::string& text) {
             const ListReply reply(text);
             const std::string name = reply.nameAt(_index);
             for (int round = first; round <= last; ++round) {
                 if (round == 0 || name == _ownName(round)) {
                     return true;
                 }
             }
             return reply.isSpoilt();
         });
}

void OrdinaryClient::_activate() {
    _ask(R"("action":"RETICLE_SET_ACTIVE","index":)" + std::to_string(_index),
         [index = _index](const std::string& text) {
             const ListReply reply(text);
             return reply.isSpoilt() || reply.isActive(index);
         });
}

void OrdinaryClient::_update() {
    const std::string name = _ownName(++_lastRound);
    const auto reply = _conversation.ask(
        addOrUpdate(R"("index":)" + std::to_string(_index) + ",", name),
        [name, index = _index, isStrict = _isStrict](const std::string& text) {
            const ListReply answered(text);
            return !isStrict || answered.isSpoilt() || answered.nameAt(index) == name;
        });
    if (reply && ListReply(*reply).nameAt(_index) == name) {
        _confirmedRound = _lastRound;
    }
}

// What an addition without a reply has left on the device goes when the next one is seen.
void OrdinaryClient::_add() {
    const auto reply =
        _conversation.ask(addOrUpdate("", _extraName()),
                          [name = _extraName(), isStrict = _isStrict](const std::string& text) {
                              const ListReply answered(text);
                              return !isStrict || answered.isSpoilt() || answered.hasName(name);
                          });
    if (reply) {
        if (const auto index = ListReply(*reply).indexOf(_extraName())) {
            _delete(*index);
        }
    }
}

void OrdinaryClient::_delete(int index) {
    _ask(R"("action":"RETICLES_DELETE","indices":[)" + std::to_string(index) + "]",
         [index, name = _extraName()](const std::string& text) {
             const ListReply reply(text);
             return reply.isSpoilt() || reply.nameAt(index) != name;
         });
}

void OrdinaryClient::_deleteUnknown() {
    _ask(R"("action":"RETICLES_DELETE","indices":[)" + std::to_string(UNKNOWN_INDEX) + "]",
         [](const std::string& text) { return !ListReply(text).result().starts_with("OK"); });
}

void OrdinaryClient::_ask(const std::string& members, const Ledger::Expectation& expectation) {
    static_cast<void>(_conversation.ask(members, _isStrict ? expectation : Ledger::Expectation{}));
}

std::string OrdinaryClient::_ownName(int round) const {
    return "client " + std::to_string(_index) + " round " + std::to_string(round);
}

std::string OrdinaryClient::_extraName() const {
    return "extra of client " + std::to_string(_index);
}
