#include <iostream>

#include "Commands.h"
#include "Receipt.h"
#include "SaleRun.h"
#include "Store.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

/// What the receipt says of a choice that was refused.
std::string Refusal(const Answer& answer) {
  if (answer.code == QNC_OK) return {};
  return answer.code == QNC_TOTAL_OVERFLOW ? "total overflow" : "number overflow";
}

std::string NameOnReceipt(const LoadedStep& loaded) {
  const bool isFile = !loaded.BringsNothing() && loaded.step.saleFile != "-";
  return isFile ? loaded.step.saleFile.filename().string() : loaded.SentName();
}

/// Prints as far as the steps come: nothing where the first one is refused.
std::string CalculateAndPrint(const Till& till, const CalcCommand& command, const std::vector<LoadedStep>& steps) {
  const Store store(command.store);
  const Paint paint(stdout);
  SaleView before;
  for (const LoadedStep& loaded : steps) TakeSent(loaded, before);

  SaleRun sale(till, command.key);
  const Receipt receipt(std::cout, paint, store, sale.View());
  const bool showSteps = steps.size() > 1;
  Answer answer;
  std::size_t number = 0;
  for (const LoadedStep& loaded : steps) {
    answer = sale.Take(loaded);
    if (number == 0) Receipt(std::cout, paint, store, before).PrintBefore();
    if (number == 0 && showSteps) receipt.PrintStepsHeading();
    ++number;
    if (showSteps) receipt.PrintStep(number, loaded.step.mode, NameOnReceipt(loaded), Refusal(answer));
  }
  RequireSuccess(steps.back(), answer);
  receipt.PrintAfter();
  return answer.result;
}

std::string CalculateAlone(const Till& till, const CalcCommand& command, const std::vector<LoadedStep>& steps) {
  return SaleRun(till, command.key).TakeAll(steps, command.form == Form::json);
}

void PrintPlaces(const CalcCommand& command) {
  std::cout << "\nResult XML: " << std::filesystem::absolute(command.resultPath).lexically_normal().string()
            << "\nLog:        " << LogFile(command.store).string() << "\n";
}

}  // namespace

int RunCalc(const CalcCommand& command) {
  if (!command.salesFolder.empty()) return RunCalcFolder(command);
  const std::vector<LoadedStep> steps = LoadSteps(command.steps, command.isLenient);
  const Till till(command.store, command.isLenient);
  const bool isReceipt = command.form == Form::receipt;
  const std::string result = isReceipt ? CalculateAndPrint(till, command, steps) : CalculateAlone(till, command, steps);
  if (!command.resultPath.empty()) WriteFile(command.resultPath, result);
  if (isReceipt) {
    PrintPlaces(command);
    return 0;
  }
  std::cout << result;
  if (command.form == Form::json) std::cout << "\n";
  return 0;
}

}  // namespace Corvane::Tool
