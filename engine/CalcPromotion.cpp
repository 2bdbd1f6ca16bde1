#include "engine/CalcPromotion.h"

#include "base/Numbers.h"
#include "db/Connection.h"
#include "engine/Driver.h"
#include "engine/HostBuffer.h"
#include "engine/ProState.h"
#include "engine/Promotion.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "log/StatusText.h"
#include "sale/ProSale.h"
#include "sale/SaleReader.h"

namespace Corvane {

namespace {

/// @return the text that refuses the call for an absent argument, or null. The key is asked for first.
Text MissingArgument(Text key, Text mode, Text xml) {
  if (IsEmpty(key)) return AnswerText::kNoKey;
  if (IsEmpty(mode)) return AnswerText::kNoMode;
  if (IsEmpty(xml)) return AnswerText::kNoSale;
  return nullptr;
}

std::int32_t RefuseMode(char* msg) {
  ProState::Instance().Set(StateWord::kFree, msg);
  Log(StatusText(Status::Success));
  return -1;
}

std::int32_t Calculate(Text key, Text mode, Text xml, ResultPlace out, char* msg, Explanation* explanation) {
  const DatabaseCall call(Promotion::Instance().Database().Shared());
  ProSale& sale = ProSale::Create(key);
  std::int32_t lineIndex = 0;
  if (!ReadSale(sale, xml, lineIndex)) CopyText(msg, StatusText(Status::UnknownError));
  Log(LogText::kSaleRead);
  if (Promotion::Instance().Rules().empty()) CopyText(msg, AnswerText::kNoRules);
  if (explanation != nullptr) explanation->Begin(sale);
  const Mode* const known = FindMode(mode);
  if (known == nullptr) return RefuseMode(msg);
  if (known->StartsAnew) {
    sale.Trail.Restart(known->Name);
  } else {
    sale.Trail.Add(known->Name);
  }
  return known->Run({sale, lineIndex, out, msg, explanation});
}

}  // namespace

std::int32_t CalcPromotion(Text key, Text mode, Text xml, ResultPlace out, char* msg, Explanation* explanation) {
  Log(OrEmpty(mode));
  ProState& state = ProState::Instance();
  if (state.Check(msg) != 1) {
    Log(StatusText(state.CheckedStatus()));
    return -1;
  }
  try {
    const auto rules = static_cast<std::int32_t>(Promotion::Instance().Rules().size());
    Log(OrEmpty(key), ":", FormatI(rules), "\n");
    if (const Text missing = MissingArgument(key, mode, xml)) {
      CopyText(msg, missing);
      return -1;
    }
    return Calculate(key, mode, xml, out, msg, explanation);
  } catch (...) {
    CopyText(msg, StatusText(Status::UnknownError));
    return -1;
  }
}

}  // namespace Corvane
