// The writer of results beside TinyXML's printer: the same document from both has the same bytes.
#include "base/XmlWriter.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

using Corvane::Text;
using Corvane::XmlWriter;

namespace {

/// Builds one document twice.
class Twins {
 public:
  explicit Twins(std::size_t room) : m_writer(room) { m_document.LinkEndChild(new TiXmlDeclaration("1.0", "", "")); }

  void Begin(Text name) {
    m_writer.Begin(name);
    auto* const element = new TiXmlElement(name);
    (m_open.empty() ? static_cast<TiXmlNode*>(&m_document) : m_open.back())->LinkEndChild(element);
    m_open.push_back(element);
  }
  void End() {
    m_writer.End();
    m_open.pop_back();
  }
  std::size_t Depth() const { return m_open.size(); }

  void Word(Text name, Text value) {
    m_writer.Word(name, value);
    Set(name, value != nullptr ? value : "");
  }
  void F2(Text name, double value) {
    m_writer.F2(name, value);
    Set(name, Printed("%.2f", value));
  }
  void F4(Text name, double value) {
    m_writer.F4(name, value);
    Set(name, Printed("%.4f", value));
  }
  void I(Text name, std::int32_t value) {
    m_writer.I(name, value);
    Set(name, Printed("%d", value));
  }

  std::string Written() {
    while (!m_open.empty()) End();
    return m_writer.Take();
  }
  std::string PrintedByTinyXml() const {
    TiXmlPrinter printer;
    printer.SetIndent("    ");
    printer.SetLineBreak("\n");
    m_document.Accept(&printer);
    return printer.Str();
  }

 private:
  void Set(Text name, const std::string& value) { m_open.back()->SetAttribute(name, value.c_str()); }

  template <class Number>
  static std::string Printed(const char* form, Number value) {
    char text[400];
    std::snprintf(text, sizeof text, form, value);
    return text;
  }

  XmlWriter m_writer;
  TiXmlDocument m_document;
  std::vector<TiXmlElement*> m_open;  // owned by the document
};

void ExpectTheSame(Twins& twins) {
  const std::string written = twins.Written();
  ASSERT_EQ(written, twins.PrintedByTinyXml());
}

void ExpectValueTheSame(const std::string& value) {
  Twins twins(0);
  twins.Begin("Sale");
  twins.Word("BillNo", value.c_str());
  twins.Word("OrgCode", "01");
  ExpectTheSame(twins);
}

TEST(XmlWriter, WritesDeclarationIndentAndEmptyElements) {
  XmlWriter writer(0);
  writer.Begin("Sale");
  writer.Word("BillNo", "1");
  writer.Word("OrgCode", nullptr);
  writer.Begin("Plu");
  writer.Begin("Data");
  writer.I("SerialNo", -7);
  writer.F2("Price", 9.9);
  writer.F4("FinalPrice", 3.33333);
  writer.End();
  writer.Begin("Data");
  writer.End();
  writer.End();
  writer.Begin("ProResult");
  writer.End();
  writer.End();
  EXPECT_EQ(writer.Take(),
            "<?xml version=\"1.0\" ?>\n"
            "<Sale BillNo=\"1\" OrgCode=\"\">\n"
            "    <Plu>\n"
            "        <Data SerialNo=\"-7\" Price=\"9.90\" FinalPrice=\"3.3333\" />\n"
            "        <Data />\n"
            "    </Plu>\n"
            "    <ProResult />\n"
            "</Sale>\n");
}

TEST(XmlWriter, EscapesAndChoosesTheQuotes) {
  XmlWriter writer(0);
  writer.Begin("S");
  writer.Word("a", "<&>\"' &#x41; \x01\n\x7F\xFF");
  writer.Word("b", "it's");
  writer.End();
  EXPECT_EQ(writer.Take(),
            "<?xml version=\"1.0\" ?>\n"
            "<S a='&lt;&amp;&gt;&quot;&apos; &amp;#x41; &#x01;&#x0A;\x7F\xFF' b=\"it&apos;s\" />\n");
}

TEST(XmlWriter, WritesEveryByteAsTheLibrary) {
  for (int byte = 1; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const std::string letter(1, static_cast<char>(byte));
    ExpectValueTheSame(letter);
    ExpectValueTheSame("a" + letter + "b");
    ExpectValueTheSame("\"" + letter + "'");
    ExpectValueTheSame("&#x" + letter);
    ExpectValueTheSame("&#x4" + letter + "1;");
  }
}

TEST(XmlWriter, WritesWhatLooksLikeAReferenceAsTheLibrary) {
  for (const char* const value : {"&#x", "&#x;", "&#x41;", "&#x41", "a&#x41;b", "&#x<\">;", "&#65;", "&#X41;", "&amp;",
                                  "&#x4&#x41;1;", "&#", "&", "x&#x", "&#x00000041;", "&#x41;\"", "'&#x41;"}) {
    ExpectValueTheSame(value);
  }
}

class Chance {
 public:
  explicit Chance(unsigned seed) : m_random(seed) {}
  unsigned Below(unsigned limit) { return static_cast<unsigned>(m_random()) % limit; }

  /// Pieces that mean something to a printer between bytes of all kinds.
  std::string Value() {
    static const std::vector<std::string> kPieces = {"&",    "&#x",  "&#",       ";",    "<",  ">",
                                                     "\"",   "'",    "&amp;",    "\r\n", "A1", "ä",
                                                     "中文", "\xC3", "\xF0\x9F", "0",    "Ff", " "};
    std::string value;
    const unsigned length = Below(20) == 0 ? 3000 : Below(8);
    for (unsigned piece = 0; piece < length; ++piece) {
      value += Below(3) == 0 ? std::string(1, static_cast<char>(1 + Below(255)))
                             : kPieces[Below(static_cast<unsigned>(kPieces.size()))];
    }
    return value;
  }

  double Number() { return (static_cast<double>(m_random()) - 2e9) / (1U << Below(32)); }
  std::int32_t Integer() { return static_cast<std::int32_t>(static_cast<std::uint32_t>(m_random()) >> Below(32)); }

 private:
  std::mt19937 m_random;
};

void AddAttributes(Twins& twins, Chance& chance) {
  static constexpr Text kNames[] = {"a", "BillNo", "SerialNo", "x-y", "FinalPrice", "z"};
  for (const Text name : kNames) {
    switch (chance.Below(6)) {
      case 0:
        twins.F2(name, chance.Number());
        break;
      case 1:
        twins.F4(name, chance.Number());
        break;
      case 2:
        twins.I(name, chance.Integer());
        break;
      case 3:
        twins.Word(name, nullptr);
        break;
      case 4:
        twins.Word(name, chance.Value().c_str());
        break;
      default:
        break;
    }
  }
}

TEST(XmlWriter, WritesDocumentsByChanceAsTheLibrary) {
  static constexpr Text kNames[] = {"Data", "Plu", "ProResult", "P"};
  for (unsigned seed = 1; seed <= 5000; ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    Twins twins(chance.Below(2000));
    twins.Begin("Sale");
    AddAttributes(twins, chance);
    for (unsigned element = chance.Below(30); element > 0; --element) {
      while (twins.Depth() > 1 && chance.Below(2) == 0) twins.End();
      twins.Begin(kNames[chance.Below(4)]);
      AddAttributes(twins, chance);
    }
    ASSERT_NO_FATAL_FAILURE(ExpectTheSame(twins));
  }
}

TEST(XmlWriter, WritesALongValue) {
  std::string value;
  for (int piece = 0; piece < 200000; ++piece) value += "ab&\"";
  ExpectValueTheSame(value);
}

}  // namespace
