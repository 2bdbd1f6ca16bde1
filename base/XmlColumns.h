#ifndef QNCORVANE_BASE_XMLCOLUMNS_H
#define QNCORVANE_BASE_XMLCOLUMNS_H

#include <cstdint>
#include <string_view>

#include "base/Numbers.h"
#include "base/XmlWriter.h"

namespace Corvane {

/// One row of a table that says which field of a record fills which attribute: the counterpart of XmlField.
template <class Record>
struct XmlColumn {
  std::string_view Name;
  void (*Write)(XmlWriter& writer, std::string_view name, const Record& record);
};

/// The forms in which a field gets into an attribute.
template <class Record>
struct From {
  template <auto Field>
  static void Word(XmlWriter& writer, std::string_view name, const Record& record) {
    writer.Word(name, record.*Field);
  }
  /// "1" for true, "0" for false.
  template <auto Field>
  static void Flag(XmlWriter& writer, std::string_view name, const Record& record) {
    writer.Word(name, record.*Field ? "1" : "0");
  }
  template <auto Field>
  static void F2(XmlWriter& writer, std::string_view name, const Record& record) {
    writer.F2(name, record.*Field);
  }
  template <auto Field>
  static void F4(XmlWriter& writer, std::string_view name, const Record& record) {
    writer.F4(name, record.*Field);
  }
  template <auto Field>
  static void I(XmlWriter& writer, std::string_view name, const Record& record) {
    writer.I(name, record.*Field);
  }
  /// A double cut toward zero: 9.9 leaves as "9".
  template <auto Field>
  static void CutI(XmlWriter& writer, std::string_view name, const Record& record) {
    writer.I(name, TruncToInt32(record.*Field));
  }
};

/// Writes the table's attributes, in its order, to the element that was opened last.
template <class Record, class ColumnTable>
void WriteAttributes(XmlWriter& writer, const ColumnTable& table, const Record& record) {
  for (const XmlColumn<Record>& column : table) column.Write(writer, column.Name, record);
}

}  // namespace Corvane

#endif
