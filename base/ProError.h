#ifndef QNCORVANE_BASE_PROERROR_H
#define QNCORVANE_BASE_PROERROR_H

#include <cstdint>

namespace Corvane {

/// Common base of the engine's long-lived objects. Gives them a virtual destructor and one word that stays zero.
class ProError {
 public:
  ProError() = default;
  ProError(const ProError&) = delete;
  ProError& operator=(const ProError&) = delete;
  virtual ~ProError() = default;

 protected:
  std::int32_t m_nError = 0;
};

}  // namespace Corvane

#endif
