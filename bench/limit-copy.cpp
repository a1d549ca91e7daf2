// limit-copy: limit-work with a serializer that copies what needs no escape by words.
#include <string>

#include "bench/ReticleWork.h"
#include "bench/common/SingleThreadServer.h"
#include "bench/common/bulkText.h"

int main() {
    using namespace reticled::bench;
    ReticleWork work(1, bulkText);
    SingleThreadServer([&work](const std::string& request) { return work.reply(request); }).run();
}
