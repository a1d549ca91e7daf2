#pragma once

#include <string>

namespace reticled {

/// Where this side sees the storage that it shares with the RTOS. Paths on it are plain
/// concatenations: no separator is added and no name is examined, the RTOS is trusted.
inline const std::string FLASH_ROOT = "/tmp/FL0/";
/// The files that hold one reticle each.
inline const std::string RETICLES_DIR = FLASH_ROOT + "reticle/";
/// The same storage as the RTOS names it.
inline const std::string RTOS_FLASH_ROOT = "a:/";
/// Stem of the files that carry new reticles to the RTOS; a number follows.
inline const std::string NEW_RETICLE_DATA_NAME = "new_reticle_data";

}  // namespace reticled
