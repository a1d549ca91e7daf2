#pragma once

#include "tests/system/Programs.h"

namespace programs {

inline const std::string INTERPOSER{INTERPOSER_LIBRARY};

}  // namespace programs
