// The XML reader: what it settles before the parser sees the text, and what it makes of malformed texts.
#include "base/Xml.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

using Corvane::Attributes;
using Corvane::ChildElements;
using Corvane::Text;
using Corvane::XmlDocument;

namespace {

/// A document from a text that ends where its memory ends, so that a step over the end is seen.
std::unique_ptr<XmlDocument> Parse(std::string_view text) {
  const auto exact = std::make_unique<char[]>(text.size() + 1);
  std::memcpy(exact.get(), text.data(), text.size());
  return std::make_unique<XmlDocument>(exact.get());
}

std::string Value(const TiXmlElement& element, Text name) {
  const char* const value = element.Attribute(name);
  return value != nullptr ? value : "(none)";
}

std::size_t CountOfAttributes(const TiXmlElement& element) {
  std::size_t count = 0;
  for (const TiXmlAttribute& attribute : Attributes(element)) count += attribute.Name() != nullptr ? 1U : 0U;
  return count;
}

/// The values of one attribute over the rows of the root.
std::vector<std::string> Column(const XmlDocument& document, Text name) {
  std::vector<std::string> values;
  for (const TiXmlElement& row : ChildElements(document.Root())) values.push_back(Value(row, name));
  return values;
}

using Values = std::vector<std::string>;

/// How many elements stand in each other.
int DepthOf(const XmlDocument& document) {
  int depth = 0;
  for (const TiXmlElement* element = document.Root(); element != nullptr; element = element->FirstChildElement()) {
    ++depth;
  }
  return depth;
}

std::string Nested(int depth) {
  std::string text;
  for (int level = 0; level < depth; ++level) text += "<L>";
  for (int level = 0; level < depth; ++level) text += "</L>";
  return text;
}

std::string WithAttributes(int count) {
  std::string text = "<D";
  for (int number = 0; number < count; ++number) {
    text += " a" + std::to_string(number) + "=\"" + std::to_string(number) + "\"";
  }
  return text + "/>";
}

// --- Well-formed texts -----------------------------------------------------------------------------------------------

TEST(Xml, GivesRootRowsAndAttributesInDocumentOrder) {
  const auto document = Parse("<S BillNo='1'><A x='1'/>text<B x='2'></B><!-- no row --><C x='3'/></S>");
  ASSERT_NE(document->Root(), nullptr);
  EXPECT_STREQ(document->Root()->Value(), "S");
  EXPECT_EQ(Column(*document, "x"), (Values{"1", "2", "3"}));
}

TEST(Xml, WalksAttributesInDocumentOrder) {
  const auto document = Parse("<S c='1' a='2' b='3'/>");
  std::string names;
  for (const TiXmlAttribute& attribute : Attributes(*document->Root())) names += attribute.Name();
  EXPECT_EQ(names, "cab");
}

TEST(Xml, ReadsEntities) {
  const auto document = Parse("<S a='&lt;&amp;&quot;&#x41;&gt;'/>");
  EXPECT_EQ(Value(*document->Root(), "a"), "<&\"A>");
}

TEST(Xml, ReadsChineseNamesAndTexts) {
  const auto document = Parse("<销售 名称='组织'/>");
  EXPECT_STREQ(document->Root()->Value(), "销售");
  EXPECT_EQ(Value(*document->Root(), "名称"), "组织");
}

TEST(Xml, ANullParentHasNoChildren) {
  for (const TiXmlElement& child : ChildElements(nullptr)) FAIL() << child.Value();
}

// --- Character references --------------------------------------------------------------------------------------------

/// The value under every declaration that changes how the parser steps; it has to be the same one.
void ExpectValue(const std::string& written, const std::string& value) {
  for (const Text declaration : {"", "<?xml version='1.0'?>", "<?xml version='1.0' encoding='UTF-8'?>",
                                 "<?xml version='1.0' encoding='ISO-8859-1'?>", "\xEF\xBB\xBF"}) {
    SCOPED_TRACE(declaration + written);
    const auto document = Parse(declaration + ("<S>t" + written + "<D a='" + written + "' b='2'/>" + written + "</S>"));
    EXPECT_EQ(Column(*document, "a"), Values{value});
    EXPECT_EQ(Column(*document, "b"), Values{"2"});
  }
}

TEST(XmlReferences, GiveUtf8) {
  ExpectValue("&#228;", "ä");
  ExpectValue("&#xE4;", "ä");
  ExpectValue("&#xe4;", "ä");
  ExpectValue("&#20013;&#x6587;", "中文");
  ExpectValue("&#128512;", "😀");
  ExpectValue("M&#252;ller &amp; S&#xF6;hne", "Müller & Söhne");
}

TEST(XmlReferences, AtTheEdgesOfTheLengths) {
  ExpectValue("&#x7F;", "\x7F");
  ExpectValue("&#x80;", "\xC2\x80");
  ExpectValue("&#x7FF;&#x800;", "\xDF\xBF\xE0\xA0\x80");
  ExpectValue("&#xFFFD;&#x10000;", "\xEF\xBF\xBD\xF0\x90\x80\x80");
  ExpectValue("&#x10FFFF;", "\xF4\x8F\xBF\xBF");
}

TEST(XmlReferences, ThatAreNoCharactersGiveTheReplacementCharacter) {
  for (const Text written : {"&#xD800;", "&#xDFFF;", "&#xFFFE;", "&#65535;", "&#x110000;", "&#4294967361;",
                             "&#18446744073709551681;", "&#xFFFFFFFFFFFFFFFFFFFF;"}) {
    ExpectValue(written, "\xEF\xBF\xBD");
  }
}

TEST(XmlReferences, OfAsciiAndByNameAreTheParsers) {
  ExpectValue("&#65;&#x42;&#000067;", "ABC");
  ExpectValue("&lt;&gt;&amp;&quot;&apos;", "<>&\"'");
  ExpectValue("&#39;&#34;&#60;&#38;", "'\"<&");
}

TEST(XmlReferences, InAnAttributeThatOccursTwice) {
  const auto document = Parse("<S><D a='&#228;&#228;' b='&#228;' a='2' c='&#228;'/><D a='&#229;'/></S>");
  EXPECT_EQ(Column(*document, "a"), (Values{"2", "å"}));
  EXPECT_EQ(Column(*document, "b"), (Values{"ä", "(none)"}));
  EXPECT_EQ(Column(*document, "c"), (Values{"ä", "(none)"}));
}

TEST(XmlReferences, StayWhereTheyAreNone) {
  const auto document = Parse("<S><![CDATA[&#228;]]><!-- &#228; --><D a='1'/></S>");
  EXPECT_EQ(Column(*document, "a"), Values{"1"});
  EXPECT_STREQ(document->Root()->GetText(), "&#228;");
}

TEST(XmlReferences, ThatAreBrokenEndTheText) {
  for (const Text written : {"&#12", "&#x", "&#xG1;", "&#1A;", "&#X41;", "&#-5;"}) {
    SCOPED_TRACE(written);
    const auto document = Parse(std::string("<S><D a='1'/><D a='") + written + "'/><D a='3'/></S>");
    EXPECT_EQ(Column(*document, "a").front(), "1");
    for (const std::string& value : Column(*document, "a")) EXPECT_NE(value, "3");
  }
}

// A lead byte whose sequence is cut off takes what follows it with it, where UTF-8 is declared; elsewhere not.
TEST(XmlReferences, BehindACutOffCharacterTheClosingQuoteStands) {
  const auto plain = Parse("<S><D a='\xE4&#228;' b='2'/></S>");
  EXPECT_EQ(Column(*plain, "a"), Values{"\xE4ä"});
  EXPECT_EQ(Column(*plain, "b"), Values{"2"});
  const auto cutOff = Parse("<S><D a='&#228;\xE4' b='2'/></S>");
  EXPECT_EQ(Column(*cutOff, "a"), Values{"ä\xE4"});
  EXPECT_EQ(Column(*cutOff, "b"), Values{"2"});
}

// The parser reads a reference up to a semicolon behind the closing quote: nesting that hides there is measured too.
TEST(XmlReferences, NestingCannotHideBehindOne) {
  const auto document = Parse("<S a=\"&#x\" c='x41;\" d=\"'>" + Nested(100000) + "\"></S>");
  EXPECT_LE(DepthOf(*document), XmlDocument::kMaxDepth);
  const auto hidden = Parse("<S a=\"&#x\" c='x41;' d=\">" + Nested(100000) + "\"/>");
  EXPECT_LE(DepthOf(*hidden), XmlDocument::kMaxDepth);
}

TEST(XmlReferences, NestingCannotHideBehindAnEncodingInReferences) {
  const auto document = Parse("<?xml version='1.0' encoding='&#85;TF-8'?><S a='\xE4'>" + Nested(100000) + "'/>");
  EXPECT_LE(DepthOf(*document), XmlDocument::kMaxDepth);
}

/// The sanitizer looks at the whole rest of the text whenever a few letters of it are compared.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kHugeNumber = 10000;
#else
constexpr std::size_t kHugeNumber = 1000000;
#endif

TEST(XmlReferences, AHugeNumberOfThemTakesNoTime) {
  std::string many;
  for (std::size_t number = 0; number < kHugeNumber; ++number) many += "&#228;";
  const auto begin = std::chrono::steady_clock::now();
  const auto document = Parse("<S a='" + many + "'/>");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
  EXPECT_EQ(Value(*document->Root(), "a").size(), 2 * kHugeNumber);
}

// --- An attribute that occurs twice ----------------------------------------------------------------------------------

TEST(XmlAttributes, TheLastValueCountsAndTheFollowingLinesSurvive) {
  const auto document = Parse(
      "<Sale><Plu>"
      "<D SerialNo=\"1\" PluCount=\"1\" PluCount=\"2\" Total=\"20\"/>"
      "<D SerialNo=\"2\" PluCount=\"3\" Total=\"30\"/>"
      "<D SerialNo=\"3\" PluCount=\"4\" Total=\"40\"/>"
      "</Plu><Vip><D VipType=\"01\"/></Vip></Sale>");
  ASSERT_NE(document->Root(), nullptr);
  const TiXmlElement* const lines = document->Root()->FirstChildElement("Plu");
  ASSERT_NE(lines, nullptr);
  Values counts;
  Values totals;
  for (const TiXmlElement& line : ChildElements(lines)) {
    counts.push_back(Value(line, "PluCount"));
    totals.push_back(Value(line, "Total"));
  }
  EXPECT_EQ(counts, (Values{"2", "3", "4"}));
  EXPECT_EQ(totals, (Values{"20", "30", "40"}));
  ASSERT_NE(document->Root()->FirstChildElement("Vip"), nullptr);
}

TEST(XmlAttributes, OfManyValuesTheLastCounts) {
  const auto document = Parse("<S><D a='1' b='x' a='2' a='3' b='y' a='4'/><D a='5'/></S>");
  EXPECT_EQ(Column(*document, "a"), (Values{"4", "5"}));
  EXPECT_EQ(Column(*document, "b"), (Values{"y", "(none)"}));
}

TEST(XmlAttributes, TwiceInTheRootLoseNothing) {
  const auto document = Parse("<S BillNo='1' BillNo='2'><D a='1'/></S>");
  EXPECT_EQ(Value(*document->Root(), "BillNo"), "2");
  EXPECT_EQ(Column(*document, "a"), (Values{"1"}));
}

TEST(XmlAttributes, TwiceInDifferentElementsAreDifferentAttributes) {
  const auto document = Parse("<S a='0'><D a='1'><E a='2'/></D><D a='3'/></S>");
  EXPECT_EQ(Value(*document->Root(), "a"), "0");
  EXPECT_EQ(Column(*document, "a"), (Values{"1", "3"}));
}

TEST(XmlAttributes, NamesAreComparedExactly) {
  const auto document = Parse("<S><D a='1' A='2' ab='3' b='4' a.b='5' a:b='6'/></S>");
  const TiXmlElement& row = *document->Root()->FirstChildElement();
  EXPECT_EQ(CountOfAttributes(row), 6U);
  EXPECT_EQ(Value(row, "a"), "1");
  EXPECT_EQ(Value(row, "A"), "2");
  EXPECT_EQ(Value(row, "ab"), "3");
  EXPECT_EQ(Value(row, "a.b"), "5");
}

TEST(XmlAttributes, TwiceInEveryWayOfWriting) {
  const Text rows[] = {"<D a=\"1\" a=\"2\"/>",
                       "<D a='1' a=\"2\"/>",
                       "<D a=\"1\" a='2'/>",
                       "<D a = '1' a= '2' />",
                       "<D\n\ta='1'\r\n\ta='2'\n/>",
                       "<D a='1'a='2'/>",
                       "<D a=1 a=2 />",
                       "<D a='1' a='2'></D>",
                       "<D a='1' b='/>' a='2'/>",
                       "<D a='>' b='a=\"3\"' a='2'/>",
                       "<D a='' a='2'/>",
                       "<D a='a=\"7\"' a='2'/>",
                       "<D a='it&apos;s' a='2'/>",
                       "<D a='\"' b='\"' a='2'/>",
                       "<D a='1' a='2'>a='3'</D>"};
  for (const Text row : rows) {
    SCOPED_TRACE(row);
    const auto document = Parse(std::string("<S>") + row + "<D a='9'/></S>");
    EXPECT_EQ(Column(*document, "a"), (Values{"2", "9"}));
  }
}

TEST(XmlAttributes, TheLastValueMayBeEmpty) {
  const auto document = Parse("<S><D a='1' a=''/><D a='9'/></S>");
  EXPECT_EQ(Column(*document, "a"), (Values{"", "9"}));
}

TEST(XmlAttributes, TwiceUnderAChineseName) {
  const auto document = Parse("<?xml version='1.0' encoding='UTF-8'?><S><D 类='一' 类='二'/><D 类='三'/></S>");
  EXPECT_EQ(Column(*document, "类"), (Values{"二", "三"}));
}

TEST(XmlAttributes, TwiceBehindAByteOrderMark) {
  const auto document = Parse("\xEF\xBB\xBF<?xml version='1.0'?>\n<S><D a='1' a='2'/><D a='9'/></S>");
  EXPECT_EQ(Column(*document, "a"), (Values{"2", "9"}));
}

TEST(XmlAttributes, AThousandInAnElementAreRead) {
  const auto document = Parse("<S>" + WithAttributes(1000) + "<D a0='9'/></S>");
  ASSERT_NE(document->Root(), nullptr);
  EXPECT_EQ(CountOfAttributes(*document->Root()->FirstChildElement()), 1000U);
  EXPECT_EQ(Value(*document->Root()->FirstChildElement(), "a999"), "999");
  EXPECT_EQ(Column(*document, "a0"), (Values{"0", "9"}));
}

TEST(XmlAttributes, MoreThanAThousandInAnElementEndTheText) {
  const auto document = Parse("<S><D a0='7'/>" + WithAttributes(1001) + "<D a0='9'/></S>");
  ASSERT_NE(document->Root(), nullptr);
  EXPECT_EQ(Column(*document, "a0").front(), "7");
  for (const std::string& value : Column(*document, "a0")) EXPECT_NE(value, "9");
}

TEST(XmlAttributes, AHugeNumberOfThemTakesNoTime) {
  const auto begin = std::chrono::steady_clock::now();
  const auto document = Parse("<S><D a0='7'/>" + WithAttributes(300000) + "</S>");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
  ASSERT_NE(document->Root(), nullptr);
  EXPECT_EQ(Column(*document, "a0").front(), "7");
}

// --- Comments, CDATA, declarations -----------------------------------------------------------------------------------

TEST(XmlAsides, ThatLookLikeMarkupAreSteppedOver) {
  const Text asides[] = {"<!-- <D a='1' a='2'/> -->",
                         "<!-- don't -->",
                         "<!-- \" -->",
                         "<!-- > -- -> ' -->",
                         "<!-- > <D a=' -->",
                         "<![CDATA[ > <D a=\" ]]>",
                         "<!---->",
                         "<![CDATA[<D a='1' a='2'/>]]>",
                         "<![CDATA[ ]] > ' \" ]]>",
                         "<![CDATA[]]>",
                         "<?pi a='1' a='2'?>",
                         "it's \"text\" a='1' a='2'",
                         "&amp; &unknown; &",
                         "<!ELEMENT Sale ANY>"};
  for (const Text aside : asides) {
    SCOPED_TRACE(aside);
    const auto document = Parse(std::string("<S><D a='1' a='2'/>") + aside + "<D a='3' a='4'/></S>");
    EXPECT_EQ(Column(*document, "a"), (Values{"2", "4"}));
  }
}

TEST(XmlAsides, BeforeTheRootAreSteppedOver) {
  const Text asides[] = {"<?xml version=\"1.0\"?>",
                         "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>",
                         "<?xml version='1.0' encoding='\"'?>",
                         "<?xml version=\"1.0\" encoding=\"it's\"?>",
                         "<?xml version='1.0' encoding='GBK'?>",
                         "<?XML VERSION='1.0'?>",
                         "<?xml ?>",
                         "<?xml version='>'?>",
                         "<?xml version='&quot;' encoding='UTF-8'?>",
                         "<?xml version='1.0'?><!-- ' -->",
                         "<!DOCTYPE Sale>",
                         "\n\t ",
                         "<!-- \" -->\n<!-- ' -->"};
  for (const Text aside : asides) {
    SCOPED_TRACE(aside);
    const auto document = Parse(std::string(aside) + "<S b='1' b='2'><D a='1' a='2'/><D a='3' a='4'/></S>");
    ASSERT_NE(document->Root(), nullptr);
    EXPECT_EQ(Value(*document->Root(), "b"), "2");
    EXPECT_EQ(Column(*document, "a"), (Values{"2", "4"}));
  }
}

// --- Nesting ---------------------------------------------------------------------------------------------------------

TEST(XmlNesting, IsReadDownToTheLimit) {
  EXPECT_EQ(DepthOf(*Parse(Nested(3))), 3);
  EXPECT_EQ(DepthOf(*Parse(Nested(200))), 200);
}

TEST(XmlNesting, DeeperThanTheLimitEndsTheText) {
  EXPECT_EQ(DepthOf(*Parse(Nested(201))), 200);
  EXPECT_EQ(DepthOf(*Parse(Nested(200000))), 200);
}

TEST(XmlNesting, ThatNeverEndsIsReadToo) {
  std::string text;
  for (int level = 0; level < 200000; ++level) text += "<L a='1'>";
  EXPECT_EQ(DepthOf(*Parse(text)), 200);
}

TEST(XmlNesting, CannotHideBehindADeclarationWithinAnElement) {
  const auto document = Parse("<S><?xml version='1.0' encoding='UTF-8'?><D a='\xE4'>" + Nested(100000) + "'/></S>");
  EXPECT_LE(DepthOf(*document), XmlDocument::kMaxDepth);
}

TEST(XmlNesting, LeavesWhatStandsBeforeIt) {
  const auto document = Parse("<S><D a='1'/>" + Nested(5000) + "<D a='9'/></S>");
  ASSERT_NE(document->Root(), nullptr);
  EXPECT_EQ(Column(*document, "a"), (Values{"1", "(none)"}));
}

TEST(XmlNesting, OfManyShallowElementsIsNoDepth) {
  std::string text = "<S>";
  for (int number = 0; number < 5000; ++number) text += "<G><D/></G>";
  const auto document = Parse(text + "<D a='9'/></S>");
  EXPECT_EQ(Column(*document, "a").size(), 5001U);
  EXPECT_EQ(Column(*document, "a").back(), "9");
}

// --- Malformed texts -------------------------------------------------------------------------------------------------

TEST(XmlFaults, ANullTextHasNoRoot) { EXPECT_EQ(XmlDocument(nullptr).Root(), nullptr); }

TEST(XmlFaults, TextsWithoutAnElementHaveNoRoot) {
  for (const Text text : {"", " \n", "no xml", "<", "<>", "< S/>", "</S>", "<?xml version='1.0'?>", "<?xml", "<!--",
                          "<!-- x", "<![CDATA[x]]>", "<![CDATA[", "&", "'", "\xEF\xBB\xBF", "\xE4"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Parse(text)->Root(), nullptr);
  }
}

TEST(XmlFaults, WhatStandsBeforeTheFaultIsRead) {
  const Text faults[] = {"",
                         "</S",
                         "</X>",
                         "<",
                         "<D",
                         "<D a",
                         "<D a=",
                         "<D a='",
                         "<D a='8",
                         "<D a=\"8'/></S>",
                         "<D a/></S>",
                         "<D ='8'/></S>",
                         "<D a='8' <D a='9'/></S>",
                         "<D a='8' /",
                         "<!-- ",
                         "<!-- -- </S>",
                         "<![CDATA[ ]] </S>",
                         "<?pi",
                         "<!DOCTYPE",
                         "&#x",
                         "&#99999999999;",
                         "&",
                         "]]>",
                         "<D></E></S>"};
  for (const Text fault : faults) {
    SCOPED_TRACE(fault);
    const auto document = Parse(std::string("<S><D a='1' a='2'/>") + fault);
    ASSERT_NE(document->Root(), nullptr);
    ASSERT_FALSE(Column(*document, "a").empty());
    EXPECT_EQ(Column(*document, "a").front(), "2");
  }
}

TEST(XmlFaults, ACutOffCharacterEndsTheText) {
  const Text declarations[] = {"", "<?xml version='1.0' encoding='UTF-8'?>", "\xEF\xBB\xBF"};
  const Text places[] = {"", "<D>", "<D a='8", "<D a=\"", "<D a=", "<D ", "<", "<!-- ", "<![CDATA[", "<?pi ", "</"};
  const Text ends[] = {"\xC3", "\xE4", "\xE4\xB8", "\xF0", "\xF0\x9F", "\xF0\x9F\x98", "\xFF", "\x80"};
  for (const Text declaration : declarations) {
    for (const Text place : places) {
      for (const Text end : ends) {
        SCOPED_TRACE(std::string(declaration) + place);
        const auto document = Parse(std::string(declaration) + "<S><D a='1' a='2'/>" + place + end);
        ASSERT_NE(document->Root(), nullptr);
        ASSERT_FALSE(Column(*document, "a").empty());
        EXPECT_EQ(Column(*document, "a").front(), "2");
      }
    }
  }
}

}  // namespace
