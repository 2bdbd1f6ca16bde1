#include "engine/CalcPromotion.h"
#include "engine/ProState.h"
#include "engine/RuleCalls.h"
#include "engine/SaleCalls.h"
#include "qncorvane/qncorvane.h"

// The boundary: plain C names in front of the engine's own.

extern "C" {

int BeginInitPro(void) { return Corvane::BeginInitPro(); }

int InitPromotion(const char* type, const char* xml, char* msg) { return Corvane::InitPromotion(type, xml, msg); }

int FinishInitPro(void) { return Corvane::FinishInitPro(); }

int ClearPromotion(char* msg, const char* billNo) { return Corvane::ClearPromotion(msg, billNo); }

int CalcPromotion(const char* key, const char* mode, const char* xml, char* out, char* msg) {
  return Corvane::CalcPromotion(key, mode, xml, out, msg);
}

int DeleteSaleSetByKey(const char* key) { return Corvane::DeleteSaleSetByKey(key); }

int ClearSaleSetForNet(char* msg) { return Corvane::ClearSaleSetForNet(msg); }

char* GetState(char* buffer) { return Corvane::ProState::Instance().Get(buffer); }

}  // extern "C"
