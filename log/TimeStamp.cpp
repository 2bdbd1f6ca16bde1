#include "log/TimeStamp.h"

#include <cstdlib>

#include "base/Text.h"

namespace Corvane {

std::string_view TimeStamp::Now() {
  const std::time_t second = std::time(nullptr);
  const char* const zone = std::getenv("TZ");
  if (!IsOf(second, zone)) Format(second, zone);
  return {m_text.data(), m_text.size() - 1};
}

bool TimeStamp::IsOf(std::time_t second, const char* zone) const {
  return second == m_second && (zone != nullptr) == m_hasZone && m_zone == OrEmpty(zone);
}

void TimeStamp::Format(std::time_t second, const char* zone) {
  m_zone = OrEmpty(zone);
  m_hasZone = zone != nullptr;
  std::tm local{};
  tzset();  // localtime_r itself stays with the zone that it met first
  localtime_r(&second, &local);
  std::strftime(m_text.data(), m_text.size(), "%Y-%m-%d %H:%M:%S", &local);
  m_second = second;
}

}  // namespace Corvane
