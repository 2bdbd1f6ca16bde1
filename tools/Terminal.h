#ifndef TOOLS_TERMINAL_H
#define TOOLS_TERMINAL_H

#include <cstddef>
#include <cstdio>
#include <string>

namespace Corvane::Tool {

/// Colours on a terminal, unless NO_COLOR is set or the terminal is a dumb one; elsewhere texts stay as they are.
class Paint {
 public:
  explicit Paint(std::FILE* stream);

  [[nodiscard]] std::string Bold(const std::string& text) const;
  [[nodiscard]] std::string Green(const std::string& text) const;
  [[nodiscard]] std::string Red(const std::string& text) const;
  [[nodiscard]] std::string Yellow(const std::string& text) const;

 private:
  [[nodiscard]] std::string Coloured(const char* code, const std::string& text) const;

  bool m_isOn;
};

/// How much of a work is done, in the last line of the terminal at stderr; nothing elsewhere.
class Progress {
 public:
  explicit Progress(std::size_t whole);

  /// Takes the bar away.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows the bar with `done` parts of the whole, and what is worked on.
  void Show(std::size_t done, const std::string& text);

  /// Takes the bar away, so that a line can be printed in its place.
  void Hide();

 private:
  std::size_t m_whole;
  bool m_isOn;
  bool m_isShown = false;
};

}  // namespace Corvane::Tool

#endif
