#ifndef QNCORVANE_BENCH_ENGINE_H
#define QNCORVANE_BENCH_ENGINE_H

#include <cstddef>
#include <string>
#include <vector>

#include "bench/Calls.h"

namespace Bench {

/// A library of the engine, of whatever revision, bound at run time as a till's host binds it.
class Engine {
 public:
  /// Loads the library; one that can't be loaded ends the program.
  explicit Engine(const std::string& library);

  /// Makes a call. A return code other than 0 ends the program: a call that fails measures nothing.
  void Make(const Call& call);

  /// Makes calls one after the other.
  void Make(const std::vector<Call>& calls);

  /// Makes calls one after the other. @return a number that stands for all results among their answers
  std::size_t DigestOf(const std::vector<Call>& calls);

 private:
  using Plain = int (*)();
  using OneText = int (*)(const char*);
  using Load = int (*)(const char*, const char*, char*);
  using Clear = int (*)(char*, const char*);
  using Calculate = int (*)(const char*, const char*, const char*, char*, char*);

  int Answer(const Call& call);

  Plain m_begin;
  Plain m_finish;
  Load m_load;
  Clear m_clear;
  Calculate m_calculate;
  OneText m_forget;
};

}  // namespace Bench

#endif
