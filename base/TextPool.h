#ifndef QNCORVANE_BASE_TEXTPOOL_H
#define QNCORVANE_BASE_TEXTPOOL_H

#include <string_view>

#include "base/Text.h"

namespace Corvane {

/// Keeps a text for the life of the process and hands out the one copy of it.
///
/// Records borrow their texts, and a result on a sale line may outlive the rule and the document that its texts came
/// from; so nothing that was kept is ever released. Each distinct text is held once: a till that runs for weeks on the
/// same goods codes and dates doesn't grow.
///
/// @return a zero-terminated copy, never null. A zero byte inside `text` ends it for every reader.
Text KeepText(std::string_view text);

}  // namespace Corvane

#endif
