#include "engine/RuleCalls.h"

#include <QString>
#include <array>
#include <utility>
#include <variant>

#include "db/Connection.h"
#include "engine/HostBuffer.h"
#include "engine/ProState.h"
#include "engine/Promotion.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "log/StatusText.h"
#include "promo/RuleTable.h"

namespace Corvane {

namespace {

/// Room for any status text, for the calls that have no text output.
using PrivateBuffer = std::array<char, 112>;

/// Needs no memory of its own: it may be lack of memory that refuses the rule.
std::int32_t RefuseRule(Text xml, char* msg) noexcept {
  const Text failure = StatusText(Status::InitializeFailed);
  CopyTexts(msg, {failure, OrEmpty(xml)});
  Log(failure, OrEmpty(xml));
  return -1;
}

}  // namespace

std::int32_t BeginInitPro() {
  PrivateBuffer msg{};
  if (ProState::Instance().Check(msg.data()) != 1) return -1;
  if (ProState::Instance().Set(StateWord::kInit, msg.data()) != 0) return -1;
  // A failed connection leaves the state at "Init": the host has to end the load before it may begin another.
  QnPosDBPro& database = Promotion::Instance().Database();
  const DatabaseCall call(database.Shared());
  QString error;
  const bool open = database.EnsureOpen(error);
  Log(open ? LogText::kDatabaseConnected : LogText::kDatabaseNotConnected);
  return open ? 0 : -1;
}

std::int32_t InitPromotion(Text type, Text xml, char* msg) {
  try {
    // No test of the state: the state protects calculations from loads only as far as the host keeps to the order.
    Promotion& promotion = Promotion::Instance();
    RulePtr rule = MakeRule(RuleKinds(), type, promotion.Database());
    if (rule == nullptr) return RefuseRule(xml, msg);
    std::visit([&](auto& own) { own.InitRule(xml); }, *rule);
    promotion.LoadRule(std::move(rule));
    CopyText(msg, StatusText(Status::Success));
    return 0;
  } catch (...) {
    return RefuseRule(xml, msg);
  }
}

std::int32_t FinishInitPro() {
  PrivateBuffer msg{};
  ProState::Instance().Set(StateWord::kFree, msg.data());
  return 0;
}

std::int32_t ClearPromotion(char* msg, Text billNo) {
  ProState& state = ProState::Instance();
  if (state.Check(msg) != 1) return -1;
  if (state.Set(StateWord::kClear, msg) != 0) return -1;
  try {
    Promotion::Instance().RemoveRules(billNo);
  } catch (...) {
    // The state stays at "Clear", so that nothing calculates on half a registry.
    CopyText(msg, StatusText(Status::ClearFailed));
    Log(StatusText(Status::ClearFailed));
    return -1;
  }
  if (state.Set(StateWord::kFree, msg) != 0) return -1;
  CopyText(msg, StatusText(Status::Success));
  return 0;
}

}  // namespace Corvane
