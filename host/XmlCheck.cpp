#include "host/XmlCheck.h"

#include <QString>
#include <QStringList>
#include <QTextCodec>
#include <QXmlStreamReader>
#include <algorithm>
#include <string_view>
#include <vector>

#include "base/Xml.h"
#include "host/Failure.h"
#include "host/RuleFields.h"
#include "host/ValueForm.h"
#include "rule/RuleType.h"

namespace Corvane::Host {

namespace {

constexpr Field kSaleFields[] = {
    {"Plu", "SerialNo", ValueForm::kInteger},       {"Plu", "Price", ValueForm::kNumber},
    {"Plu", "PluCount", ValueForm::kNumber},        {"Plu", "Total", ValueForm::kNumber},
    {"Plu", "VipPrice", ValueForm::kNumber},        {"Plu", "PackCnt", ValueForm::kNumber},
    {"Plu", "YhBefore", ValueForm::kNumber},        {"Plu", "PluDtId", ValueForm::kNumber},
    {"Plu", "PageNo", ValueForm::kNumber},          {"Plu", "LnNo", ValueForm::kNumber},
    {"Plu", "SaleDate", ValueForm::kDate},          {"Plu", "SaleTime", ValueForm::kTime},
    {"PayMode", "PayMoney", ValueForm::kNumber},    {"Coupon", "CouponValue", ValueForm::kNumber},
    {"Gift", "SerialNo", ValueForm::kInteger},      {"Gift", "PluCount", ValueForm::kNumber},
    {"Gift", "Price", ValueForm::kNumber},          {"Gift", "DscPrice", ValueForm::kNumber},
    {"Gift", "Total", ValueForm::kNumber},          {"ProGifts", "Total", ValueForm::kNumber},
    {"ProGifts", "LeftTotal", ValueForm::kNumber},  {"ProGifts", "UsedTotal", ValueForm::kNumber},
    {"ProGifts", "SerialNo", ValueForm::kInteger},  {"ProGifts", "Price", ValueForm::kNumber},
    {"ProGifts", "DscPrice", ValueForm::kNumber},   {"ProGifts", "BaseConNum", ValueForm::kNumber},
    {"ProGifts", "BaseDscNum", ValueForm::kNumber}, {"ProGifts", "AddConNum", ValueForm::kNumber},
    {"ProGifts", "AddDscNum", ValueForm::kNumber},  {"ProGifts", "SaleMaxIn", ValueForm::kNumber},
    {"ProGifts", "HgPluCount", ValueForm::kNumber},
};

/// What a line is nothing without.
constexpr const char* kLineNeeds[] = {"SerialNo", "PluCode", "PluCount", "Total"};

/// Walks a text with a parser that takes XML for what it is.
class StrictReader {
 public:
  StrictReader(const std::string& xml, const std::string& name)
      : m_name(name), m_text(Decoded(xml)), m_reader(m_text) {}

  /// @return whether there is a next element; its end otherwise means the end of the text.
  bool NextElement() {
    while (!m_reader.atEnd()) {
      m_before = m_reader.characterOffset();
      switch (m_reader.readNext()) {
        case QXmlStreamReader::StartDocument:
          CheckEncoding();
          break;
        case QXmlStreamReader::DTD:
          FailHere("has a document type, which is not read; leave it out");
        case QXmlStreamReader::StartElement:
          m_path.append(m_reader.name().toString());
          m_attributes = m_reader.attributes();
          CheckMeasure();
          return true;
        case QXmlStreamReader::EndElement:
          m_path.removeLast();
          break;
        default:
          break;
      }
    }
    if (m_reader.hasError()) FailHere("is not XML: " + m_reader.errorString().toStdString());
    return false;
  }

  /// The names of the elements from the document's down to the present one.
  const QStringList& Path() const { return m_path; }

  bool Has(const char* attribute) const { return m_attributes.hasAttribute(QLatin1String(attribute)); }
  QString Value(const char* attribute) const { return m_attributes.value(QLatin1String(attribute)).toString(); }

  template <std::size_t Size>
  void CheckFields(const Field (&fields)[Size], const QString& group) {
    for (const Field& field : fields) {
      if (group == QLatin1String(field.Group)) CheckField(field);
    }
  }

