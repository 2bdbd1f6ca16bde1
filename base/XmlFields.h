#ifndef QNCORVANE_BASE_XMLFIELDS_H
#define QNCORVANE_BASE_XMLFIELDS_H

#include <tinyxml.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/Numbers.h"
#include "base/Text.h"
#include "base/TextPool.h"
#include "base/Xml.h"

namespace Corvane {

/// One row of a table that says which attribute fills which field of a record.
template <class Record>
struct XmlField {
  std::string_view Name;
  void (*Read)(Record& record, Text value, TextPool& texts);
};

/// The ways in which an attribute's value gets into a field.
template <class Record>
struct Into {
  /// The text itself, kept in the pool.
  template <auto Field>
  static void KeptText(Record& record, Text value, TextPool& texts) {
    record.*Field = texts.Keep(OrEmpty(value));
  }
  template <auto Field>
  static void Double(Record& record, Text value, TextPool& /*texts*/) {
    record.*Field = ToDouble(value);
  }
  template <auto Field>
  static void Integer(Record& record, Text value, TextPool& /*texts*/) {
    record.*Field = ToInt32(value);
  }
  /// Read as a double and cut toward zero.
  template <auto Field>
  static void CutInteger(Record& record, Text value, TextPool& /*texts*/) {
    record.*Field = TruncToInt32(ToDouble(value));
  }
  /// True because the attribute is there, whatever it says: "0" and "false" included.
  template <auto Field>
  static void Presence(Record& record, Text /*value*/, TextPool& /*texts*/) {
    record.*Field = true;
  }
};

/// Fills the field that the table names for the attribute. @return false when the table doesn't know the name.
template <class Record, class FieldTable>
bool ReadAttribute(const FieldTable& table, const TiXmlAttribute& attribute, Record& record, TextPool& texts) {
  const std::string_view name = attribute.NameTStr();
  const auto* const field =
      std::find_if(std::begin(table), std::end(table), [&](const auto& row) { return row.Name == name; });
  if (field == std::end(table)) return false;
  field->Read(record, attribute.Value(), texts);
  return true;
}

/// Fills the record from all attributes of an element; a name that the table doesn't know is skipped.
///
/// @param texts keeps the record's texts: the pool of the process, or that of the sale which the record belongs to.
template <class Record, class FieldTable>
void ReadAttributes(const FieldTable& table, const TiXmlElement& element, Record& record,
                    TextPool& texts = ProcessTexts()) {
  for (const TiXmlAttribute& attribute : Attributes(element)) ReadAttribute(table, attribute, record, texts);
}

}  // namespace Corvane

#endif
