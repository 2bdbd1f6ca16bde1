// Any text as XML, and every value in it as a number.
//
// An input is the text, read by the engine's reader and by TinyXML alone: of a text that TinyXML takes as a whole, both
// make the same document, but for what the reader is there to change.
#include <tinyxml.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <string>

#include "base/Numbers.h"
#include "base/Xml.h"
#include "tests/fuzz/Check.h"
#include "tests/fuzz/Target.h"

namespace {

using namespace Corvane;
using namespace Corvane::Fuzz;

/// The C library is in the "C" locale here, and of what is no finite number the engine makes 0.
void RequireSameNumber(const char* value) {
  const double number = std::strtod(value, nullptr);
  Require(ToDouble(value) == (std::isfinite(number) ? number : 0), "a number is what the C library reads", value);
  const auto integer = static_cast<std::int32_t>(std::strtol(value, nullptr, 10));
  Require(ToInt32(value) == integer, "an integer is what the C library reads", value);
}

void RequireElement(const TiXmlElement& element, int depth, bool isUtf8) {
  Require(depth <= XmlDocument::kMaxDepth, "nesting ends");
  Require(!isUtf8 || IsUtf8(element.Value()), "a name of UTF-8 is UTF-8", element.Value());
  std::set<std::string> names;
  for (const TiXmlAttribute& attribute : Attributes(element)) {
    Require(names.insert(attribute.Name()).second, "an attribute stands there once", attribute.Name());
    Require(!isUtf8 || IsUtf8(attribute.Value()), "a value of UTF-8 is UTF-8", attribute.Value());
    RequireSameNumber(attribute.Value());
  }
  Require(names.size() <= XmlDocument::kMaxAttributes, "there is an end of attributes");
  for (const TiXmlElement& child : ChildElements(element)) RequireElement(child, depth + 1, isUtf8);
}

std::string Printed(const TiXmlElement* element) {
  TiXmlPrinter printer;
  if (element != nullptr) element->Accept(&printer);
  return printer.Str();
}

/// Whether the reader leaves a text as it is: without references that it replaces, or with which a declaration could name
/// its encoding; and without nesting that TinyXML's stack might not stand.
bool IsLeftAlone(const std::string& text) {
  if (text.find("&#") != std::string::npos) return false;
  if (text.find('&') != std::string::npos && text.find("<?") != std::string::npos) return false;
  return std::count(text.begin(), text.end(), '<') < XmlDocument::kMaxDepth;
}

}  // namespace

void Corvane::Fuzz::Prepare() {}

void Corvane::Fuzz::Try(Bytes input) {
  const std::string text = input.Text();
  const XmlDocument document(text.c_str());
  if (document.Root() != nullptr) RequireElement(*document.Root(), 1, IsUtf8(text));
  if (!IsLeftAlone(text)) return;
  // TinyXML steps over the end of a text that ends within a character.
  const std::string padded = text + std::string(3, '\0');
  TiXmlDocument plain;
  plain.SetTabSize(0);
  plain.Parse(padded.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
  if (plain.Error()) return;
  Require(Printed(document.Root()) == Printed(plain.RootElement()), "the document is that of TinyXML", text);
}
