#include "simulator/device/Answer.h"

#include <json/value.h>

#include "simulator/base/JsonText.h"

namespace sim {

std::string answerText(const Answer& answer) {
    Json::Value root(Json::arrayValue);
    root[0]["ret_val"] = answer.retVal;
    if (answer.listFile) {
        root[0]["param"] = *answer.listFile;
    }
    return compactJson(root);
}

}  // namespace sim
