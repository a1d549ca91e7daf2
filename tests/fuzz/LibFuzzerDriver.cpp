#include "tests/fuzz/FuzzTarget.h"

/// libFuzzer without its main.
extern "C" int LLVMFuzzerRunDriver(int* argc, char*** argv,
                                   int (*target)(const std::uint8_t* data, std::size_t size));

int driveFuzzTarget(int argc, char** argv) {
    return LLVMFuzzerRunDriver(&argc, &argv, LLVMFuzzerTestOneInput);
}
