#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Receipt.h"
#include "SaleView.h"
#include "Store.h"
#include "Till.h"
#include "ToolError.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

/// A step with the text that goes to the engine; the paths are read before the current directory changes.
struct LoadedStep {
  Step step;
  std::string saleXml;
};

std::vector<LoadedStep> LoadSteps(const std::vector<Step>& steps) {
  std::vector<LoadedStep> loaded;
  loaded.reserve(steps.size());
  for (const Step& step : steps) {
    loaded.push_back({step, step.saleFile.empty() ? std::string() : ReadFile(step.saleFile)});
  }
  return loaded;
}

/// A gift choice that asks for too much is an answer: the cashier corrects it, and the till goes on.
bool IsRefusedGiftChoice(const LoadedStep& loaded, const Answer& answer) {
  return loaded.step.mode == "Gift" && answer.code < -1;
}

void RequireSuccess(const LoadedStep& loaded, const Answer& answer) {
  if (answer.code == 0) return;
  throw ToolError("step " + loaded.step.mode + ": " + answer.message + " (" + std::to_string(answer.code) + ")");
}

void TakeSent(const LoadedStep& loaded, SaleView& sale) {
  if (loaded.step.saleFile.empty()) return;
  TiXmlDocument document;
  ParseXml(loaded.saleXml, loaded.step.saleFile.string(), document);
  sale.TakeSent(*document.RootElement());
}

void TakeResult(const std::string& mode, const std::string& xml, SaleView& sale) {
  TiXmlDocument document;
  ParseXml(xml, "result of step " + mode, document);
  sale.TakeResult(*document.RootElement(), mode != "Single");
}

/// Runs the steps, and prints nothing: the sale XML goes to the engine unread, so that a text that is not well-formed
/// can be tried too.
std::string CalculateRaw(Till& till, const std::vector<LoadedStep>& steps) {
  Answer answer;
  for (const LoadedStep& loaded : steps) {
    const bool bringsNothing = loaded.step.saleFile.empty();
    answer = till.Calculate(loaded.step.mode, bringsNothing ? "<Sale/>" : loaded.saleXml);
    if (!IsRefusedGiftChoice(loaded, answer)) RequireSuccess(loaded, answer);
  }
  RequireSuccess(steps.back(), answer);
  return answer.xml;
}

/// Runs one step and takes what it brings into `sale`.
Answer CalculateStep(Till& till, const LoadedStep& loaded, SaleView& sale) {
  TakeSent(loaded, sale);
  const bool bringsNothing = loaded.step.saleFile.empty();
  Answer answer = till.Calculate(loaded.step.mode, bringsNothing ? sale.HeaderXml() : loaded.saleXml);
  if (IsRefusedGiftChoice(loaded, answer)) return answer;
  RequireSuccess(loaded, answer);
  TakeResult(loaded.step.mode, answer.xml, sale);
  return answer;
}

std::string CalculateAndPrint(Till& till, const Store& store, const std::vector<LoadedStep>& steps) {
  SaleView before;
  for (const LoadedStep& loaded : steps) TakeSent(loaded, before);
  Receipt(std::cout, store, before).PrintBefore();

  SaleView sale;
  const Receipt receipt(std::cout, store, sale);
  const bool showSteps = steps.size() > 1;
  if (showSteps) receipt.PrintStepsHeading();
  Answer answer;
  std::size_t number = 0;
  for (const LoadedStep& loaded : steps) {
    answer = CalculateStep(till, loaded, sale);
    const std::string sent = loaded.step.saleFile.empty() ? "nothing new" : loaded.step.saleFile.filename().string();
    if (showSteps) receipt.PrintStep(++number, loaded.step.mode, sent, answer.code == 0 ? "" : answer.message);
  }
  RequireSuccess(steps.back(), answer);
  receipt.PrintAfter();
  return answer.xml;
}

void Calculate(const CommandLine& line) {
  const std::vector<LoadedStep> steps = LoadSteps(line.steps);
  const Store store(line.store);
  // The engine reads config.ini and writes its log in the current directory.
  std::filesystem::current_path(store.Folder());
  Till till(store, line.key);
  const std::string result = line.rawResult ? CalculateRaw(till, steps) : CalculateAndPrint(till, store, steps);
  if (!line.resultFile.empty()) WriteFile(line.resultFile, result);
  if (line.rawResult) {
    std::cout << result;
    return;
  }
  std::cout << "\nResult XML: " << line.resultFile.lexically_normal().string()
            << "\nLog:        " << store.LogFile().lexically_normal().string() << "\n";
}

int Run(const std::vector<std::string>& arguments) {
  const CommandLine line = ParseCommandLine(arguments);
  if (line.help) {
    std::cout << HelpText();
    return 0;
  }
  Calculate(line);
  std::cout.flush();
  if (!std::cout) throw ToolError("the output can't be written");
  return 0;
}

}  // namespace
}  // namespace Corvane::Tool

int main(int argc, char** argv) {
  try {
    return Corvane::Tool::Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const Corvane::Tool::ToolError& error) {
    std::fprintf(stderr, "qncorvane: %s\n", error.what());
    return error.ExitCode();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qncorvane: %s\n", error.what());
    return Corvane::Tool::ToolError::kFailed;
  }
}
