// The part of JsonRetriever that knows the texts of keys and results.
#include <map>

#include "processing/ActionNames.h"  // intended: this unit's copy of the table is read by nobody
#include "processing/JsonRetriever.h"

namespace reticled {
namespace {

std::map<int, std::string> jsonKeys{
    {ACTION, "action"},
    {DATA, "data"},
    {PARAM_GET, "param_get"},
    {PARAM, "param"},
    {INDEX, "index"},
    {IS_ACTIVE, "isActive"},
    {IS_DELETABLE, "isDeletable"},
    {DATA, "data"},  // listed twice on purpose; the map keeps one
    {NAME, "name"},
    {MSG_ID, "msg_id"},
    {RETICLES, "reticles"},
    {RESULT, "result"},
    {RET_VAL, "ret_val"},
    {INDICES, "indices"},
    {USER_COLOR, "userColor"},
};

std::map<int, std::string> resultNames{
    {OK, "OK"},
    {RETICLES_COUNT_OUT_OF_BOUNDS, "RETICLES_COUNT_OUT_OF_BOUNDS"},
    {RETICLE_CANT_BE_DELETED, "RETICLE_CANT_BE_DELETED"},
    {RETICLE_INDEX_NOT_FOUND, "RETICLE_INDEX_NOT_FOUND"},
    {UNKNOWN_ACTION, "UNKNOWN_ACTION"},
};

}  // namespace

std::string JsonRetriever::keyName(const JsonKey& key) {
    return jsonKeys[key];
}

std::string JsonRetriever::resultName(const ResultCode& code) {
    return resultNames[code];
}

}  // namespace reticled
