#ifndef QNCORVANE_HOST_FAILURE_H
#define QNCORVANE_HOST_FAILURE_H

#include <string>
#include <utility>

#include "qncorvane/host.h"

namespace Corvane::Host {

/// Why a call of the safe face gives nothing. Thrown within host/ alone; it ends at the face.
struct Failure {
  qnc_code Code;
  std::string Text;  ///< what is wrong, where, and what to do
};

[[noreturn]] inline void Fail(qnc_code code, std::string text) { throw Failure{code, std::move(text)}; }

}  // namespace Corvane::Host

#endif
