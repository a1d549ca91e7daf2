#pragma once

#include <string>

/// The programs under test and the documents whose transcripts are replayed, as the build names
/// them.
namespace programs {

inline const std::string RETICLED{RETICLED_PROGRAM};
inline const std::string RETICLED_FOREGROUND{RETICLED_FOREGROUND_PROGRAM};
inline const std::string RTOS_SIM{RTOS_SIM_PROGRAM};
inline const std::string RETICLECTL{RETICLECTL_PROGRAM};

inline const std::string SOURCE_DIRECTORY{PROJECT_SOURCE_DIRECTORY};
inline const std::string BUILD_DIRECTORY{PROJECT_BUILD_DIRECTORY};

/// A sanitizer or an emulator takes memory and time of its own: resident sizes and shares of the
/// processor then say nothing about the service.
inline constexpr bool HAVE_OVERHEAD = PROGRAMS_HAVE_OVERHEAD != 0;

}  // namespace programs
