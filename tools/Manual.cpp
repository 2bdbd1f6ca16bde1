#include "Manual.h"

#include <algorithm>
#include <cctype>

namespace Corvane::Tool {
namespace {

/// The day on which the page last changed.
constexpr const char* kDate = "2026-11-22";

/// A text as it stands: backslashes, dashes, and what would be a command at the beginning of a line.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char letter : text) {
    if (letter == '\\') {
      escaped += "\\e";
    } else if (letter == '-') {
      escaped += "\\-";
    } else {
      escaped += letter;
    }
  }
  const bool isCommand = !text.empty() && (text.front() == '.' || text.front() == '\'');
  return isCommand ? "\\&" + escaped : escaped;
}

std::string InCapitals(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
  return text;
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fR"; }

std::string Term(const std::string& term, const std::string& meaning) {
  return ".TP\n" + term + "\n" + Escaped(meaning) + "\n";
}

std::string ArgumentTerm(const ArgumentText& argument) {
  std::string term;
  for (const std::string& name : argument.names) term += (term.empty() ? "" : ", ") + Bold(name);
  if (!argument.value.empty()) term += (term.empty() ? "" : " ") + Italic(argument.value);
  return Term(term, argument.text + (argument.isRequired ? " (required)" : ""));
}

std::string Paragraphs(const std::vector<std::string>& paragraphs, bool examples) {
  std::string page;
  for (const std::string& paragraph : paragraphs) {
    const bool isExample = paragraph.rfind("  ", 0) == 0;
    if (isExample != examples) continue;
    page += isExample ? Escaped(paragraph.substr(2)) + "\n" : ".PP\n" + Escaped(paragraph) + "\n";
  }
  return page;
}

std::string CommandSection(const ProgramText& text, const CommandText& command) {
  std::string page = ".SS " + text.program.name + " " + command.name + "\n" + Escaped(command.summary) + "\n";
  for (const ArgumentText& argument : command.arguments) page += ArgumentTerm(argument);
  return page + Paragraphs(command.details, false);
}

std::string Examples(const ProgramText& text) {
  std::string page = ".SH EXAMPLES\n.nf\n" + Paragraphs(text.program.details, true);
  for (const CommandText& command : text.commands) page += Paragraphs(command.details, true);
  return page + ".fi\n";
}

}  // namespace

std::string ManualPage(const ProgramText& text) {
  const CommandText& program = text.program;
  std::string page = ".TH " + InCapitals(program.name) + " 1 " + kDate + " \"" + program.name + " " + text.version +
                     "\" \"User Commands\"\n";
  page += ".SH NAME\n" + program.name + " \\- " + Escaped(program.summary) + "\n.SH SYNOPSIS\n.nf\n";
  for (const CommandText& command : text.commands) page += Escaped(Usage(text, command)) + "\n";
  page += ".fi\n.SH DESCRIPTION\n" + Bold(program.name) + " " + Escaped(program.summary) + ".\n";
  page += Paragraphs(program.details, false) + ".SH OPTIONS\n";
  for (const ArgumentText& argument : program.arguments) page += ArgumentTerm(argument);
  page += ".SH COMMANDS\n";
  for (const CommandText& command : text.commands) page += CommandSection(text, command);
  for (const TermList& list : text.lists) {
    page += ".SH " + InCapitals(list.title) + "\n";
    for (const auto& [term, meaning] : list.terms) page += Term(Bold(term), meaning);
  }
  return page + Examples(text);
}

}  // namespace Corvane::Tool
