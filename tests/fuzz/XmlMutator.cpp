// Changes XML by values and elements, beside libFuzzer's changes by bytes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

// The names are libFuzzer's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr std::string_view kValues[] = {"",        "0",          "1",          "-1",         "2",
                                        "0.01",    "-0.01",      "0.005",      "1000000",    "99999999999999",
                                        "1e308",   "-1e308",     "1e-320",     "nan",        "inf",
                                        "0x1F",    "1,99",       "2147483648", "4294967297", "*",
                                        "IN",      "NOT",        "PLU",        "CAT",        "BRD",
                                        "SUM",     "NUM",        "PRC",        "RAT",        "DZ",
                                        "PT",      "DJ",         "DVCZK",      "NVCZK",      "CARD",
                                        "C5",      "01",         "100101",     "950101",     "300201",
                                        "600301",  "700101",     "800101",     "200201",     "HOUSE",
                                        "JUICE",   "YOGHURT",    "MZZP-01",    "MZHG-01",    "MZYQ-01",
                                        "PTXS-01", "2026-11-21", "2024-02-30", "24:00:00",   "&#65534;",
                                        "&quot;",  "&#0;",       "&#x4E2D;"};

/// A piece of a text.
struct Span {
  std::size_t Begin;
  std::size_t Size;
};

/// What stands between the double quotes of attributes.
std::vector<Span> ValuesIn(const std::string& text) {
  std::vector<Span> values;
  for (std::size_t begin = text.find("=\""); begin != std::string::npos; begin = text.find("=\"", begin)) {
    begin += 2;
    const std::size_t end = text.find('"', begin);
    if (end == std::string::npos) break;
    values.push_back({begin, end - begin});
    begin = end + 1;
  }
  return values;
}

/// Elements without content.
std::vector<Span> ElementsIn(const std::string& text) {
  std::vector<Span> elements;
  for (std::size_t end = text.find("/>"); end != std::string::npos; end = text.find("/>", end + 2)) {
    const std::size_t begin = text.rfind('<', end);
    if (begin != std::string::npos) elements.push_back({begin, end + 2 - begin});
  }
  return elements;
}

class Chance {
 public:
  explicit Chance(unsigned seed) : m_engine(seed) {}
  std::size_t Below(std::size_t count) { return m_engine() % count; }
  template <class List>
  const auto& Of(const List& list) {
    return list[Below(std::size(list))];
  }

 private:
  std::minstd_rand m_engine;
};

void ChangeValue(std::string& text, const std::vector<Span>& values, Chance& chance) {
  const Span place = chance.Of(values);
  std::string value = text.substr(place.Begin, place.Size);
  switch (chance.Below(3)) {
    case 0:
      value = chance.Of(kValues);
      break;
    case 1: {
      const Span other = chance.Of(values);
      value = text.substr(other.Begin, other.Size);
      break;
    }
    default: {
      constexpr std::size_t kRoom = 16;
      const std::size_t size = value.size();
      value.resize(size + kRoom);
      value.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(value.data()), size, value.size()));
    }
  }
  text.replace(place.Begin, place.Size, value);
}

void ChangeElements(std::string& text, const std::vector<Span>& elements, Chance& chance) {
  const Span from = chance.Of(elements);
  const Span to = chance.Of(elements);
  const std::string element = text.substr(from.Begin, from.Size);
  if (chance.Below(3) == 0) {
    text.erase(from.Begin, from.Size);
  } else {
    text.insert(to.Begin, element);
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
  Chance chance(seed);
  if (chance.Below(2) == 0) return LLVMFuzzerMutate(data, size, maxSize);
  std::string text(reinterpret_cast<const char*>(data), size);
  const std::vector<Span> values = ValuesIn(text);
  const std::vector<Span> elements = ElementsIn(text);
  if (!elements.empty() && chance.Below(4) == 0) {
    ChangeElements(text, elements, chance);
  } else if (!values.empty()) {
    ChangeValue(text, values, chance);
  } else {
    return LLVMFuzzerMutate(data, size, maxSize);
  }
  text.resize(std::min(text.size(), maxSize));
  std::memcpy(data, text.data(), text.size());
  return text.size();
}
// NOLINTEND(readability-identifier-naming)
