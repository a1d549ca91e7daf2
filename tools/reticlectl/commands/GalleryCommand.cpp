#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/files/TextFile.h"
#include "tools/reticlectl/gallery/GalleryPage.h"
#include "tools/reticlectl/gallery/Grounds.h"
#include "tools/reticlectl/outcome/Failure.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

struct GalleryArguments {
    /// Empty where the user names none.
    std::string output;
    std::string background = grounds().front().name;
};

std::vector<std::string> groundNames() {
    std::vector<std::string> names;
    for (const Ground& ground : grounds()) {
        names.emplace_back(ground.name);
    }
    return names;
}

void makeGallery(const Session& session, const GalleryArguments& arguments) {
    if (arguments.output.empty() && session.terminal.takesOutput && !session.wantsJson) {
        throw Failure(ExitStatus::USAGE,
                      "a page is nothing to read on a terminal: name a file with --output "
                      "FILE.html (- for the terminal all the same)");
    }
    const reticle::Reply reply = session.list();
    const std::string device = session.host + ":" + std::to_string(session.port);
    const std::string text = session.wantsJson
                                 ? printableJson(reply.json) + '\n'
                                 : renderGallery(reply.reticles, device, arguments.background);
    writeText(arguments.output.empty() ? STANDARD_STREAM : arguments.output, text, session.out);
}

}  // namespace

void addGalleryCommand(CLI::App& app, const Session& session) {
    auto* command =
        app.add_subcommand("gallery", "Make a web page with the pictures of all reticles");
    const auto arguments = std::make_shared<GalleryArguments>();
    command->add_option("--output", arguments->output, "Write to this file instead")
        ->type_name("FILE.html");
    const CLI::IsMember isGround(groundNames());
    command
        ->add_option("--background", arguments->background,
                     "What shows first behind the pictures, of " + isGround.get_description())
        ->type_name("NAME")
        ->check(isGround)
        ->capture_default_str();
    command->callback([&session, arguments] { makeGallery(session, *arguments); });
}

}  // namespace reticlectl
