#ifndef QNCORVANE_HOST_LINT_LINT_H
#define QNCORVANE_HOST_LINT_LINT_H

#include <string>

#include "host/lint/Flaws.h"

namespace Corvane::Host::Lint {

/// Looks through a store's folder and rules; see qnc_lint.
///
/// @param folder absolute.
Flaws LookThrough(const std::string& folder);

}  // namespace Corvane::Host::Lint

#endif
