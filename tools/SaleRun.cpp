#include "SaleRun.h"

#include "ToolError.h"
#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

LoadedStep LoadStep(const Step& step, bool isLenient) {
  LoadedStep loaded{step, {}};
  if (loaded.BringsNothing()) return loaded;
  loaded.saleXml = step.saleFile == "-" ? ReadInput() : ReadFile(step.saleFile);
  const bool isWhole = loaded.saleXml.find('\0') == std::string::npos;
  if (!isWhole && !isLenient) throw ToolError(loaded.SentName() + ": a zero byte in it, so it is no XML");
  return loaded;
}

bool IsRefusedGiftChoice(const Answer& answer) {
  return answer.code == QNC_TOTAL_OVERFLOW || answer.code == QNC_NUMBER_OVERFLOW;
}

}  // namespace

std::string LoadedStep::SentName() const {
  if (BringsNothing()) return "nothing new";
  return step.saleFile == "-" ? "standard input" : step.saleFile.string();
}

std::vector<LoadedStep> LoadSteps(const std::vector<Step>& steps, bool isLenient) {
  std::vector<LoadedStep> loaded;
  loaded.reserve(steps.size());
  for (const Step& step : steps) loaded.push_back(LoadStep(step, isLenient));
  return loaded;
}

void TakeSent(const LoadedStep& loaded, SaleView& view) {
  if (loaded.BringsNothing()) return;
  TiXmlDocument document;
  ParseAsFarAsItGoes(loaded.saleXml, document);
  if (document.RootElement() != nullptr) view.TakeSent(*document.RootElement());
}

void RequireSuccess(const LoadedStep& loaded, const Answer& answer) {
  if (answer.code == QNC_OK) return;
  // The library doesn't know what the text is called here.
  const std::string place = "sale:";
  if (answer.error.rfind(place, 0) == 0 && !loaded.BringsNothing()) {
    throw ToolError(loaded.SentName() + answer.error.substr(place.size() - 1));
  }
  throw ToolError("step " + loaded.step.mode + ": " + answer.error);
}

Answer SaleRun::Take(const LoadedStep& loaded, unsigned flags) {
  const std::string xml = loaded.BringsNothing() ? m_view.HeaderXml() : loaded.saleXml;
  Answer answer = m_till.Calculate(m_key, loaded.step.mode, xml, flags);
  if (!IsRefusedGiftChoice(answer)) RequireSuccess(loaded, answer);
  TakeSent(loaded, m_view);
  if (flags != 0 || answer.code != QNC_OK) return answer;
  TiXmlDocument document;
  ParseXml(answer.result, "result of step " + loaded.step.mode, document);
  m_view.TakeResult(*document.RootElement(), loaded.step.mode != "Single");
  return answer;
}

std::string SaleRun::TakeAll(const std::vector<LoadedStep>& steps, bool lastAsJson) {
  Answer answer;
  for (const LoadedStep& loaded : steps) {
    const bool asJson = lastAsJson && &loaded == &steps.back();
    answer = Take(loaded, asJson ? unsigned{QNC_JSON} : 0U);
  }
  RequireSuccess(steps.back(), answer);
  return answer.result;
}

}  // namespace Corvane::Tool
