#include "tools/reticlectl/Report.h"

#include <json/json.h>

#include "reticle-client/Errors.h"
#include "tools/reticlectl/outcome/JsonLine.h"
#include "tools/reticlectl/outcome/PartialChange.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

ExitStatus statusOf(const reticle::ClientError& error) {
    if (dynamic_cast<const reticle::Refused*>(&error) != nullptr) {
        return ExitStatus::REFUSED;
    }
    if (dynamic_cast<const reticle::InvalidRequest*>(&error) != nullptr) {
        return ExitStatus::USAGE;
    }
    if (dynamic_cast<const reticle::CannotConnect*>(&error) != nullptr) {
        return ExitStatus::CANNOT_CONNECT;
    }
    if (dynamic_cast<const reticle::MalformedReply*>(&error) != nullptr) {
        return ExitStatus::MALFORMED_REPLY;
    }
    return dynamic_cast<const reticle::Cancelled*>(&error) != nullptr ? ExitStatus::INTERRUPTED
                                                                      : ExitStatus::NO_REPLY;
}

void printJson(const Json::Value& document, const Session& session) {
    session.out << printableJson(toJsonLine(document)) << '\n';
}

/// "done (2): a, b"; nothing for no items.
std::string itemsLine(const std::string& title, const Json::Value& items) {
    std::string line;
    for (const Json::Value& item : items) {
        line += (line.empty() ? title + " (" + std::to_string(items.size()) + "): " : ", ") +
                printable(item.asString());
    }
    return line.empty() ? line : line + '\n';
}

/// What became of the items of a change, in words and, with --json, as members of `document`.
void tellItems(const PartialChange& change, const char* failedKey, const std::string& failedTitle,
               const Session& session, Json::Value& document) {
    document["done"] = change.done();
    document[failedKey] = change.failed();
    document["notTried"] = change.notTried();
    session.err << itemsLine("done", change.done()) << failedTitle << ": "
                << printable(change.failed().asString()) << '\n'
                << itemsLine("not tried", change.notTried());
}

ExitStatus reportRefused(const PartialChange& change, const reticle::Refused& refusal,
                         const Session& session) {
    Json::Value document;
    document["result"] = refusal.resultName();
    session.note(refusal.what());
    tellItems(change, "refused", "refused", session, document);
    if (refusal.list() != nullptr && !session.wantsJson) {
        session.print(*refusal.list());
    } else if (refusal.list() != nullptr) {
        Json::Value& reticles = document["reticles"];
        for (const reticle::Reticle& reticle : refusal.list()->reticles) {
            reticles.append(toJson(reticle));
        }
    }
    if (session.wantsJson) {
        printJson(document, session);
    }
    return ExitStatus::REFUSED;
}

ExitStatus reportPartial(const PartialChange& change, const Session& session) {
    try {
        std::rethrow_exception(change.cause());
    } catch (const reticle::Refused& refusal) {
        return reportRefused(change, refusal, session);
    } catch (const reticle::ClientError& error) {
        const ExitStatus status = statusOf(error);
        Json::Value document = errorJson(status, printable(error.what()));
        session.note(error.what());
        tellItems(change, "uncertain", "may be done or not", session, document["error"]);
        if (session.wantsJson) {
            printJson(document, session);
        }
        return status;
    }
}

}  // namespace

ExitStatus report(const std::string& problem, ExitStatus status, const Session& session) {
    if (session.wantsJson) {
        printJson(errorJson(status, printable(problem)), session);
    }
    session.note(problem);
    return status;
}

ExitStatus report(const std::exception_ptr& failure, const Session& session) {
    try {
        std::rethrow_exception(failure);
    } catch (const PartialChange& change) {
        return reportPartial(change, session);
    } catch (const Failure& error) {
        return report(error.what(), error.status(), session);
    } catch (const reticle::Refused& refusal) {
        // The reply itself says that it is a refusal.
        if (session.wantsJson) {
            session.print(refusal.reply());
        }
        session.note(refusal.what());
        return ExitStatus::REFUSED;
    } catch (const reticle::ClientError& error) {
        return report(error.what(), statusOf(error), session);
    }
}

}  // namespace reticlectl
