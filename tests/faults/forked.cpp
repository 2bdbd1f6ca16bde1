// A host that forks behind its calls: with rules loaded, in the middle of a sale. Both processes go on with the sale and
// work tills, by turns and at once; each gives what it gives alone. Neither its child's end nor its own takes anything
// from the other.
//
//   forked
//
// Runs in a copy of the sample store.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "tests/faults/Child.h"
#include "tests/faults/Shop.h"
#include "tests/faults/Trial.h"

namespace {

int Report(const char* who, const char* wrong) {
  if (wrong == nullptr) return 0;
  std::fprintf(stderr, "forked: %s: %s (%s)\n", who, wrong, faults::LastMessage());
  return 1;
}

/// The rest of the till that was begun before the fork, and tills of its own.
int GoOn(const char* who, std::size_t place, int tills) {
  const char* wrong = faults::FinishTill(place);
  if (wrong == nullptr && faults::Results() != faults::LearntResults()) wrong = "the sale goes on otherwise";
  for (int till = 0; till < tills && wrong == nullptr; ++till) wrong = faults::JudgeTill();
  return Report(who, wrong);
}

enum class Ends { AtOnce, WithExitHandlers };

/// A child that works while this process does.
int ForkAt(std::size_t place, Ends ends) {
  faults::BeginTill(place);
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    // And a child of the child, which never calls.
    const pid_t idle = fork();
    if (idle == 0) std::exit(0);
    int status = 0;
    waitpid(idle, &status, 0);
    const int code = status != 0 ? 1 : GoOn("the child", place, 3);
    if (ends == Ends::AtOnce) _exit(code);
    std::exit(code);
  }
  int code = GoOn("the parent", place, 3);
  int status = 1;
  waitpid(child, &status, 0);
  // Behind the child's end.
  code += Report("the parent, alone again", faults::JudgeTill());
  return code + (status == 0 ? 0 : 1);
}

}  // namespace

int main() {
  if (!faults::ReadShop() || faults::LearnTillAhead() != nullptr) return 2;
  int tried = 0;
  int failures = 0;
  for (std::size_t place = 0; place < faults::StepCount(); ++place) {
    for (const Ends ends : {Ends::AtOnce, Ends::WithExitHandlers}) {
      ++tried;
      const faults::Ending end = faults::InChild([&] { return ForkAt(place, ends); });
      if (end.Code == 0) continue;
      ++failures;
      std::fprintf(stderr, "forked: before %s: %s\n", faults::StepAt(place).Name, end.Text().c_str());
    }
  }
  std::printf("forked: %d tried, %d failures\n", tried, failures);
  return failures == 0 ? 0 : 1;
}
