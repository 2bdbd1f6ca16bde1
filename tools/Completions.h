#ifndef TOOLS_COMPLETIONS_H
#define TOOLS_COMPLETIONS_H

#include <string>

#include "ProgramText.h"

namespace Corvane::Tool {

/// @return the completions of a shell, as the files in which it looks for them.
std::string BashCompletion(const ProgramText& text);
std::string ZshCompletion(const ProgramText& text);
std::string FishCompletion(const ProgramText& text);

}  // namespace Corvane::Tool

#endif
