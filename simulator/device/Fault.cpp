#include "simulator/device/Fault.h"

#include <algorithm>
#include <array>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "simulator/base/numberIn.h"

namespace sim {

namespace {

constexpr int MAX_WAIT_MS = 3'600'000;

struct KindRow {
    FaultKind kind;
    std::string_view name;
    std::string_view argument;  ///< its name; empty where the kind takes none
    int minArgument;
    int maxArgument;
    std::string_view help;
};

// The texts are lines of --help: the effect here, then what the service makes of it.
constexpr std::array<KindRow, 12> KINDS = {{
    {FaultKind::REFUSE, "refuse", "CODE", std::numeric_limits<int>::min(),
     std::numeric_limits<int>::max(),
     "the request is not carried out, \"ret_val\" is CODE (not 0).\n"
     "the service replies with the name of CODE (5 to 8) or \"\" as \"result\" and\n"
     "without \"reticles\"; of the list that follows a change it ignores the code, and\n"
     "\"reticles\" is null."},
    {FaultKind::NO_PARAM, "no-param", "", 0, 0,
     "list: the answer names no list file.\n"
     "the service replies \"OK\" with \"reticles\" null."},
    {FaultKind::BAD_LIST, "bad-list", "", 0, 0,
     "list: the list file is not JSON.\n"
     "the service replies \"OK\" with \"reticles\" null."},
    {FaultKind::EMPTY_LIST, "empty-list", "", 0, 0,
     "list: the list file holds no reticle.\n"
     "the service replies \"OK\" with \"reticles\" null."},
    {FaultKind::MISSING_FILE, "missing-file", "", 0, 0,
     "list: the first reticle's file is not there.\n"
     "the service leaves that reticle out of its reply."},
    {FaultKind::LONG, "long", "", 0, 0,
     "the answer is good JSON, but longer than 1024 bytes.\n"
     "the service reads 1024: no reply. The rest is taken as the answer to the next\n"
     "request, and each later answer as that to the request after its own."},
    {FaultKind::GARBAGE, "garbage", "", 0, 0,
     "the answer is not JSON.\n"
     "the service gives no reply; the link stays up and the next exchange is good."},
    {FaultKind::SPLIT, "split", "MS", 0, MAX_WAIT_MS,
     "the answer comes in two segments, MS milliseconds apart.\n"
     "the service reads only the first (MS 0: often both): no reply. The second is taken as\n"
     "the answer to the next request, each later answer as that to the request after its own."},
    {FaultKind::DELAY, "delay", "MS", 0, MAX_WAIT_MS,
     "the answer comes MS milliseconds late.\n"
     "from 5000 on the service gives up: no reply, RTOS link lost until it restarts."},
    {FaultKind::SILENT, "silent", "", 0, 0,
     "no answer.\n"
     "after 5 s the service gives up: no reply, RTOS link lost until it restarts."},
    {FaultKind::CLOSE, "close", "", 0, 0,
     "no answer, the connection is closed (FIN).\n"
     "the service gives no reply; RTOS link lost until it restarts."},
    {FaultKind::RESET, "reset", "", 0, 0,
     "no answer, the connection is reset (RST).\n"
     "the service gives no reply; RTOS link lost until it restarts."},
}};

int parseNumber(std::string_view text, int min, int max, const std::string& what) {
    const auto number = numberIn<int>(text);
    if (!number || *number < min || *number > max) {
        throw std::invalid_argument(what + " must be a number from " + std::to_string(min) +
                                    " to " + std::to_string(max));
    }
    return *number;
}

const KindRow& findKind(std::string_view name) {
    const auto* row = std::find_if(KINDS.begin(), KINDS.end(),
                                   [name](const KindRow& kind) { return kind.name == name; });
    if (row == KINDS.end()) {
        throw std::invalid_argument("no fault is called '" + std::string(name) + "'");
    }
    return *row;
}

const KindRow& rowOf(FaultKind kind) {
    return *std::find_if(KINDS.begin(), KINDS.end(),
                         [kind](const KindRow& row) { return row.kind == kind; });
}

int parseArgument(const KindRow& kind, const std::optional<std::string_view>& text) {
    const std::string name(kind.name);
    if (kind.argument.empty()) {
        if (text) {
            throw std::invalid_argument(name + " takes no argument");
        }
        return 0;
    }
    const std::string form = name + ":" + std::string(kind.argument);
    if (!text) {
        throw std::invalid_argument(name + " needs its argument: " + form);
    }
    const int argument = parseNumber(*text, kind.minArgument, kind.maxArgument,
                                     std::string(kind.argument) + " of " + form);
    if (kind.kind == FaultKind::REFUSE && argument == 0) {
        throw std::invalid_argument("CODE of " + form + " cannot be 0, which refuses nothing");
    }
    return argument;
}

/// Cuts `text` at the first `mark` and returns what follows it; none where there is no mark.
std::optional<std::string_view> cutAt(std::string_view& text, char mark) {
    const std::size_t place = text.find(mark);
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = text.substr(place + 1);
    text = text.substr(0, place);
    return rest;
}

}  // namespace

Fault parseFault(const std::string& text) {
    std::string_view name = text;
    const auto exchange = cutAt(name, '@');
    const auto argument = cutAt(name, ':');
    const KindRow& kind = findKind(name);
    Fault fault{kind.kind, parseArgument(kind, argument), std::nullopt};
    if (exchange) {
        fault.exchange = static_cast<std::size_t>(
            parseNumber(*exchange, 1, std::numeric_limits<int>::max(), "N of @N"));
    }
    return fault;
}

std::vector<std::string> faultTexts(const std::vector<Fault>& faults) {
    std::vector<std::string> texts;
    for (const Fault& fault : faults) {
        const KindRow& kind = rowOf(fault.kind);
        texts.push_back(std::string(kind.name) +
                        (kind.argument.empty() ? "" : ":" + std::to_string(fault.argument)) +
                        (fault.exchange ? "@" + std::to_string(*fault.exchange) : ""));
    }
    return texts;
}

std::string faultHelp() {
    std::ostringstream help;
    for (const KindRow& kind : KINDS) {
        help << "  " << kind.name << (kind.argument.empty() ? "" : ":") << kind.argument << '\n';
        std::istringstream lines{std::string(kind.help)};
        for (std::string line; std::getline(lines, line);) {
            help << "      " << line << '\n';
        }
    }
    return help.str();
}

}  // namespace sim
