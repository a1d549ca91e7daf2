#include <algorithm>
#include <memory>
#include <string>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/files/TextFile.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

namespace {

struct ShowArguments {
    int index = 0;
    std::string output = STANDARD_STREAM;
};

const std::string& dataOf(const reticle::Reply& reply, int index) {
    const auto found =
        std::find_if(reply.reticles.begin(), reply.reticles.end(),
                     [index](const reticle::Reticle& reticle) { return reticle.index == index; });
    if (found == reply.reticles.end()) {
        throw Failure(ExitStatus::REFUSED, "the device lists no reticle of index " +
                                               std::to_string(index) +
                                               ": list the reticles to see which there are");
    }
    return found->data;
}

void show(const Session& session, const ShowArguments& arguments) {
    const reticle::Reply reply = session.connect().list();
    const std::string& data = dataOf(reply, arguments.index);
    const std::string& text = session.wantsJson ? reply.json + '\n' : data;
    writeText(arguments.output, text, session.out);
}

}  // namespace

void addShowCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand("show", "Print a reticle's data, the user's colour put in");
    const auto arguments = std::make_shared<ShowArguments>();
    addIndexArgument(*command, arguments->index);
    command->add_option("--output", arguments->output, "Write to this file instead")
        ->type_name("FILE");
    command->callback([&session, arguments] { show(session, *arguments); });
}

}  // namespace reticlectl
