#ifndef QNCORVANE_TESTS_MUTATION_MUTATION_H
#define QNCORVANE_TESTS_MUTATION_MUTATION_H

// Stands in front of every source file of a build that holds mutants, see README.md.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <iterator>
#include <utility>

namespace Mutation {

/// Which mutant lives in this process, and where to tell which ones were reached.
struct State {
  int Chosen = 0;
  unsigned char* Reached = nullptr;
  long Size = 0;
};

/// `MUTANT` is the number of the mutant that lives, from 1 on; `MUTANT_REACHED` a file with a byte for each mutant. The
/// file is shared memory, so that it also tells of processes that were forked or killed.
inline State Load() {
  State state;
  const char* const chosen = std::getenv("MUTANT");
  if (chosen != nullptr) state.Chosen = std::atoi(chosen);
  const char* const path = std::getenv("MUTANT_REACHED");
  if (path == nullptr) return state;
  const int file = open(path, O_RDWR | O_CLOEXEC);
  if (file < 0) return state;
  struct stat found {};
  if (fstat(file, &found) == 0) {
    void* const bytes =
        mmap(nullptr, static_cast<std::size_t>(found.st_size), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (bytes != MAP_FAILED) {
      state.Reached = static_cast<unsigned char*>(bytes);
      state.Size = found.st_size;
    }
  }
  close(file);
  return state;
}

inline bool LivesAtRunTime(int number) {
  static const State state = Load();
  if (state.Reached != nullptr && number < state.Size) state.Reached[number] = 1;
  return number == state.Chosen;
}

/// Whether this mutant lives. What the compiler works out is never mutated.
constexpr bool Lives(int number) { return !__builtin_is_constant_evaluated() && LivesAtRunTime(number); }

/// A list walked from either end.
template <class List>
class EitherWay {
 public:
  EitherWay(List&& list, bool back) : m_list(std::forward<List>(list)), m_back(back) {}

  template <class Iterator>
  class Walk {
   public:
    Walk(Iterator at, bool back) : m_at(at), m_back(back) {}
    decltype(auto) operator*() const { return *(m_back ? std::prev(m_at) : m_at); }
    Walk& operator++() {
      m_back ? --m_at : ++m_at;
      return *this;
    }
    bool operator!=(const Walk& other) const { return m_at != other.m_at; }

   private:
    Iterator m_at;
    bool m_back;
  };

  auto begin() { return Walk<decltype(First())>(m_back ? Last() : First(), m_back); }
  auto end() { return Walk<decltype(First())>(m_back ? First() : Last(), m_back); }

 private:
  auto First() {
    using std::begin;
    return begin(m_list);
  }
  auto Last() {
    using std::end;
    return end(m_list);
  }

  List m_list;
  bool m_back;
};

/// The list of a loop; the mutant walks it the other way.
template <class List>
EitherWay<List> Walked(int number, List&& list) {
  return EitherWay<List>(std::forward<List>(list), Lives(number));
}

}  // namespace Mutation

#endif
