#ifndef QNCORVANE_TESTS_FUZZ_BYTES_H
#define QNCORVANE_TESTS_FUZZ_BYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace Corvane::Fuzz {

/// An input that a target takes apart from its front. Behind its end everything is 0 or empty.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}

  bool AtEnd() const { return m_rest.empty(); }

  std::uint8_t Byte() {
    if (AtEnd()) return 0;
    const auto byte = static_cast<std::uint8_t>(m_rest.front());
    m_rest.remove_prefix(1);
    return byte;
  }

  /// A number from 0 up to and without `count`.
  std::size_t Below(std::size_t count) { return Byte() % count; }

  /// The bytes of a number as they are.
  template <class Value>
  Value Raw() {
    Value value{};
    const std::size_t size = m_rest.size() < sizeof value ? m_rest.size() : sizeof value;
    std::memcpy(&value, m_rest.data(), size);
    m_rest.remove_prefix(size);
    return value;
  }

  /// A text up to the next zero byte or the end. It may hold any other byte.
  std::string Text() {
    std::string text(m_rest.substr(0, m_rest.find('\0')));
    m_rest.remove_prefix(text.size() < m_rest.size() ? text.size() + 1 : text.size());
    return text;
  }

  /// All that is left.
  std::string Rest() {
    std::string rest(m_rest);
    m_rest = {};
    return rest;
  }

 private:
  std::string_view m_rest;
};

}  // namespace Corvane::Fuzz

#endif
