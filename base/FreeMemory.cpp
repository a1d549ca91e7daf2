#include "base/FreeMemory.h"

#include <malloc.h>

namespace reticled {

FreeMemoryReturn::~FreeMemoryReturn() {
    if (_isLargeText && mallinfo2().fordblks > KEPT_FREE_BYTES) {
        malloc_trim(0);
    }
}

}  // namespace reticled
