// Signals whose handler asks for no restart: one in each file call of the system, by turns; one in all of them; and a
// timer's, ten thousand a second. A call of the system that a signal may break off answers EINTR once. The till gives
// what it gives without signals, and the log has the same entries.
//
//   signals [--every N] [--seed S]
//
// Runs in a copy of the sample store.
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include "tests/faults/Child.h"
#include "tests/faults/Shop.h"
#include "tests/faults/Trial.h"
#include "tests/faults/interposer.h"

namespace {

using faults::Tally;

volatile std::sig_atomic_t g_signals = 0;

extern "C" void Count(int /*signal*/) { g_signals = g_signals + 1; }

void Handle(int signalNumber) {
  struct sigaction action {};
  action.sa_handler = Count;
  sigemptyset(&action.sa_mask);
  action.sa_flags = 0;  // no SA_RESTART
  sigaction(signalNumber, &action, nullptr);
}

constexpr const char* kLog = "QnCorvane.txt";

/// The log without the times of its entries, which stand in front of each.
std::string EntriesOfLog() {
  constexpr std::size_t kStampLength = sizeof "yyyy-MM-dd hh:mm:ss" - 1;
  std::ifstream file(kLog, std::ios::binary);
  std::string rest{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  std::string entries;
  std::size_t begin = 0;
  for (std::size_t end = rest.find("\n\r"); end != std::string::npos; end = rest.find("\n\r", begin)) {
    if (begin + kStampLength < end) entries += rest.substr(begin + kStampLength, end - begin - kStampLength) + "\n";
    begin = end + 2;
  }
  return entries;
}

/// A till, from the engine's state now. @return null, or what was other than without signals.
const char* TillWithSignals(const std::string& entries) {
  unlink(kLog);
  const char* const failed = faults::WholeTill();
  EndFailures();
  if (failed != nullptr) return failed;
  if (faults::Results() != faults::LearntResults()) return "the till gives other results";
  return EntriesOfLog() == entries ? nullptr : "the log has other entries";
}

int Report(const char* when, const char* wrong) {
  if (wrong == nullptr) return 0;
  std::fprintf(stderr, "signals: %s, in %s: %s\n", when, LastFailed(), wrong);
  return 1;
}

/// One signal, in each call in turn.
void SweepCalls(const faults::Sweep& sweep, const std::string& entries, Tally& tally) {
  tally.Points = faults::LearnNumber([] {
    const long before = SystemCalls();
    unlink(kLog);
    faults::WholeTill();
    return SystemCalls() - before;
  });
  for (long call = 0; call < tally.Points; ++call) {
    if (!sweep.Chooses(call)) continue;
    const faults::Ending end = faults::InChild([&] {
      unlink(kLog);
      SignalAfter(call, SIGUSR1, 0);
      return Report("one signal", TillWithSignals(entries));
    });
    ++tally.Tried;
    if (end.Code == 0) continue;
    ++tally.Failures;
    std::fprintf(stderr, "signals: in call %ld: %s\n", call, end.Text().c_str());
  }
}

int SignalInAll(const std::string& entries) {
  g_signals = 0;
  SignalAfter(0, SIGUSR1, 1);
  const int code = Report("a signal in each call", TillWithSignals(entries));
  std::printf("a signal in each call: %ld\n", static_cast<long>(g_signals));
  std::fflush(stdout);
  return code != 0 || g_signals == 0 ? 1 : 0;
}

int Storm(const std::string& entries) {
  constexpr int kTills = 20;
  const itimerval often = {{0, 100}, {0, 100}};
  const itimerval never = {{0, 0}, {0, 0}};
  g_signals = 0;
  const char* wrong = nullptr;
  for (int till = 0; till < kTills && wrong == nullptr; ++till) {
    setitimer(ITIMER_REAL, &often, nullptr);
    wrong = TillWithSignals(entries);
    setitimer(ITIMER_REAL, &never, nullptr);
  }
  std::printf("a timer's signals in %d tills: %ld\n", kTills, static_cast<long>(g_signals));
  std::fflush(stdout);
  return Report("a timer", wrong) != 0 || g_signals == 0 ? 1 : 0;
}

int SignalsOnWorkingEngine(const faults::Sweep& sweep) {
  if (faults::LearnTill() != nullptr) return 2;
  unlink(kLog);
  faults::WholeTill();
  const std::string entries = EntriesOfLog();
  if (entries.find("All") == std::string::npos) return 2;
  Tally tally;
  SweepCalls(sweep, entries, tally);
  const faults::Ending all = faults::InChild([&] { return SignalInAll(entries); });
  const faults::Ending storm = faults::InChild([&] {
    Handle(SIGALRM);
    return Storm(entries);
  });
  std::printf("signals: %ld calls, every %ld. with seed %ld, %ld tried, %ld not survived; all: %s, timer: %s\n",
              tally.Points, sweep.Every, sweep.Seed, tally.Tried, tally.Failures, all.Text().c_str(),
              storm.Text().c_str());
  return tally.Failures == 0 && tally.Tried > 0 && all.Code == 0 && storm.Code == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  WatchCurrentDirectory();
  Handle(SIGUSR1);
  if (!faults::ReadShop()) return 2;
  return SignalsOnWorkingEngine(faults::ReadSweep(count, arguments));
}
