#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/readReticle.h"
#include "tools/reticlectl/files/TextFile.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

namespace {

struct NamedFile {
    std::string name;
    std::string file;
};

struct AddArguments {
    NamedFile first;
    /// Further names and files, in turn.
    std::vector<std::string> more;
};

std::vector<NamedFile> pairUp(const AddArguments& arguments) {
    if (arguments.more.size() % 2 != 0) {
        throw Failure(ExitStatus::USAGE,
                      "a NAME without FILE: check that each NAME is followed by its FILE");
    }
    std::vector<NamedFile> pairs = {arguments.first};
    for (std::size_t i = 0; i < arguments.more.size(); i += 2) {
        pairs.push_back({arguments.more[i], arguments.more[i + 1]});
    }
    return pairs;
}

void add(const Session& session, const std::vector<NamedFile>& pairs) {
    const auto readsStandardInput = [](const NamedFile& pair) {
        return pair.file == STANDARD_STREAM;
    };
    if (std::count_if(pairs.begin(), pairs.end(), readsStandardInput) > 1) {
        throw Failure(ExitStatus::USAGE,
                      "standard input can be read for one reticle only: use files");
    }
    std::vector<reticle::NewReticle> reticles;
    Json::Value names(Json::arrayValue);
    for (const NamedFile& pair : pairs) {
        reticles.push_back(readReticle(session, pair.name, pair.file));
        names.append(pair.name);
    }
    session.change(names, [&](reticle::ReticleClient& client) { return client.add(reticles); });
    warnOfFixedColors(session, reticles);
}

}  // namespace

void addAddCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand(
        "add", "Store new reticles, in order, up to the first that the device refuses");
    const auto arguments = std::make_shared<AddArguments>();
    command->add_option("NAME", arguments->first.name, "The new reticle's name")->required();
    command->add_option("FILE", arguments->first.file, "Its data, UTF-8 text; - is standard input")
        ->required();
    command->add_option("MORE", arguments->more, "NAME and FILE of each further reticle");
    command->callback([&session, arguments] { add(session, pairUp(*arguments)); });
}

}  // namespace reticlectl
