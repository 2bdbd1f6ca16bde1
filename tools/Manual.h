#ifndef TOOLS_MANUAL_H
#define TOOLS_MANUAL_H

#include <string>

#include "ProgramText.h"

namespace Corvane::Tool {

/// @return the manual page, section 1.
std::string ManualPage(const ProgramText& text);

}  // namespace Corvane::Tool

#endif
