#include "bench/Calls.h"

#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

namespace Bench {

namespace {

std::string Take(std::istream& file, std::size_t length) {
  std::string text(length, '\0');
  file.read(text.data(), static_cast<std::streamsize>(length));
  return text;
}

Call ReadCall(std::istream& file, const std::string& head) {
  std::istringstream fields(head);
  Call call;
  fields >> call.Name;
  for (std::size_t length = 0; fields >> length;) call.Texts.push_back(Take(file, length));
  if (file.get() != '\n') Fail("a call is cut off: " + head);
  return call;
}

}  // namespace

std::vector<Call> ReadCalls(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<Call> calls;
  for (std::string head; std::getline(file, head);) calls.push_back(ReadCall(file, head));
  return calls;
}

void Fail(const std::string& what) {
  std::cerr << "bench: " << what << '\n';
  std::exit(1);
}

}  // namespace Bench
