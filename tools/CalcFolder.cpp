#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <system_error>

#include "Commands.h"
#include "Reports.h"
#include "SaleRun.h"
#include "Store.h"
#include "Terminal.h"
#include "TextTable.h"
#include "ToolError.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kNameWidth = 60;
constexpr std::size_t kMoneyWidth = 14;

std::vector<fs::path> SalesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".xml") files.push_back(entry.path());
  }
  if (files.empty()) throw ToolError(folder.string() + ": no *.xml in it");
  std::sort(files.begin(), files.end());
  return files;
}

/// The results bear the names of the sales: in the same folder they would take their place.
void RequireOtherFolder(const CalcCommand& command) {
  std::error_code unreadable;
  if (!fs::equivalent(command.resultPath, command.salesFolder, unreadable)) return;
  throw ToolError("--out is the folder of the sales; the results would replace them", ToolError::kUsage);
}

/// Whole cents; no more than the library counts.
double Cents(double money) {
  constexpr double kMost = 9223372036854775807.0;
  return std::clamp(std::round(money * 100), -kMost, kMost);
}

std::string WholeNumber(double number) {
  std::array<char, 400> text{};
  std::snprintf(text.data(), text.size(), "%.0f", number);
  return text.data();
}

std::string Row(const std::string& name, const std::string& sent, const std::string& toPay) {
  return AtLeft(name, kNameWidth) + AtRight(sent, kMoneyWidth) + AtRight(toPay, kMoneyWidth);
}

/// What names the file already stays as it is.
std::string WithName(const fs::path& file, const std::string& reason) {
  const std::string name = file.string() + ":";
  return reason.rfind(name, 0) == 0 ? reason : name + " " + reason;
}

/// The sales of a folder, one after the other.
class FolderRun {
 public:
  explicit FolderRun(const CalcCommand& command)
      : m_command(command),
        m_files(SalesIn(command.salesFolder)),
        m_till(command.store, command.isLenient),
        m_progress(m_files.size()),
        m_paint(stdout),
        m_errorPaint(stderr) {}

  int Run() {
    PrintBegin();
    for (const fs::path& file : m_files) {
      m_progress.Show(m_done, file.filename().string());
      RunFile(file);
      ++m_done;
    }
    m_progress.Hide();
    PrintEnd();
    return m_failed == 0 ? 0 : ToolError::kFailed;
  }

 private:
  [[nodiscard]] bool AsJson() const { return m_command.form == Form::json; }

  void PrintBegin() {
    if (AsJson()) {
      Print("{\"sales\": [");
      return;
    }
    Print(m_paint.Bold(Row("Sale", "Sent", "To pay")));
    Print(std::string(kNameWidth + 2 * kMoneyWidth, '-'));
  }

  void RunFile(const fs::path& file) {
    try {
      Calculate(file);
    } catch (const std::exception& error) {
      Fail(file, WithName(file, error.what()));
    }
  }

  void Calculate(const fs::path& file) {
    const std::string name = file.filename().string();
    std::vector<Step> steps = m_command.steps;
    steps.front().saleFile = file;
    SaleRun sale(m_till, name);
    const std::string result = sale.TakeAll(LoadSteps(steps, m_command.isLenient), AsJson());
    WriteResult(file, result);
    const SaleTotals totals =
        AsJson() ? ReadTotals(result) : SaleTotals{Cents(sale.View().AmountSent()), Cents(sale.View().ToPay())};
    m_totals.before += totals.before;
    m_totals.toPay += totals.toPay;
    if (AsJson()) {
      PrintElement("{\"file\": " + Quoted(name) + ", \"result\": " + result + "}");
    } else {
      Print(Row(name, Money(totals.before / 100), Money(totals.toPay / 100)));
    }
  }

  void WriteResult(const fs::path& file, const std::string& result) const {
    if (m_command.resultPath.empty()) return;
    fs::path name = file.filename();
    if (AsJson()) name.replace_extension(".json");
    WriteFile(m_command.resultPath / name, result);
  }

  void Fail(const fs::path& file, const std::string& reason) {
    ++m_failed;
    const std::string name = file.filename().string();
    if (AsJson()) {
      PrintElement("{\"file\": " + Quoted(name) + ", \"error\": " + Quoted(reason) + "}");
    } else {
      Print(m_paint.Red(Row(name, "", "failed")));
    }
    m_progress.Hide();
    // Behind the line to which it belongs, where both go to one place.
    std::cout.flush();
    std::fprintf(stderr, "%s %s\n", m_errorPaint.Red("qncorvane:").c_str(), reason.c_str());
  }

  void PrintElement(const std::string& element) { Print((m_done == 0 ? "" : ",") + element); }

  void Print(const std::string& line) {
    m_progress.Hide();
    std::cout << line << "\n";
  }

  void PrintEnd() {
    const std::string calculated = std::to_string(m_done - m_failed);
    const std::string failed = std::to_string(m_failed);
    if (AsJson()) {
      Print("], \"calculated\": " + calculated + ", \"failed\": " + failed + ", \"beforeCents\": " +
            WholeNumber(m_totals.before) + ", \"toPayCents\": " + WholeNumber(m_totals.toPay) + "}");
      return;
    }
    Print(std::string(kNameWidth + 2 * kMoneyWidth, '-'));
    Print(m_paint.Bold(Row(calculated + " calculated, " + failed + " failed", Money(m_totals.before / 100),
                           Money(m_totals.toPay / 100))));
    if (!m_command.resultPath.empty()) {
      Print("\nResults:    " + fs::absolute(m_command.resultPath).lexically_normal().string());
    }
    Print(std::string(m_command.resultPath.empty() ? "\n" : "") + "Log:        " + LogFile(m_command.store).string());
  }

  const CalcCommand& m_command;
  std::vector<fs::path> m_files;
  Till m_till;
  Progress m_progress;
  Paint m_paint;
  Paint m_errorPaint;
  std::size_t m_done = 0;
  std::size_t m_failed = 0;
  SaleTotals m_totals;
};

}  // namespace

int RunCalcFolder(const CalcCommand& command) {
  if (!command.resultPath.empty()) RequireOtherFolder(command);
  return FolderRun(command).Run();
}

}  // namespace Corvane::Tool
