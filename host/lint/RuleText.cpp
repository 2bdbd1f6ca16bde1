#include "host/lint/RuleText.h"

#include <QString>
#include <QXmlStreamReader>
#include <algorithm>
#include <map>
#include <utility>

#include "base/Numbers.h"

namespace Corvane::Host::Lint {

namespace {

/// Counts lines on the way through a text, each sign once.
class LineCount {
 public:
  explicit LineCount(const QString& text) : m_text(text) {}

  /// @param place not in front of one that was asked for before. @return its line, from 1 on.
  int At(int place) {
    for (; m_place < place && m_place < m_text.size(); ++m_place)
      m_line += m_text.at(m_place) == QLatin1Char('\n') ? 1 : 0;
    return m_line;
  }

 private:
  const QString& m_text;
  int m_place = 0;
  int m_line = 1;
};

/// The lines of the attributes in a tag, by name.
std::map<QString, int> LinesIn(const QString& text, int begin, int end, LineCount& lines) {
  std::map<QString, int> found;
  QChar quote;
  QString name;
  for (int place = begin; place < end; ++place) {
    const QChar letter = text.at(place);
    if (!quote.isNull()) {
      if (letter == quote) quote = QChar();
      continue;
    }
    const bool isMark = letter == QLatin1Char('"') || letter == QLatin1Char('\'');
    if (isMark || letter == QLatin1Char('=') || letter.isSpace()) {
      name.clear();
    } else {
      if (name.isEmpty()) lines.At(place);
      name += letter;
      const bool isLast = place + 1 == end || text.at(place + 1) == QLatin1Char('=') || text.at(place + 1).isSpace();
      if (isLast) found.emplace(name, lines.At(place));
    }
    if (isMark) quote = letter;
  }
  return found;
}

XmlNode NodeHere(const QXmlStreamReader& reader, const QString& text, int before, LineCount& lines) {
  const int end = std::min(static_cast<int>(reader.characterOffset()), text.size());
  // The parser may have taken the bracket with the text before it.
  const int bracket = text.indexOf(QLatin1Char('<'), before);
  const int begin = bracket >= 0 && bracket < end ? bracket : text.lastIndexOf(QLatin1Char('<'), std::max(before, 0));
  XmlNode node;
  node.Name = reader.name().toString().toStdString();
  node.Line = lines.At(std::max(begin, 0));
  const std::map<QString, int> places = LinesIn(text, std::max(begin, 0), end, lines);
  for (const QXmlStreamAttribute& attribute : reader.attributes()) {
    const auto line = places.find(attribute.qualifiedName().toString());
    node.Attributes.push_back({attribute.name().toString().toStdString(), attribute.value().toString().toStdString(),
                               line == places.end() ? node.Line : line->second});
  }
  return node;
}

}  // namespace

const XmlAttribute* XmlNode::Find(const char* name) const {
  const auto found = std::find_if(Attributes.begin(), Attributes.end(),
                                  [&](const XmlAttribute& attribute) { return attribute.Name == name; });
  return found == Attributes.end() ? nullptr : &*found;
}

std::string XmlNode::Value(const char* name) const {
  const XmlAttribute* const attribute = Find(name);
  return attribute != nullptr ? attribute->Value : std::string();
}

double XmlNode::Number(const char* name) const { return ToDouble(Value(name).c_str()); }

int XmlNode::LineOf(const char* name) const {
  const XmlAttribute* const attribute = Find(name);
  return attribute != nullptr ? attribute->Line : Line;
}

std::vector<const XmlNode*> XmlNode::RowsOf(const char* group) const {
  std::vector<const XmlNode*> rows;
  for (const XmlNode* const child : Groups(group)) {
    for (const XmlNode& row : child->Children) rows.push_back(&row);
  }
  return rows;
}

std::vector<const XmlNode*> XmlNode::Groups(const char* group) const {
  std::vector<const XmlNode*> groups;
  for (const XmlNode& child : Children) {
    if (child.Name == group) groups.push_back(&child);
  }
  return groups;
}

std::optional<XmlNode> ReadXmlText(const std::string& xml) {
  const QString text = QString::fromUtf8(xml.data(), static_cast<int>(xml.size()));
  QXmlStreamReader reader(text);
  LineCount lines(text);
  std::optional<XmlNode> root;
  // Elements are only added to the innermost open one, so that the outer ones stay where they are.
  std::vector<XmlNode*> open;
  while (!reader.atEnd()) {
    const auto before = static_cast<int>(reader.characterOffset());
    const QXmlStreamReader::TokenType token = reader.readNext();
    if (token == QXmlStreamReader::EndElement) open.pop_back();
    if (token != QXmlStreamReader::StartElement) continue;
    XmlNode node = NodeHere(reader, text, before, lines);
    if (open.empty()) {
      root = std::move(node);
      open.push_back(&*root);
    } else {
      std::vector<XmlNode>& children = open.back()->Children;
      children.push_back(std::move(node));
      open.push_back(&children.back());
    }
  }
  return reader.hasError() ? std::nullopt : root;
}

}  // namespace Corvane::Host::Lint
