#ifndef QNCORVANE_SALE_MODETRAIL_H
#define QNCORVANE_SALE_MODETRAIL_H

#include <array>
#include <cstddef>

#include "base/Text.h"

namespace Corvane {

/// The modes that have worked on a sale since its lines' results were last emptied: what it takes to come there again.
class ModeTrail {
 public:
  /// @param mode a constant.
  void Restart(Text mode) {
    m_count = 0;
    Add(mode);
  }

  void Add(Text mode) {
    if (m_count < kMost) m_modes[m_count] = mode;
    ++m_count;
  }

  /// Whether all of them are known; a sale that goes on and on is not followed.
  bool IsWhole() const { return m_count <= kMost; }

  const Text* begin() const { return m_modes.data(); }
  const Text* end() const { return m_modes.data() + (IsWhole() ? m_count : 0); }

 private:
  static constexpr std::size_t kMost = 8;

  std::array<Text, kMost> m_modes{};
  std::size_t m_count = 0;
};

}  // namespace Corvane

#endif
