#ifndef QNCORVANE_TESTS_FACE_FACE_H
#define QNCORVANE_TESTS_FACE_FACE_H

#include <string>

#include "qncorvane/host.h"

namespace Corvane::Testing {

/// A folder with a copy of the sample store, removed at its end.
class StoreFolder {
 public:
  StoreFolder();
  StoreFolder(const StoreFolder&) = delete;
  StoreFolder& operator=(const StoreFolder&) = delete;
  ~StoreFolder();

  const std::string& Path() const { return m_path; }
  std::string operator/(const std::string& name) const { return m_path + "/" + name; }

  /// Writes a file, anew.
  void Write(const std::string& name, const std::string& text) const;
  void Remove(const std::string& name) const;
  std::string Read(const std::string& name) const;
  /// Runs SQL statements on the store's database.
  void Sql(const std::string& statements) const;
  /// Writes "config.ini" with these lines in the section [DataBase].
  void Settings(const std::string& lines) const;

 private:
  std::string m_path;
};

/// What a call answered; its texts are given back already.
struct Told {
  int Code = 0;
  std::string Text;
  std::string Error;
};

/// An engine that is open for as long as this object lives.
class OpenEngine {
 public:
  explicit OpenEngine(const std::string& folder);
  OpenEngine(const OpenEngine&) = delete;
  OpenEngine& operator=(const OpenEngine&) = delete;
  ~OpenEngine();

  qnc_engine* Get() const { return m_engine; }
  Told LoadRule(const std::string& xml, const char* name = nullptr, unsigned flags = 0) const;
  Told LoadRules(const char* folder = nullptr, unsigned flags = 0) const;
  Told ClearRules(const std::string& number) const;
  Told Calculate(const std::string& key, const std::string& mode, const std::string& xml, unsigned flags = 0,
                 unsigned limit = 0) const;
  Told Forget(const std::string& key) const;
  Told State() const;

 private:
  qnc_engine* m_engine = nullptr;
};

/// Opens and closes at once; the error is that of the opening.
Told TryOpening(const std::string& folder);
Told Check(const std::string& folder, unsigned limit = 0);
Told Lint(const std::string& folder, unsigned limit = 0);

/// A file of samples/.
std::string Sample(const std::string& name);

/// A rule of the simplest type.
std::string RuleXml(const std::string& number, const std::string& type = "PTXS");

/// A sale of one line.
std::string SaleXml(
    const std::string& attributes = R"(SerialNo="1" PluCode="100101" Price="2.50" PluCount="3" Total="7.50")");

}  // namespace Corvane::Testing

#endif
