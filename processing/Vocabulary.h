#pragma once

namespace reticled {

/// Keys of every JSON text that the service reads or writes; JsonRetriever::keyName has their
/// texts.
enum JsonKey : int {
    MSG_ID = 0,
    PARAM = 1,
    PARAM_GET = 2,
    RESULT = 3,
    RET_VAL = 4,
    ACTION = 5,
    RETICLES = 6,
    INDEX = 7,
    INDICES = 8,
    NAME = 9,
    DATA = 10,
    IS_ACTIVE = 11,
    IS_DELETABLE = 12,
    USER_COLOR = 13,
};

/// What a client may ask for; the director's table has the texts.
enum ActionType : int {
    RETICLES_GET_ALL = 0,
    RETICLE_SET_ACTIVE = 1,
    RETICLES_ADD_OR_UPDATE = 2,
    RETICLES_DELETE = 3,
};

/// How a command ended. The numbers are the RTOS's own "ret_val" codes, 1 to 4 do not exist;
/// JsonRetriever::resultName has the texts.
enum ResultCode : int {
    OK = 0,
    RETICLE_INDEX_NOT_FOUND = 5,
    RETICLES_COUNT_OUT_OF_BOUNDS = 6,
    RETICLE_CANT_BE_DELETED = 7,
    UNKNOWN_ACTION = 8,
};

}  // namespace reticled