  /// Notes that a value is wrong. The first one is told at the end: of a text that is no XML, that is told.
  void NoteAt(const char* attribute, const std::string& what) {
    if (m_wrong.empty()) m_wrong = m_name + ":" + std::to_string(LineOf(attribute)) + ": " + what;
  }
  void NoteWhole(const std::string& what) {
    if (m_wrong.empty()) m_wrong = m_name + ": " + what;
  }
  void FailIfNoted() const {
    if (!m_wrong.empty()) Fail(QNC_BAD_VALUE, m_wrong);
  }

 private:
  static constexpr int kMostShown = 60;

  void CheckField(const Field& field) {
    const QStringRef value = m_attributes.value(QLatin1String(field.Name));
    if (value.isEmpty() || Fits(value.toString(), field.Form)) return;
    NoteAt(field.Name, std::string(field.Name) + " '" + value.left(kMostShown).toString().toStdString() + "' is not " +
                           WordsOf(field.Form));
  }

  [[noreturn]] void FailHere(const std::string& what) const {
    Fail(QNC_BAD_XML, m_name + ":" + std::to_string(m_reader.lineNumber()) + ":" +
                          std::to_string(m_reader.columnNumber() + 1) + ": " + what);
  }

  QString Decoded(const std::string& xml) const {
    QTextCodec::ConverterState state;
    const QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
    if (utf8 == nullptr) Fail(QNC_CLOSED, "the process ends");
    constexpr std::size_t kMost = 1U << 30U;
    if (xml.size() > kMost) Fail(QNC_BAD_XML, m_name + ": is longer than 1 GiB; send less at a time");
    QString text = utf8->toUnicode(xml.data(), static_cast<int>(xml.size()), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0) return text;
    const auto line = 1 + std::count(xml.begin(), xml.begin() + FirstFault(xml), '\n');
    Fail(QNC_BAD_XML, m_name + ":" + std::to_string(line) + ": is not UTF-8; send UTF-8");
  }

  /// @return how many bytes in front are UTF-8.
  static std::ptrdiff_t FirstFault(const std::string& xml) {
    const QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
    int good = 0;
    auto bad = static_cast<int>(xml.size());
    while (bad - good > 1) {
      const int middle = good + (bad - good) / 2;
      QTextCodec::ConverterState state;
      utf8->toUnicode(xml.data(), middle, &state);
      (state.invalidChars == 0 ? good : bad) = middle;
    }
    return good;
  }

  void CheckEncoding() const {
    const QString encoding = m_reader.documentEncoding().toString();
    if (encoding.isEmpty() || encoding.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0) return;
    FailHere("declares the encoding '" + encoding.toStdString() + "'; send UTF-8 and say so, or nothing");
  }

  void CheckMeasure() const {
    if (m_path.size() > XmlDocument::kMaxDepth) {
      FailHere("has elements more than " + std::to_string(XmlDocument::kMaxDepth) + " deep");
    }
    if (m_attributes.size() > XmlDocument::kMaxAttributes) {
      FailHere("has more than " + std::to_string(XmlDocument::kMaxAttributes) + " attributes in an element");
    }
  }

  /// The line on which an attribute of the present element begins; of one that isn't there, that of the element.
  qint64 LineOf(const char* attribute) const {
    const auto begin = static_cast<int>(m_before);
    const auto end = static_cast<int>(m_reader.characterOffset());
    const QString element = m_text.mid(begin, end - begin);
    const int place = Has(attribute) ? PlaceOf(element, QLatin1String(attribute)) : element.indexOf(QLatin1Char('<'));
    return 1 + m_text.leftRef(begin + std::max(place, 0)).count(QLatin1Char('\n'));
  }

  /// Where an attribute's name stands in a tag, outside of values.
  static int PlaceOf(const QString& element, QLatin1String name) {
    QChar quote;
    // The parser may have taken the bracket with the text before it.
    for (int place = std::max(element.lastIndexOf(QLatin1Char('<')), 0); place < element.size(); ++place) {
      const QChar letter = element.at(place);
      if (!quote.isNull()) {
        if (letter == quote) quote = QChar();
      } else if (letter == QLatin1Char('"') || letter == QLatin1Char('\'')) {
        quote = letter;
      } else if (letter.isSpace() && element.midRef(place + 1, name.size()) == name) {
        const QString behind = element.mid(place + 1 + name.size(), 1);
        if (behind == QLatin1String("=") || behind.trimmed().isEmpty()) return place + 1;
      }
    }
    return 0;
  }

