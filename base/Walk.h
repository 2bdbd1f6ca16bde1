#ifndef QNCORVANE_BASE_WALK_H
#define QNCORVANE_BASE_WALK_H

#include <iterator>

namespace Corvane {

/// A list walked from the last entry to the first: `for (auto& row : LastToFirst(rows))`. A plain range-for walks from
/// the first to the last. The list must outlive the walk.
template <class List>
class LastToFirst {
 public:
  explicit LastToFirst(List& list) : m_list(list) {}
  auto begin() const { return std::rbegin(m_list); }
  auto end() const { return std::rend(m_list); }

 private:
  List& m_list;
};

}  // namespace Corvane

#endif
