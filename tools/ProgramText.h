#ifndef TOOLS_PROGRAMTEXT_H
#define TOOLS_PROGRAMTEXT_H

#include <string>
#include <utility>
#include <vector>

namespace Corvane::Tool {

/// What completes an argument.
enum class ValueKind { none, text, words, file, folder };

/// An option, or an argument that stands by itself.
struct ArgumentText {
  /// With their dashes, the short one first; empty for an argument that stands by itself.
  std::vector<std::string> names;
  /// What the value is called, e.g. "DIR"; empty for an option without one.
  std::string value;
  std::string text;
  bool isRequired = false;
  ValueKind kind = ValueKind::none;
  /// The values that there are, for ValueKind::words.
  std::vector<std::string> words;

  [[nodiscard]] bool StandsAlone() const { return names.empty(); }
};

/// A command, or the program itself.
struct CommandText {
  std::string name;
  /// One sentence, for lists.
  std::string summary;
  /// Paragraphs; one that begins with two blanks is an example and stays as it is.
  std::vector<std::string> details;
  std::vector<ArgumentText> arguments;
};

/// Words with what they mean.
struct TermList {
  std::string title;
  std::vector<std::pair<std::string, std::string>> terms;
};

/// Everything that help, manual page and completions tell.
struct ProgramText {
  CommandText program;
  std::vector<CommandText> commands;
  /// Exit codes, environment, files.
  std::vector<TermList> lists;
  std::string version;
};

/// @return how a command is called, e.g. "qncorvane init [OPTIONS] DIR".
std::string Usage(const ProgramText& text, const CommandText& command);

/// @return an argument as it is typed, e.g. "-h, --help" or "--store DIR".
std::string Typed(const ArgumentText& argument);

/// @return the help of the whole program, for a terminal of 80 columns and more.
std::string ProgramHelp(const ProgramText& text);

/// @return the help of one command.
std::string CommandHelp(const ProgramText& text, const CommandText& command);

}  // namespace Corvane::Tool

#endif
