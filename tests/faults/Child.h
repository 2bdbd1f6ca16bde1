#ifndef QNCORVANE_TESTS_FAULTS_CHILD_H
#define QNCORVANE_TESTS_FAULTS_CHILD_H

#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace faults {

/// How a process of its own ended: its exit code, or the signal that ended it.
struct Ending {
  int Code = -1;
  int Signal = 0;

  std::string Text() const {
    return Signal != 0 ? "ended by signal " + std::to_string(Signal) : "exit code " + std::to_string(Code);
  }
};

/// Runs `test` in a process of its own, forked from this one, so that no fault meets what an earlier one left. What
/// hangs is ended.
///
/// @param test gives the exit code.
template <class Test>
Ending InChild(Test test, unsigned secondsAtMost = 60) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(secondsAtMost);
    _exit(test());
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return {};
  return WIFEXITED(status) ? Ending{WEXITSTATUS(status), 0} : Ending{-1, WTERMSIG(status)};
}

}  // namespace faults

#endif
