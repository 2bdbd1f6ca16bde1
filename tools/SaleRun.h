#ifndef TOOLS_SALERUN_H
#define TOOLS_SALERUN_H

#include <string>
#include <vector>

#include "CommandLine.h"
#include "SaleView.h"
#include "Till.h"

namespace Corvane::Tool {

/// A step with the text that goes to the engine.
struct LoadedStep {
  Step step;
  std::string saleXml;

  [[nodiscard]] bool BringsNothing() const { return step.saleFile.empty(); }
  /// @return what a person calls the text.
  [[nodiscard]] std::string SentName() const;
};

/// Reads the texts of the steps.
///
/// @throws ToolError when a file can't be read, or, unless lenient, holds a zero byte, behind which nothing would be read.
std::vector<LoadedStep> LoadSteps(const std::vector<Step>& steps, bool isLenient);

/// One sale on its way through its steps.
class SaleRun {
 public:
  /// @param till must outlive the run.
  SaleRun(const Till& till, std::string key) : m_till(till), m_key(std::move(key)) {}

  /// Forgets the sale.
  ~SaleRun() { m_till.Forget(m_key); }
  SaleRun(const SaleRun&) = delete;
  SaleRun& operator=(const SaleRun&) = delete;

  /// Calculates one step. A choice of gifts that asks for too much is an answer: the cashier corrects it, and the till
  /// goes on.
  ///
  /// @param flags QNC_JSON, QNC_EXPLAIN: the result is JSON, and the view doesn't take it in.
  /// @throws ToolError with the library's text when the step is refused otherwise.
  Answer Take(const LoadedStep& loaded, unsigned flags = 0);

  /// Calculates all steps, and fails also when the last one is a refused choice of gifts.
  ///
  /// @param lastAsJson the last result as JSON.
  /// @return the last result.
  std::string TakeAll(const std::vector<LoadedStep>& steps, bool lastAsJson);

  [[nodiscard]] const SaleView& View() const { return m_view; }

 private:
  const Till& m_till;
  std::string m_key;
  SaleView m_view;
};

/// @throws ToolError naming the step when it was refused.
void RequireSuccess(const LoadedStep& loaded, const Answer& answer);

/// Takes what a step sends into a view.
void TakeSent(const LoadedStep& loaded, SaleView& view);

}  // namespace Corvane::Tool

#endif
