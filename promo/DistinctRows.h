#ifndef QNCORVANE_PROMO_DISTINCTROWS_H
#define QNCORVANE_PROMO_DISTINCTROWS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "sale/ProDetailKey.h"

namespace Corvane {

/// What makes two rows the same when nothing but the row's number does.
struct SameSerialNo {
  bool operator()(const ProDetailKey& left, const ProDetailKey& right) const { return left.SerialNo == right.SerialNo; }
};

/// A list of rows that holds each row once: of rows that are the same, the first.
template <class Row, class Same>
class DistinctRows {
 public:
  /// @param rows empty; borrowed.
  /// @param same what makes two rows of one number the same; rows of different numbers never are.
  explicit DistinctRows(std::vector<Row>& rows, Same same = {}) : m_rows(rows), m_same(same) {}

  void Add(const Row& row) {
    const auto [first, end] = m_places.equal_range(row.SerialNo);
    const auto isRow = [&](const auto& place) { return m_same(m_rows[place.second], row); };
    if (std::any_of(first, end, isRow)) return;
    m_places.emplace(row.SerialNo, m_rows.size());
    m_rows.push_back(row);
  }

  std::size_t Size() const { return m_rows.size(); }

 private:
  std::vector<Row>& m_rows;
  std::unordered_multimap<std::int32_t, std::size_t> m_places;  ///< by number
  Same m_same;
};

}  // namespace Corvane

#endif
