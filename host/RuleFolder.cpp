#include "host/RuleFolder.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

namespace Corvane::Host {

namespace {

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

[[noreturn]] void FailAtFolder(const std::string& shown, int error) {
  Fail(QNC_UNREADABLE,
       shown + ": the folder can't be read: " + std::generic_category().message(error) + "; put the rules there");
}

/// The system's own calls: the standard library's iterator ends the process when memory is short.
std::vector<std::string> NamesIn(const std::string& folder, const std::string& shown) {
  const std::unique_ptr<DIR, int (*)(DIR*)> opened(opendir(folder.c_str()), closedir);
  if (opened == nullptr) FailAtFolder(shown, errno);
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* const entry = readdir(opened.get())) {
    if (EndsWith(entry->d_name, ".xml")) names.emplace_back(entry->d_name);
    errno = 0;
  }
  if (errno != 0) FailAtFolder(shown, errno);
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadFile(const std::string& path, const std::string& shown) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) {
    Fail(QNC_UNREADABLE, shown + ": is no file; take it out of the folder");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) Fail(QNC_UNREADABLE, shown + ": can't be read: " + std::generic_category().message(errno));
  std::string text(static_cast<std::size_t>(std::filesystem::file_size(path, ignored)), '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (static_cast<std::size_t>(file.gcount()) != text.size()) {
    Fail(QNC_UNREADABLE, shown + ": can't be read whole; try again");
  }
  return text;
}

RuleFile ReadRule(const std::string& folder, const std::string& shown, const std::string& name, bool lenient) {
  RuleFile rule;
  rule.Name = name;
  const std::string shownName = shown + "/" + name;
  try {
    rule.Xml = ReadFile(folder + "/" + name, shownName);
    rule.Header = lenient ? HeaderOf(rule.Xml, shownName) : CheckRule(rule.Xml, shownName);
  } catch (const Failure& failure) {
    rule.Refusal = failure;
  }
  return rule;
}

}  // namespace

std::vector<RuleFile> ReadRuleFolder(const std::string& folder, const std::string& shown, bool lenient) {
  std::vector<RuleFile> rules;
  for (const std::string& name : NamesIn(folder, shown)) rules.push_back(ReadRule(folder, shown, name, lenient));
  return rules;
}

}  // namespace Corvane::Host
