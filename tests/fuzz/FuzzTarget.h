#pragma once

#include <cstddef>
#include <cstdint>

/// What a fuzzer tries on one input: each program here has one of its own.
///
/// Runs inside a sandbox with std::cout and std::cerr silenced. A wrong outcome ends the process
/// (see require), an input that the service's own callers would refuse does not.
/// \return 0 always.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Hands inputs to LLVMFuzzerTestOneInput: libFuzzer makes up new ones; elsewhere the files are
/// replayed whose directories are named.
/// \return the program's exit status.
int driveFuzzTarget(int argc, char** argv);
