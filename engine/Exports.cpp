#include "engine/CalcPromotion.h"
#include "engine/HostBuffer.h"
#include "engine/ProState.h"
#include "engine/RuleCalls.h"
#include "engine/SaleCalls.h"
#include "log/LogCall.h"
#include "qncorvane/qncorvane.h"

// The boundary: plain C names in front of the engine's own.

namespace {

/// The last barrier: a host may be written in any language, and no exception passes to it. A call that has a text for
/// its failure catches its exceptions itself; what arrives here has none. The log's entries are in the file and the
/// file is closed when the call returns.
template <class Call>
int Guarded(Call call) noexcept {
  const Corvane::LogCall logged;
  try {
    return call();
  } catch (...) {
    return -1;
  }
}

}  // namespace

extern "C" {

int BeginInitPro(void) {
  return Guarded([] { return Corvane::BeginInitPro(); });
}

int InitPromotion(const char* type, const char* xml, char* msg) {
  return Guarded([&] { return Corvane::InitPromotion(type, xml, msg); });
}

int FinishInitPro(void) {
  return Guarded([] { return Corvane::FinishInitPro(); });
}

int ClearPromotion(char* msg, const char* billNo) {
  return Guarded([&] { return Corvane::ClearPromotion(msg, billNo); });
}

int CalcPromotion(const char* key, const char* mode, const char* xml, char* out, char* msg) {
  return Guarded([&] { return Corvane::CalcPromotion(key, mode, xml, Corvane::ResultPlace(out), msg); });
}

int DeleteSaleSetByKey(const char* key) {
  return Guarded([&] { return Corvane::DeleteSaleSetByKey(key); });
}

int ClearSaleSetForNet(char* msg) {
  return Guarded([&] { return Corvane::ClearSaleSetForNet(msg); });
}

char* GetState(char* buffer) { return Corvane::ProState::Instance().Get(buffer); }

}  // extern "C"
