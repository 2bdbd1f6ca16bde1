#include "Completions.h"

#include <algorithm>

namespace Corvane::Tool {
namespace {

std::string Spaced(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
  return line;
}

std::vector<std::string> CommandNames(const ProgramText& text) {
  std::vector<std::string> names;
  for (const CommandText& command : text.commands) names.push_back(command.name);
  return names;
}

/// All names of all options.
std::vector<std::string> OptionNames(const CommandText& command) {
  std::vector<std::string> names;
  for (const ArgumentText& argument : command.arguments) {
    names.insert(names.end(), argument.names.begin(), argument.names.end());
  }
  return names;
}

/// The beginning of a text, for a line in a menu.
std::string Short(const std::string& text) {
  std::size_t end = text.size();
  for (const char* const mark : {": ", "; ", ". ", " (", ", one of"}) end = std::min(end, text.find(mark));
  return text.substr(0, end);
}

/// Whether the value is a list with commas.
bool IsList(const ArgumentText& argument) { return argument.value.find(',') != std::string::npos; }

/// Text between single quotes of a shell that has no escape within them.
std::string InQuotes(const std::string& text) {
  std::string quoted = "'";
  for (const char letter : text) quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
  return quoted + "'";
}

// Bash

std::string BashValue(const ArgumentText& argument) {
  switch (argument.kind) {
    case ValueKind::words:
      return "_qncorvane_words " + InQuotes(Spaced(argument.words));
    case ValueKind::file:
      return "_qncorvane_files -f";
    case ValueKind::folder:
      return "_qncorvane_files -d";
    case ValueKind::text:
    case ValueKind::none:
      break;
  }
  return ":";
}

std::string BashOptionValues(const CommandText& command) {
  std::string cases;
  for (const ArgumentText& argument : command.arguments) {
    if (argument.StandsAlone() || argument.value.empty()) continue;
    std::string names;
    for (const std::string& name : argument.names) {
      names.append(names.empty() ? "" : " | ").append(command.name).append(":").append(name);
    }
    cases += "    " + names + ") " + BashValue(argument) + "; return ;;\n";
  }
  return cases;
}

std::string BashArguments(const CommandText& command) {
  for (const ArgumentText& argument : command.arguments) {
    if (argument.StandsAlone()) return "    " + command.name + ") " + BashValue(argument) + " ;;\n";
  }
  return {};
}

constexpr const char* kBashBegin = R"(# Completions of qncorvane for bash.

_qncorvane_words() {
  # The words may stand in a list with commas.
  local list=
  [[ $cur == *,* ]] && list=${cur%,*},
  mapfile -t COMPREPLY < <(compgen -P "$list" -W "$1" -- "${cur##*,}")
}

_qncorvane_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$1" -- "$cur")
}

_qncorvane() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} command='' word
  COMPREPLY=()
  # The shell takes "--store=DIR" for three words.
  if [[ $cur == = ]]; then
    cur=
  elif [[ $prev == = ]]; then
    prev=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
)";

// Zsh

/// A text within the brackets of an option of _arguments.
std::string ZshText(const std::string& text) {
  std::string escaped;
  for (const char letter : text) {
    if (letter == '[' || letter == ']' || letter == ':' || letter == '\\') escaped += '\\';
    escaped += letter;
  }
  return escaped;
}

std::string ZshWords(const ArgumentText& argument) {
  if (IsList(argument)) return "_values -s , word " + Spaced(argument.words);
  return "(" + Spaced(argument.words) + ")";
}

std::string ZshValue(const ArgumentText& argument) {
  std::string begin = ":" + ZshText(argument.value) + ":";
  switch (argument.kind) {
    case ValueKind::words:
      return begin + ZshWords(argument);
    case ValueKind::file:
      return begin + "_files";
    case ValueKind::folder:
      return begin + "_files -/";
    case ValueKind::text:
      return begin;
    case ValueKind::none:
      break;
  }
  return {};
}

std::string ZshOption(const std::string& name, const ArgumentText& argument) {
  // Its value may follow behind "=", too.
  const char* const equals = argument.value.empty() ? "" : "=";
  return InQuotes(name + equals + "[" + ZshText(Short(argument.text)) + "]" + ZshValue(argument));
}

