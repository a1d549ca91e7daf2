#include "client/Socket.h"

#include <unistd.h>

#include <utility>

namespace reticle {

Socket::Socket(Socket&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}

Socket& Socket::operator=(Socket&& other) noexcept {
    std::swap(_descriptor, other._descriptor);
    return *this;
}

Socket::~Socket() {
    if (isOpen()) {
        ::close(_descriptor);
    }
}

}  // namespace reticle
