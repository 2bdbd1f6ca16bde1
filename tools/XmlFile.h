#ifndef TOOLS_XMLFILE_H
#define TOOLS_XMLFILE_H

#include <tinyxml.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Corvane::Tool {

/// @return the file's bytes. @throws ToolError naming the file and the reason when it can't be read.
std::string ReadFile(const std::filesystem::path& path);

/// @return what is left to read on standard input. @throws ToolError when that fails.
std::string ReadInput();

/// Writes the file, with the directories above it. @throws ToolError when that fails.
void WriteFile(const std::filesystem::path& path, const std::string& text);

/// Parses `text` into `document`. @throws ToolError with `name`, line and reason when it is not well-formed.
void ParseXml(const std::string& text, const std::string& name, TiXmlDocument& document);

/// Parses what can be parsed of `text` into `document`; for a text that the engine has read the same way.
void ParseAsFarAsItGoes(const std::string& text, TiXmlDocument& document);

/// @return the attribute's text, or the empty text.
std::string Text(const TiXmlElement& element, const char* attribute);

/// @return the attribute's number; 0 for none or for a text that is no number.
double Number(const TiXmlElement& element, const char* attribute);

/// @return the child elements of `parent`; none for null.
std::vector<const TiXmlElement*> Children(const TiXmlElement* parent);

}  // namespace Corvane::Tool

#endif
