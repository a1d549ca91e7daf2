#pragma once

#include "net/JsonQueue.h"

namespace reticled {

struct JsonQueueTestPeer {
    template <class Element>
    static int size(const JsonQueue<Element>& queue) {
        return queue._size;
    }
};

}  // namespace reticled
