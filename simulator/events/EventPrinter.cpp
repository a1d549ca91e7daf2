#include "simulator/events/EventPrinter.h"

#include <ostream>
#include <variant>

#include "simulator/device/Answer.h"
#include "simulator/events/EventText.h"
#include "simulator/events/ShownText.h"

namespace sim {

void EventPrinter::print(const Event& event) {
    if (_isVerbose) {
        _output << "rtos-sim: " << eventText(event) << std::endl;
        return;
    }
    const auto* answered = std::get_if<Answered>(&event.what);
    if (answered != nullptr && answered->delivery.retVal == UNKNOWN_ACTION &&
        !answered->delivery.reason.empty()) {
        _output << "rtos-sim: " << eventText(event)
                << "; the request: " << shownOnOneLine(answered->request) << std::endl;
    }
}

}  // namespace sim
