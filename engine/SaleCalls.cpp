#include "engine/SaleCalls.h"

#include "engine/HostBuffer.h"
#include "engine/ProState.h"
#include "log/Log.h"
#include "log/StatusText.h"
#include "sale/ProSale.h"

namespace Corvane {

std::int32_t DeleteSaleSetByKey(Text key) {
  try {
    ProSale::Destroy(OrEmpty(key));
    return 0;
  } catch (...) {
    return -1;
  }
}

std::int32_t ClearSaleSetForNet(char* msg) {
  ProState& state = ProState::Instance();
  try {
    if (state.Check(msg) != 1) {
      Log(StatusText(state.CheckedStatus()));
      return -1;
    }
    ProSale::DestroyAll();
    if (state.Set(StateWord::kFree, msg) != 0) {
      Log(StatusText(Status::InvalidValue));
      return -1;
    }
    CopyText(msg, StatusText(Status::Success));
    return 0;
  } catch (...) {
    CopyText(msg, StatusText(Status::ClearSaleFailed));
    Log(StatusText(Status::ClearSaleFailed));
    return -1;
  }
}

}  // namespace Corvane
