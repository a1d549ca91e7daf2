#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "tools/reticlectl/outcome/Failure.h"
#include "tools/reticlectl/terminal/Terminal.h"

namespace reticlectl {

/// Runs the program: reads the command line, carries out its command and reports a failure as one
/// line on `err`. \param arguments without the program's name.
/// \param terminal what the streams lead to.
ExitStatus run(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const Terminal& terminal = {});

}  // namespace reticlectl
