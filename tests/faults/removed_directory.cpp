// The current directory that is removed, with all that is in it: before the first call, and before each call of a till.
// A till that has its database goes on with it, and gives what it always gives, without a log; one that has none answers
// that there is none, and finds settings, database and a place for its log when the host goes to another directory.
//
//   removed_directory
//
// Runs in a copy of the sample store, which it copies itself.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "qncorvane/qncorvane.h"
#include "tests/faults/Child.h"
#include "tests/faults/Shop.h"
#include "tests/faults/Trial.h"

namespace {

namespace files = std::filesystem;

files::path g_store;  // the copy that stays
int g_failures = 0;
int g_tried = 0;

int Demand(bool holds, const char* when, const char* what) {
  if (holds) return 0;
  std::fprintf(stderr, "removed_directory: %s: does not hold: %s (%s)\n", when, what, faults::LastMessage());
  return 1;
}

/// A copy of the store as the current directory. @return where it lies.
files::path EnterCopy(const char* name) {
  const files::path copy = g_store / name;
  files::create_directory(copy);
  files::copy(g_store / "config.ini", copy / "config.ini");
  files::copy(g_store / "store.db", copy / "store.db");
  files::current_path(copy);
  return copy;
}

bool HasLog(const files::path& folder) { return files::exists(folder / "QnCorvane.txt"); }

int RemovedBeforeTheFirstCall() {
  const char* const when = "before the first call";
  files::remove_all(EnterCopy("first"));
  int wrong = Demand(BeginInitPro() == -1, when, "there is no database");
  wrong += Demand(FinishInitPro() == 0, when, "FinishInitPro");
  for (std::size_t step = 1; step < faults::StepCount(); ++step) {
    const int code = faults::StepAt(step).Run();
    wrong += Demand(code == 0 || code == -1, when, faults::StepAt(step).Name);
  }
  // Nothing is made where nothing may be.
  wrong += Demand(!files::exists(g_store / "first"), when, "the directory stays removed");
  const files::path other = EnterCopy("other");
  const char* const judged = faults::JudgeTill();
  wrong += Demand(judged == nullptr, "in another directory", judged == nullptr ? "" : judged);
  return wrong + Demand(HasLog(other), "in another directory", "there is a log");
}

/// The steps from `place` on run without a directory.
int RemovedBefore(std::size_t place) {
  const char* const when = faults::StepAt(place).Name;
  const files::path copy = EnterCopy("middle");
  int wrong = Demand(faults::JudgeTill() == nullptr, when, "the till in the copy");
  faults::BeginTill(place);
  files::remove_all(copy);
  for (std::size_t step = place; step < faults::StepCount(); ++step) {
    wrong += Demand(faults::StepAt(step).Run() == 0, when, faults::StepAt(step).Name);
  }
  const char* judged = faults::JudgeTill();
  wrong += Demand(judged == nullptr, "without a directory", judged == nullptr ? "" : judged);
  wrong += Demand(!files::exists(copy), when, "the directory stays removed");
  const files::path other = EnterCopy("other");
  judged = faults::JudgeTill();
  wrong += Demand(judged == nullptr, "in another directory", judged == nullptr ? "" : judged);
  return wrong + Demand(HasLog(other), "in another directory", "there is a log");
}

template <class Test>
void Try(Test test) {
  const faults::Ending end = faults::InChild(test);
  ++g_tried;
  files::remove_all(g_store / "other");
  files::remove_all(g_store / "middle");
  if (end.Code == 0) return;
  ++g_failures;
  std::fprintf(stderr, "removed_directory: %s\n", end.Text().c_str());
}

}  // namespace

int main() {
  g_store = files::current_path();
  if (!faults::ReadShop() || faults::LearnTillAhead() != nullptr) return 2;
  Try(RemovedBeforeTheFirstCall);
  for (std::size_t place = 0; place < faults::StepCount(); ++place) Try([&] { return RemovedBefore(place); });
  std::printf("removed_directory: %d tried, %d failures\n", g_tried, g_failures);
  return g_failures == 0 ? 0 : 1;
}
