#include "tests/unit/service/OutputCapture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

namespace {

void flushStandardStreams() {
    std::cout.flush();
    std::cerr.flush();
    static_cast<void>(std::fflush(nullptr));
}

}  // namespace

OutputCapture::Stream::Stream(int descriptor)
    : _descriptor(descriptor),
      _original(fcntl(descriptor, F_DUPFD_CLOEXEC, 0), "dup of a standard stream") {
    flushStandardStreams();
    dup2(_taken.descriptor(), _descriptor);
}

OutputCapture::Stream::~Stream() {
    flushStandardStreams();
    dup2(_original.get(), _descriptor);
    if (testing::Test::HasFailure()) {
        const std::string all = text();
        static_cast<void>(!write(_descriptor, all.data(), all.size()));
    }
}
