#include "engine/ProState.h"

#include "engine/HostBuffer.h"

#include <algorithm>
#include <iterator>

namespace Corvane {

namespace {

struct StateStatus {
  Text Word;
  Status Report;
};
constexpr StateStatus kStates[] = {{StateWord::kInit, Status::Initializing},
                                   {StateWord::kUsing, Status::Using},
                                   {StateWord::kClear, Status::Cleaning},
                                   {StateWord::kFree, Status::Free}};

const StateStatus* FindState(Text word) {
  const auto* const found = std::find_if(std::begin(kStates), std::end(kStates),
                                         [&](const StateStatus& entry) { return Same(entry.Word, word); });
  return found == std::end(kStates) ? nullptr : found;
}

}  // namespace

ProState& ProState::Instance() {
  static NeverDestroyed<ProState> instance;
  return *instance;
}

Text ProState::Word() {
  if (m_state == nullptr) m_state = StateWord::kFree;
  return m_state;
}

std::int32_t ProState::Set(Text word, char* msg) {
  const bool known = FindState(word) != nullptr;
  if (known) m_state = word;
  CopyText(msg, StatusText(known ? Status::Success : Status::InvalidValue));
  return known ? 0 : -1;
}

char* ProState::Get(char* buffer) {
  CopyText(buffer, Word());
  return buffer;
}

std::int32_t ProState::Check(char* msg) {
  const Status status = CheckedStatus();
  CopyText(msg, StatusText(status));
  return status == Status::Free ? 1 : 0;
}

Status ProState::CheckedStatus() {
  const StateStatus* found = FindState(Word());
  return found != nullptr ? found->Report : Status::InvalidValue;
}

}  // namespace Corvane