  std::string m_name;
  QString m_text;
  QXmlStreamReader m_reader;
  QStringList m_path;
  QXmlStreamAttributes m_attributes;  ///< of the present element
  std::string m_wrong;
  qint64 m_before = 0;  ///< where the present token begins
};

constexpr int kGroupDepth = 2;  ///< of a sale: Sale, group, row
constexpr int kRuleDepth = 2;   ///< Rules, Rule

void CheckLine(StrictReader& reader) {
  for (const char* const need : kLineNeeds) {
    if (reader.Value(need).isEmpty()) reader.NoteAt(need, std::string("the line has no ") + need);
  }
}

RuleHeader HeaderHere(const StrictReader& reader) {
  return {reader.Value("BillNo").toStdString(), reader.Value("ProType").toStdString()};
}

bool IsType(const std::string& word) { return TypeOf(word.c_str()).Word[0] != '\0' && word != Family::kCombination; }

std::string UnknownType(const std::string& word) {
  return "ProType '" + word +
         "' is no type; the types are PTXS, PTPL, PTOS, ZHZY, ZHGD, ZHTJ, ZHZX, MZMJ, MZDP, MZZM, MZZP, MZHG, MZZQ, "
         "MZZF "
         "and MZYQ";
}

void CheckHeader(StrictReader& reader, const RuleHeader& header) {
  if (header.BillNo.empty()) reader.NoteAt("BillNo", "the rule has no BillNo");
  if (header.ProType.empty()) reader.NoteAt("ProType", "the rule has no ProType");
  if (!IsType(header.ProType)) reader.NoteAt("ProType", UnknownType(header.ProType));
}

}  // namespace

int CheckSale(const std::string& xml, const std::string& name) {
  StrictReader reader(xml, name);
  int lines = 0;
  while (reader.NextElement()) {
    if (reader.Path().size() <= kGroupDepth) continue;
    const QString& group = reader.Path().at(kGroupDepth - 1);
    const bool isRow = reader.Path().size() == kGroupDepth + 1;
    if (!isRow && group != QLatin1String("ProGifts")) continue;
    const bool isLine = isRow && group == QLatin1String("Plu");
    lines += isLine ? 1 : 0;
    if (isLine) CheckLine(reader);
    reader.CheckFields(kSaleFields, group);
  }
  reader.FailIfNoted();
  return lines;
}

RuleHeader CheckRule(const std::string& xml, const std::string& name) {
  StrictReader reader(xml, name);
  RuleHeader header;
  bool hasRule = false;
  while (reader.NextElement()) {
    const QStringList& path = reader.Path();
    if (path.size() < kRuleDepth) continue;
    if (path.size() == kRuleDepth) {
      if (hasRule) reader.NoteAt("BillNo", "a second rule; a text holds one rule");
      if (!hasRule) header = HeaderHere(reader);
      hasRule = true;
      CheckHeader(reader, HeaderHere(reader));
      reader.CheckFields(kRuleFields, QStringLiteral("Rule"));
    } else {
      reader.CheckFields(kRuleFields, path.at(kRuleDepth));
    }
  }
  if (!hasRule) reader.NoteWhole("no rule in it; a rule is an element within the document's own");
  reader.FailIfNoted();
  return header;
}

RuleHeader HeaderOf(const std::string& xml, const std::string& name) {
  const XmlDocument document(xml.c_str());
  const TiXmlElement* const root = document.Root();
  const TiXmlElement* const rule = root != nullptr ? root->FirstChildElement() : nullptr;
  RuleHeader header;
  if (rule != nullptr) header = {OrEmpty(rule->Attribute("BillNo")), OrEmpty(rule->Attribute("ProType"))};
  if (!IsType(header.ProType)) Fail(QNC_BAD_VALUE, name + ": " + UnknownType(header.ProType));
  return header;
}

}  // namespace Corvane::Host
