#include "simulator/control/CommandForm.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>

namespace sim {

namespace {

constexpr std::array<CommandForm, 12> FORMS = {{
    {"status", "", 0, 0, "Print what the device holds, the faults that are armed, the exchanges."},
    {"fault", "KIND[:ARG] [next|every|N]", 1, 2,
     "Let KIND (see rtos-sim --help) happen: on the next exchange, on every one, or on\n"
     "exchange N."},
    {"faults", "off", 1, 1, "Let nothing go wrong any more."},
    {"activate", "N", 1, 1, "Make reticle N the active one."},
    {"color", "N COLOUR", 2, 2, "Give reticle N the user's colour COLOUR, any text."},
    {"rename", "N NAME", 2, 2, "Give reticle N another name."},
    {"add", "NAME FILE", 2, 2, "Add a reticle with the data of FILE."},
    {"delete", "N", 1, 1, "Delete reticle N, which must be deletable and not active."},
    {"deletable", "N yes|no", 2, 2, "Say whether reticle N may be deleted."},
    {"restart", "[--down SECONDS]", 0, 2,
     "Close all connections and the port; listen again, after SECONDS (0 to 3600)."},
    {"reset", "", 0, 0, "Go back to the factory set."},
    {EVENTS_COMMAND, "", 0, 0, "Print events as they happen, until Ctrl-C or the simulator's end."},
}};

std::string usage(const CommandForm& form) {
    return std::string(form.name) + (form.arguments.empty() ? "" : " ") +
           std::string(form.arguments);
}

}  // namespace

const CommandForm& formOf(const Words& words) {
    const std::string name = words.empty() ? "" : words.front();
    const auto* const form =
        std::find_if(FORMS.begin(), FORMS.end(),
                     [&name](const CommandForm& known) { return known.name == name; });
    if (form == FORMS.end()) {
        throw std::runtime_error("no command is called '" + name + "'");
    }
    const std::size_t arguments = words.size() - 1;
    if (arguments < form->minArguments || arguments > form->maxArguments) {
        throw std::runtime_error("the command is: " + usage(*form));
    }
    return *form;
}

std::string commandHelp() {
    std::ostringstream help;
    for (const CommandForm& form : FORMS) {
        help << "  " << usage(form) << '\n';
        std::istringstream lines{std::string(form.help)};
        for (std::string line; std::getline(lines, line);) {
            help << "      " << line << '\n';
        }
    }
    return help.str();
}

}  // namespace sim
