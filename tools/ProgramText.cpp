#include "ProgramText.h"

#include <algorithm>
#include <sstream>

namespace Corvane::Tool {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kTermWidth = 28;

/// Breaks `text` between words, so that a line with `indent` blanks before it has at most kWidth columns; the first line
/// begins in column `used`.
std::string Wrapped(const std::string& text, std::size_t indent, std::size_t used) {
  std::string lines;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const bool isFirst = lines.empty();
    if (!isFirst && used + 1 + word.size() > kWidth) {
      lines += "\n" + std::string(indent, ' ');
      used = indent;
    } else if (!isFirst) {
      lines += ' ';
      ++used;
    }
    lines += word;
    used += word.size();
  }
  return lines + "\n";
}

/// A term with its meaning beside it, or below it where the term is long.
std::string TermLine(const std::string& term, const std::string& meaning) {
  const std::string begin = "  " + term;
  if (begin.size() + 2 > kTermWidth) {
    return begin + "\n" + std::string(kTermWidth, ' ') + Wrapped(meaning, kTermWidth, kTermWidth);
  }
  return begin + std::string(kTermWidth - begin.size(), ' ') + Wrapped(meaning, kTermWidth, kTermWidth);
}

std::string ArgumentLines(const std::string& title, const CommandText& command, bool standsAlone) {
  std::string lines;
  for (const ArgumentText& argument : command.arguments) {
    if (argument.StandsAlone() != standsAlone) continue;
    lines += TermLine(Typed(argument), argument.text + (argument.isRequired ? " (required)" : ""));
  }
  return lines.empty() ? lines : "\n" + title + ":\n" + lines;
}

std::string Paragraphs(const std::vector<std::string>& paragraphs) {
  std::string lines;
  bool wasExample = false;
  for (const std::string& paragraph : paragraphs) {
    const bool isExample = paragraph.rfind("  ", 0) == 0;
    lines += isExample && wasExample ? "" : "\n";
    lines += isExample ? paragraph + "\n" : Wrapped(paragraph, 0, 0);
    wasExample = isExample;
  }
  return lines;
}

std::string ListLines(const TermList& list) {
  std::string lines = "\n" + list.title + ":\n";
  for (const auto& [term, meaning] : list.terms) lines += TermLine(term, meaning);
  return lines;
}

}  // namespace

std::string Typed(const ArgumentText& argument) {
  std::string typed;
  for (const std::string& name : argument.names) typed += (typed.empty() ? "" : ", ") + name;
  if (!typed.empty() && !argument.value.empty()) typed += " ";
  return typed + argument.value;
}

std::string Usage(const ProgramText& text, const CommandText& command) {
  std::string usage = text.program.name + " " + command.name;
  std::string behind;
  for (const ArgumentText& argument : command.arguments) {
    if (argument.StandsAlone()) {
      behind += argument.isRequired ? " " + argument.value : " [" + argument.value + "]";
    } else if (argument.isRequired) {
      usage += " " + Typed(argument);
    }
  }
  const bool hasMore =
      std::any_of(command.arguments.begin(), command.arguments.end(),
                  [](const ArgumentText& argument) { return !argument.StandsAlone() && !argument.isRequired; });
  return usage + (hasMore ? " [OPTIONS]" : "") + behind;
}

std::string ProgramHelp(const ProgramText& text) {
  std::string help = text.program.name + ": " + text.program.summary + "\n\nUsage:\n";
  for (const CommandText& command : text.commands) help += "  " + Usage(text, command) + "\n";
  help += "\nCommands:\n";
  for (const CommandText& command : text.commands) help += TermLine(command.name, command.summary);
  help += ArgumentLines("Options", text.program, false);
  help += Paragraphs(text.program.details);
  for (const TermList& list : text.lists) help += ListLines(list);
  return help;
}

std::string CommandHelp(const ProgramText& text, const CommandText& command) {
  std::string help = "Usage: " + Usage(text, command) + "\n\n" + Wrapped(command.summary, 0, 0);
  help += ArgumentLines("Arguments", command, true);
  help += ArgumentLines("Options", command, false);
  return help + Paragraphs(command.details);
}

}  // namespace Corvane::Tool
