#include "host/RuleFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace Corvane::Host {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> NamesIn(const std::string& folder, const std::string& shown) {
  std::vector<std::string> names;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    if (entry->path().extension() == ".xml") names.push_back(entry->path().filename().string());
  }
  if (error) Fail(QNC_UNREADABLE, shown + ": the folder can't be read: " + error.message() + "; put the rules there");
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadFile(const std::string& path, const std::string& shown) {
  std::error_code ignored;
  if (!fs::is_regular_file(path, ignored)) Fail(QNC_UNREADABLE, shown + ": is no file; take it out of the folder");
  const std::ifstream file(path, std::ios::binary);
  if (!file) Fail(QNC_UNREADABLE, shown + ": can't be read: " + std::strerror(errno));
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

RuleFile ReadRule(const std::string& folder, const std::string& shown, const std::string& name, bool lenient) {
  RuleFile rule;
  rule.Name = name;
  const std::string shownName = shown + "/" + name;
  try {
    rule.Xml = ReadFile(folder + "/" + name, shownName);
    rule.Header = lenient ? HeaderOf(rule.Xml) : CheckRule(rule.Xml, shownName);
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
