// Preloaded into a program: makes it believe in another limit of open descriptors, where the real
// one cannot be raised. Environment: OPEN_MAX=NUMBER.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name,bugprone-exception-escape)
extern "C" long sysconf(int name) noexcept {
    using Sysconf = long (*)(int);
    const char* limit = std::getenv("OPEN_MAX");
    if (name == _SC_OPEN_MAX && limit != nullptr) {
        return std::atol(limit);
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): dlsym knows no types
    static const auto original = reinterpret_cast<Sysconf>(dlsym(RTLD_NEXT, "sysconf"));
    return original(name);
}
