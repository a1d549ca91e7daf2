#pragma once

namespace reticle {

/// Owns one socket descriptor and closes it.
class Socket {
public:
    /// \param descriptor an open socket, or a negative number for none.
    explicit Socket(int descriptor) : _descriptor(descriptor) {}
    Socket(Socket&& other) noexcept;
    Socket& operator=(Socket&& other) noexcept;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket();

    [[nodiscard]] bool isOpen() const { return _descriptor >= 0; }
    [[nodiscard]] int descriptor() const { return _descriptor; }

private:
    int _descriptor;
};

}  // namespace reticle
