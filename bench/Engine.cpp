#include "bench/Engine.h"

#include <dlfcn.h>

#include <array>
#include <functional>
#include <string_view>

#include "bench/Recording.h"

namespace Bench {

namespace {

constexpr std::string_view kCalculation = "CalcPromotion";

// What a call answers. Only what is written of it takes memory.
std::array<char, std::size_t{32} << 20U> result;
std::array<char, std::size_t{1} << 20U> message;

void* Load(const std::string& library) {
  void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) Fail(dlerror());
  return handle;
}

template <class Function>
Function Find(void* library, const char* name) {
  void* const found = dlsym(library, name);
  if (found == nullptr) Fail(std::string("no call ") + name);
  return reinterpret_cast<Function>(found);
}

}  // namespace

Engine::Engine(const std::string& library) {
  void* const handle = Bench::Load(library);
  m_begin = Find<Plain>(handle, "BeginInitPro");
  m_finish = Find<Plain>(handle, "FinishInitPro");
  m_load = Find<Engine::Load>(handle, "InitPromotion");
  m_clear = Find<Clear>(handle, "ClearPromotion");
  m_calculate = Find<Calculate>(handle, "CalcPromotion");
  m_forget = Find<OneText>(handle, "DeleteSaleSetByKey");
}

void Engine::Make(const Call& call) {
  if (const int code = Answer(call); code != 0) Fail(call.Name + " answers " + std::to_string(code));
}

void Engine::Make(const std::vector<Call>& calls) {
  for (const Call& call : calls) Make(call);
}

std::size_t Engine::DigestOf(const std::vector<Call>& calls) {
  std::size_t digest = 0;
  for (const Call& call : calls) {
    Make(call);
    if (call.Name == kCalculation) digest = digest * 31 + std::hash<std::string_view>()(result.data());
  }
  return digest;
}

int Engine::Answer(const Call& call) {
  const auto text = [&](std::size_t place) { return call.Texts.at(place).c_str(); };
  if (call.Name == "BeginInitPro") return m_begin();
  if (call.Name == "FinishInitPro") return m_finish();
  if (call.Name == "DeleteSaleSetByKey") return m_forget(text(0));
  if (call.Name == "ClearPromotion") return m_clear(message.data(), text(0));
  if (call.Name == "InitPromotion") {
    Record(Event::kXmlIn, call.Texts.at(1));
    return m_load(text(0), text(1), message.data());
  }
  if (call.Name != kCalculation) Fail("unknown call " + call.Name);
  Record(Event::kXmlIn, call.Texts.at(2));
  const int code = m_calculate(text(0), text(1), text(2), result.data(), message.data());
  Record(Event::kXmlOut, result.data());
  return code;
}

}  // namespace Bench
