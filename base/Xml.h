#ifndef QNCORVANE_BASE_XML_H
#define QNCORVANE_BASE_XML_H

#include <tinyxml.h>

#include <string>

#include "base/Text.h"

namespace Corvane {

/// An XML text, parsed. Texts read from it die with it: readers keep what they need in a TextPool.
///
/// TinyXML parses; a step in front of it settles four things. A numeric character reference gives UTF-8, whatever the
/// declaration says: TinyXML makes a single byte of it where UTF-8 isn't declared; of a number that is no character it
/// gives U+FFFD. An attribute that occurs twice in an element has its
/// last value (TinyXML would drop the rest of the document). Nesting deeper than kMaxDepth or more than kMaxAttributes
/// in one element end the text there, like any malformed text (TinyXML would exhaust the stack or the cashier's
/// patience). The text that TinyXML reads is padded, since a cut-off UTF-8 sequence at its end makes TinyXML step over
/// the end. A malformed text raises no error: what stands before the fault can be read.
class XmlDocument {
 public:
  static constexpr int kMaxDepth = 200;
  static constexpr int kMaxAttributes = 1000;

  /// @param xml the text; null counts as empty.
  explicit XmlDocument(Text xml);

  /// The first element of the document, or null when there is none. Owned by the document.
  const TiXmlElement* Root() const { return m_document.FirstChildElement(); }

 private:
  TiXmlDocument m_document;
};

/// The child elements of an element in document order, for a range-for. A null parent has none.
class ChildElements {
 public:
  class Iterator {
   public:
    explicit Iterator(const TiXmlElement* element) : m_element(element) {}
    const TiXmlElement& operator*() const { return *m_element; }
    Iterator& operator++() {
      m_element = m_element->NextSiblingElement();
      return *this;
    }
    bool operator!=(const Iterator& other) const { return m_element != other.m_element; }

   private:
    const TiXmlElement* m_element;
  };

  explicit ChildElements(const TiXmlElement* parent)
      : m_first(parent != nullptr ? parent->FirstChildElement() : nullptr) {}
  explicit ChildElements(const TiXmlElement& parent) : ChildElements(&parent) {}
  Iterator begin() const { return Iterator(m_first); }
  static Iterator end() { return Iterator(nullptr); }

 private:
  const TiXmlElement* m_first;
};

/// The attributes of an element in document order, for a range-for.
class Attributes {
 public:
  class Iterator {
   public:
    explicit Iterator(const TiXmlAttribute* attribute) : m_attribute(attribute) {}
    const TiXmlAttribute& operator*() const { return *m_attribute; }
    Iterator& operator++() {
      m_attribute = m_attribute->Next();
      return *this;
    }
    bool operator!=(const Iterator& other) const { return m_attribute != other.m_attribute; }

   private:
    const TiXmlAttribute* m_attribute;
  };

  explicit Attributes(const TiXmlElement& element) : m_first(element.FirstAttribute()) {}
  Iterator begin() const { return Iterator(m_first); }
  static Iterator end() { return Iterator(nullptr); }

 private:
  const TiXmlAttribute* m_first;
};

}  // namespace Corvane

#endif