std::string ZshArguments(const CommandText& command) {
  constexpr const char* kNextLine = " \\\n        ";
  std::string lines;
  for (const ArgumentText& argument : command.arguments) {
    if (argument.StandsAlone()) lines += kNextLine + InQuotes("1" + ZshValue(argument));
    for (const std::string& name : argument.names) lines += kNextLine + ZshOption(name, argument);
  }
  return lines;
}

// Fish

std::string FishValue(const ArgumentText& argument) {
  switch (argument.kind) {
    case ValueKind::words:
      return " -x -a " + InQuotes(Spaced(argument.words));
    case ValueKind::file:
      return " -r -F";
    case ValueKind::folder:
      return " -x -a '(__fish_complete_directories)'";
    case ValueKind::text:
      return " -x";
    case ValueKind::none:
      break;
  }
  return {};
}

/// Its single quotes know escapes.
std::string FishText(const std::string& text) {
  std::string escaped = "'";
  for (const char letter : text) {
    if (letter == '\'' || letter == '\\') escaped += '\\';
    escaped += letter;
  }
  return escaped + "'";
}

std::string FishArguments(const std::string& condition, const CommandText& command) {
  std::string lines;
  for (const ArgumentText& argument : command.arguments) {
    std::string line = "complete -c qncorvane -n " + condition;
    for (const std::string& name : argument.names) {
      line += name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    lines +=
        line + FishValue(argument) + (argument.StandsAlone() ? "" : " -d " + FishText(Short(argument.text))) + "\n";
  }
  return lines;
}

}  // namespace

std::string BashCompletion(const ProgramText& text) {
  std::string names;
  for (const std::string& name : CommandNames(text)) names += (names.empty() ? "" : " | ") + name;
  std::string script =
      kBashBegin + ("      " + names) + ")\n        command=$word\n        break\n        ;;\n    esac\n  done\n";
  script += "  case $command:$prev in\n";
  for (const CommandText& command : text.commands) script += BashOptionValues(command);
  script += "  esac\n  if [[ $cur == -* ]]; then\n    case $command in\n";
  for (const CommandText& command : text.commands) {
    script += "      " + command.name + ") _qncorvane_words " + InQuotes(Spaced(OptionNames(command))) + " ;;\n";
  }
  script +=
      "      *) _qncorvane_words " + InQuotes(Spaced(OptionNames(text.program))) + " ;;\n    esac\n    return\n  fi\n";
  script += "  case $command in\n";
  for (const CommandText& command : text.commands) script += BashArguments(command);
  script += "    '') _qncorvane_words " + InQuotes(Spaced(CommandNames(text))) + " ;;\n  esac\n}\n\n";
  return script + "complete -F _qncorvane qncorvane\n";
}

std::string ZshCompletion(const ProgramText& text) {
  std::string script = "#compdef qncorvane\n# Completions of qncorvane for zsh.\n\n_qncorvane() {\n";
  script += "  local context state state_descr line\n  typeset -A opt_args\n  local -a commands=(\n";
  for (const CommandText& command : text.commands) {
    script += "    " + InQuotes(command.name + ":" + ZshText(command.summary)) + "\n";
  }
  script += "  )\n  _arguments -C" + ZshArguments(text.program) +
            " \\\n        '1:command:->command' \\\n        '*::argument:->argument'\n";
  script += "  case $state in\n  command) _describe command commands ;;\n  argument)\n    case $words[1] in\n";
  for (const CommandText& command : text.commands) {
    script += "    " + command.name + ")\n      _arguments" + ZshArguments(command) + "\n      ;;\n";
  }
  return script + "    esac\n    ;;\n  esac\n}\n\n_qncorvane \"$@\"\n";
}

std::string FishCompletion(const ProgramText& text) {
  std::string script = "# Completions of qncorvane for fish.\n\ncomplete -c qncorvane -f\n";
  script += FishArguments("__fish_use_subcommand", text.program);
  for (const CommandText& command : text.commands) {
    script +=
        "complete -c qncorvane -n __fish_use_subcommand -a " + command.name + " -d " + FishText(command.summary) + "\n";
  }
  for (const CommandText& command : text.commands) {
    script += FishArguments("'__fish_seen_subcommand_from " + command.name + "'", command);
  }
  return script;
}

}  // namespace Corvane::Tool
