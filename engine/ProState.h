#ifndef QNCORVANE_ENGINE_PROSTATE_H
#define QNCORVANE_ENGINE_PROSTATE_H

#include <cstdint>

#include "base/NeverDestroyed.h"
#include "base/ProError.h"
#include "base/Text.h"
#include "log/StatusText.h"

namespace Corvane {

/// The state words, compared exactly.
namespace StateWord {
constexpr Text kInit = "Init";
constexpr Text kFree = "Free";
constexpr Text kUsing = "Using";  // a legal word that no call ever sets
constexpr Text kClear = "Clear";
}  // namespace StateWord

/// The engine's state, one per process and never destroyed. It decides which calls run; any state may follow any other.
class ProState : public ProError {
 public:
  static ProState& Instance();

  /// Takes the state `word`, whose text must be constant: the pointer is stored.
  /// @return 0 and "sucess" in `msg`, or -1 and "invalid value" when it is no state word; the state then stays.
  std::int32_t Set(Text word, char* msg);

  /// Copies the state word into `buffer`. Before anything was set the state is "Free". @return `buffer`.
  char* Get(char* buffer);

  /// Puts the state's status text into `msg`. @return 1 for "Free", 0 for every other state.
  std::int32_t Check(char* msg);

  /// The status that Check reports.
  Status CheckedStatus();

 private:
  friend class NeverDestroyed<ProState>;
  ProState() = default;
  Text Word();

  Text m_state = nullptr;
};

}  // namespace Corvane

#endif
