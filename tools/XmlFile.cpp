#include "XmlFile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <system_error>

#include "ToolError.h"

namespace Corvane::Tool {

std::string ReadFile(const std::filesystem::path& path) {
  std::error_code unreadable;
  if (std::filesystem::is_directory(path, unreadable)) throw ToolError(path.string() + ": is a directory");
  const std::ifstream file(path, std::ios::binary);
  if (!file) throw ToolError(path.string() + ": " + std::strerror(errno));
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string ReadInput() {
  std::ostringstream text;
  // An empty input sets the text's fail bit, and is no failure.
  text << std::cin.rdbuf();
  if (std::cin.bad()) throw ToolError("standard input can't be read");
  return text.str();
}

void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::error_code error;
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), error);
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file) throw ToolError(path.string() + ": can't be written");
}

void ParseXml(const std::string& text, const std::string& name, TiXmlDocument& document) {
  document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
  if (document.Error()) {
    // The parser knows no row when the text ends too early.
    const std::string row = document.ErrorRow() > 0 ? ":" + std::to_string(document.ErrorRow()) : "";
    throw ToolError(name + row + ": not well-formed XML: " + document.ErrorDesc());
  }
  if (document.RootElement() == nullptr) throw ToolError(name + ": no XML element in it");
}

void ParseAsFarAsItGoes(const std::string& text, TiXmlDocument& document) {
  document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
}

std::string Text(const TiXmlElement& element, const char* attribute) {
  const char* text = element.Attribute(attribute);
  return text == nullptr ? std::string() : std::string(text);
}

double Number(const TiXmlElement& element, const char* attribute) {
  return std::strtod(Text(element, attribute).c_str(), nullptr);
}

std::vector<const TiXmlElement*> Children(const TiXmlElement* parent) {
  std::vector<const TiXmlElement*> children;
  if (parent == nullptr) return children;
  for (const TiXmlElement* child = parent->FirstChildElement(); child != nullptr; child = child->NextSiblingElement()) {
    children.push_back(child);
  }
  return children;
}

}  // namespace Corvane::Tool
