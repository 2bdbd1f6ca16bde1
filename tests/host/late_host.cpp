// A host in C++ that is linked with the library and calls from the destructors of objects: a global one, made before
// main, and one of a function, made after the first calls.
//
//   late_host [tables]
#include <cstring>

#include "late_calls.h"
#include "qncorvane/qncorvane.h"

namespace {

constexpr Engine kEngine = {BeginInitPro,  InitPromotion,      FinishInitPro,      ClearPromotion,
                            CalcPromotion, DeleteSaleSetByKey, ClearSaleSetForNet, GetState};

struct CallsAtItsEnd {
  CallsAtItsEnd() = default;
  CallsAtItsEnd(const CallsAtItsEnd&) = delete;
  CallsAtItsEnd& operator=(const CallsAtItsEnd&) = delete;
  ~CallsAtItsEnd() { CallLate(&kEngine); }
};

const CallsAtItsEnd g_global;

}  // namespace

int main(int argc, char** argv) {
  with_tables = argc > 1 && std::strcmp(argv[1], "tables") == 0 ? 1 : 0;
  CallEarly(&kEngine);
  static const CallsAtItsEnd local;
  return 0;
}
