#include <json/json.h>

#include <algorithm>
#include <memory>
#include <string>

#include "reticle-client/UserColor.h"
#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/commands/userColorTemplate.h"
#include "tools/reticlectl/files/TextFile.h"
#include "tools/reticlectl/outcome/Failure.h"
#include "tools/reticlectl/outcome/JsonLine.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

struct ShowArguments {
    int index = 0;
    std::string output = STANDARD_STREAM;
    bool isTemplate = false;
};

reticle::Reticle reticleOf(const reticle::Reply& reply, int index) {
    const auto found =
        std::find_if(reply.reticles.begin(), reply.reticles.end(),
                     [index](const reticle::Reticle& reticle) { return reticle.index == index; });
    if (found == reply.reticles.end()) {
        throw Failure(ExitStatus::REFUSED, "the device lists no reticle of index " +
                                               std::to_string(index) +
                                               ": list the reticles to see which there are");
    }
    return *found;
}

std::string textFor(const Session& session, const std::string& output,
                    const reticle::Reticle& reticle) {
    if (session.wantsJson) {
        return printableJson(toJsonLine(toJson(reticle))) + '\n';
    }
    const bool isForTerminal = output == STANDARD_STREAM && session.terminal.takesOutput;
    return isForTerminal ? printableLines(reticle.data) : reticle.data;
}

/// What a person should know of the colour; nothing where there is none.
std::string noteOn(const std::string& data, bool isTemplate) {
    const auto color = reticle::userColor(data);
    if (!color) {
        return "";
    }
    return isTemplate
               ? R"(note: each ")" + *color + R"(" is "user_color" now)"
               : "note: the user's colour is put in; stored again as it is, it stays fixed, but "
                 "for --template";
}

void show(const Session& session, const ShowArguments& arguments) {
    const reticle::Reply reply = session.list();
    reticle::Reticle reticle = reticleOf(reply, arguments.index);
    const std::string note = noteOn(reticle.data, arguments.isTemplate);
    if (arguments.isTemplate) {
        reticle.data = userColorTemplate(reticle.data);
    }
    writeText(arguments.output, textFor(session, arguments.output, reticle), session.out);
    if (session.terminal.takesErrors && !note.empty()) {
        session.note(note);
    }
}

}  // namespace

void addShowCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand(
        "show", "Print a reticle's data, its colour fixed: the user's colour is put in");
    const auto arguments = std::make_shared<ShowArguments>();
    addIndexArgument(*command, arguments->index);
    command->add_option("--output", arguments->output, "Write to this file instead")
        ->type_name("FILE");
    command->add_flag("--template", arguments->isTemplate,
                      "Put \"user_color\" back for the colour, to store it again");
    command->callback([&session, arguments] { show(session, *arguments); });
}

}  // namespace reticlectl
