#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "TextTable.h"

namespace Corvane::Tool {
namespace {

constexpr std::size_t kBarWidth = 24;

/// A terminal that understands more than lines.
bool IsTerminal(std::FILE* stream) {
  if (isatty(fileno(stream)) == 0) return false;
  const char* const kind = std::getenv("TERM");
  return kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
}

bool WantsColour() {
  const char* const word = std::getenv("NO_COLOR");
  return word == nullptr || *word == '\0';
}

std::size_t Columns(std::FILE* stream) {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  if (ioctl(fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
  return size.ws_col;
}

}  // namespace

Paint::Paint(std::FILE* stream) : m_isOn(IsTerminal(stream) && WantsColour()) {}

std::string Paint::Coloured(const char* code, const std::string& text) const {
  if (!m_isOn || text.empty()) return text;
  return std::string("\033[") + code + "m" + text + "\033[0m";
}

std::string Paint::Bold(const std::string& text) const { return Coloured("1", text); }
std::string Paint::Green(const std::string& text) const { return Coloured("32", text); }
std::string Paint::Red(const std::string& text) const { return Coloured("31", text); }
std::string Paint::Yellow(const std::string& text) const { return Coloured("33", text); }

Progress::Progress(std::size_t whole) : m_whole(std::max<std::size_t>(whole, 1)), m_isOn(IsTerminal(stderr)) {}

Progress::~Progress() { Hide(); }

void Progress::Show(std::size_t done, const std::string& text) {
  if (!m_isOn) return;
  const std::size_t filled = std::min(kBarWidth, kBarWidth * done / m_whole);
  const std::string bar = "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] " +
                          std::to_string(done) + "/" + std::to_string(m_whole) + " ";
  // A line that fills the terminal would wrap and could not be taken away.
  const std::size_t most = Columns(stderr) - 1;
  const std::size_t room = most > bar.size() ? most - bar.size() : 0;
  std::fprintf(stderr, "\r\033[K%s", (bar.substr(0, most) + AtLeft(text, room)).c_str());
  std::fflush(stderr);
  m_isShown = true;
}

void Progress::Hide() {
  if (!m_isShown) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  m_isShown = false;
}

}  // namespace Corvane::Tool
