#include "simulator/events/EventText.h"

#include <algorithm>
#include <variant>

#include "simulator/events/EventTime.h"
#include "simulator/events/ShownText.h"

namespace sim {

namespace {

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text.append(text.empty() ? "" : ", ").append(word);
    }
    return text;
}

std::string messageText(std::string_view request) {
    const char* const name = messageOf(request);
    return name == nullptr ? "no message" : name;
}

/// What the service receives, and when.
std::string deliveryText(const Delivery& delivery) {
    std::string text = delivery.bytes.empty() ? "nothing" : shownOnOneLine(delivery.bytes);
    if (delivery.delay.count() > 0) {
        text += ", after " + std::to_string(delivery.delay.count()) + " ms";
    }
    if (delivery.gap) {
        text += ", in two segments " + std::to_string(delivery.gap->count()) + " ms apart";
    }
    if (delivery.end != Delivery::End::KEEP_OPEN) {
        text += delivery.end == Delivery::End::CLOSE ? ", then FIN" : ", then RST";
    }
    return text;
}

std::string text(const Received& event) {
    return "exchange " + std::to_string(event.exchange) + ": received " +
           messageText(event.request) + ": " + shownOnOneLine(event.request);
}

std::string text(const Answered& event) {
    const Delivery& delivery = event.delivery;
    return "exchange " + std::to_string(event.exchange) + ": " +
           (delivery.faults.empty() ? "answered: "
                                    : "spoiled by " + joined(delivery.faults) + ": ") +
           deliveryText(delivery) +
           (delivery.reason.empty() ? "" : "; refused, " + shownOnOneLine(delivery.reason));
}

std::string text(const FileChange& event) {
    const std::string name = shownOnOneLine(event.name);
    return event.bytes ? "written " + name + ", " + std::to_string(*event.bytes) + " bytes"
                       : "removed " + name;
}

std::string text(const Changed& event) {
    const auto active = std::find_if(event.reticles.begin(), event.reticles.end(),
                                     [](const Reticle& reticle) { return reticle.isActive; });
    return std::string("changed by the ") + (event.isByUser ? "user: " : "service: ") +
           std::to_string(event.reticles.size()) + " reticles, active " +
           (active == event.reticles.end() ? "none" : std::to_string(active->index));
}

std::string text(const FaultsArmed& event) {
    return "faults armed: " + (event.faults.empty() ? "none" : joined(event.faults));
}

std::string text(const PowerSwitched& event) {
    return event.isUp ? "up: connections are taken" : "down: no connection is taken";
}

}  // namespace

std::string eventText(const Event& event) {
    return eventTime(event.time) + " #" + std::to_string(event.number) + ' ' +
           std::visit([](const auto& what) { return text(what); }, event.what);
}

}  // namespace sim
