#ifndef QNCORVANE_SALE_LINECODES_H
#define QNCORVANE_SALE_LINECODES_H

#include <cstddef>
#include <optional>
#include <vector>

#include "base/Text.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// The codes of one kind on some lines, each once, and the first line that bears each.
class CodeIndex {
 public:
  /// @param code the code of a line; null is the empty text.
  CodeIndex(const SalePlu* first, const SalePlu* end, Text SalePlu::*code);

  /// In byte order; borrowed from the lines.
  const std::vector<Text>& Codes() const { return m_codes; }

  /// The first line that bears the code, byte for byte, counted from the first of the lines.
  std::optional<std::size_t> FirstLine(Text code) const;

  /// Whether every way of comparing texts tells these codes apart. Databases may take two texts for one that differ in
  /// case, accents, blanks, marks or the width of their signs; between others than ASCII letters, digits and the Han
  /// signs in common use nothing is certain, nor of "?", which stands for a sign that a database doesn't know.
  bool AreDistinctEverywhere() const { return m_areDistinctEverywhere; }

 private:
  std::vector<Text> m_codes;
  std::vector<std::size_t> m_firstLines;  ///< of each code
  bool m_areDistinctEverywhere;
};

/// By what a rule's rows can name some lines of a sale: the codes of their goods, categories and brands.
struct LineCodes {
  /// @param first,end lines of a sale; borrowed.
  LineCodes(const SalePlu* first, const SalePlu* end);

  /// The first of the lines that a row names, both words compared byte for byte.
  std::optional<std::size_t> FirstNamed(const ProDetailKey& row) const;

  /// Whether a row that a database finds by one of the codes can concern no line with another.
  bool AreDistinctEverywhere() const;

  const SalePlu* First;
  const SalePlu* End;
  CodeIndex Goods;
  CodeIndex Categories;
  CodeIndex Brands;
};

/// The codes of all lines, in groups.
/// @param most lines of a group, at least 1. A group whose codes fill a quarter of a megabyte ends there: servers refuse
///             statements that are longer than some such size.
std::vector<LineCodes> CodesOf(const std::vector<SalePlu>& lines, std::size_t most);

}  // namespace Corvane

#endif
