#ifndef QNCORVANE_LOG_TIMESTAMP_H
#define QNCORVANE_LOG_TIMESTAMP_H

#include <array>
#include <ctime>
#include <string>
#include <string_view>

namespace Corvane {

/// The local time as it stands in front of a log entry, "yyyy-MM-dd hh:mm:ss". It is formatted anew only when the second
/// or the variable TZ has changed: formatting would be the costliest part of an entry.
class TimeStamp {
 public:
  /// @return the time of now; stands until the next call.
  std::string_view Now();

 private:
  bool IsOf(std::time_t second, const char* zone) const;
  void Format(std::time_t second, const char* zone);

  std::time_t m_second = -1;
  bool m_hasZone = false;  ///< whether TZ was set: "unset" and "empty" are two things
  std::string m_zone;
  std::array<char, sizeof "yyyy-MM-dd hh:mm:ss"> m_text{};
};

}  // namespace Corvane

#endif
