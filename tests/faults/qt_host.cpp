// Hosts with a QCoreApplication of their own, which is made before or after the first call of the engine, ends while the
// engine lives, is followed by another, or lives until the process ends; and hosts without one. In each of them a global
// object's destructor calls, too. Every till gives what it gives in a host without Qt.
//
//   qt_host
//
// Runs in a copy of the sample store.
#include <sys/mman.h>

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "tests/faults/Child.h"
#include "tests/faults/Shop.h"
#include "tests/faults/Trial.h"

namespace {

/// How many tills a host has worked, counted where the process that started it sees it.
int* g_tills = nullptr;
bool g_isHost = false;

void Demand(const char* when, const char* wrong) {
  if (wrong != nullptr) {
    std::fprintf(stderr, "qt_host: %s: %s (%s)\n", when, wrong, faults::LastMessage());
    _exit(1);
  }
  ++*g_tills;
}

void Work(const char* when) { Demand(when, faults::JudgeTill()); }

/// While the process ends there is no database any more: each call answers, and rules without tables give what they
/// give.
void WorkLate() {
  for (std::size_t step = 0; step < faults::StepCount(); ++step) {
    const int code = faults::StepAt(step).Run();
    if (code != 0 && code != -1) Demand("while the process ends", "an answer is none that the call has");
  }
  faults::WholeTill();
  const bool gives = faults::Results().find("ProBillNo=\"MZZQ-01\"") != std::string_view::npos;
  Demand("while the process ends", gives ? nullptr : "no coupon is given");
}

struct CallsAtItsEnd {
  CallsAtItsEnd() = default;
  CallsAtItsEnd(const CallsAtItsEnd&) = delete;
  CallsAtItsEnd& operator=(const CallsAtItsEnd&) = delete;
  ~CallsAtItsEnd() {
    if (g_isHost) WorkLate();
  }
};
const CallsAtItsEnd g_global;

using Application = std::unique_ptr<QCoreApplication>;

Application MakeApplication() {
  static int count = 1;
  static char name[] = "qt_host";
  static char* names[] = {name, nullptr};
  return std::make_unique<QCoreApplication>(count, names);
}

void WithoutOne() { Work("without an application"); }

void MadeBefore() {
  const Application application = MakeApplication();
  Work("with an application");
}

void MadeBeforeAndEnded() {
  MadeBefore();
  Work("behind an application");
}

void MadeAfter() {
  Work("before an application");
  const Application application = MakeApplication();
  Work("with an application");
}

void OneBehindTheOther() {
  for (int round = 0; round < 3; ++round) {
    MadeAfter();
    Work("between two applications");
  }
}

void LivesUntilTheEnd() {
  Work("before an application");
  static const Application application = MakeApplication();
  Work("with an application");
}

void IsNeverEnded() {
  static QCoreApplication* const application = MakeApplication().release();
  Work(application == QCoreApplication::instance() ? "with an application" : "without it");
}

/// Calls from the application's loop of events.
void FromTheLoop() {
  const Application application = MakeApplication();
  QTimer::singleShot(0, application.get(), [] {
    Work("from the loop of events");
    QCoreApplication::quit();
  });
  QCoreApplication::exec();
  Work("behind the loop of events");
}

struct Host {
  const char* Name;
  void (*Run)();
  int Tills;  ///< that it works, with the one of its global object
};

constexpr std::array<Host, 8> kHosts = {{{"without", WithoutOne, 2},
                                         {"made before", MadeBefore, 2},
                                         {"made before and ended", MadeBeforeAndEnded, 3},
                                         {"made after", MadeAfter, 3},
                                         {"one behind the other", OneBehindTheOther, 10},
                                         {"lives until the end", LivesUntilTheEnd, 3},
                                         {"is never ended", IsNeverEnded, 2},
                                         {"from the loop", FromTheLoop, 3}}};

bool Holds(const Host& host) {
  *g_tills = 0;
  const faults::Ending end = faults::InChild([&] {
    g_isHost = true;
    host.Run();
    std::exit(0);  // with all destructors, which InChild leaves out
    return 1;
  });
  if (end.Code == 0 && *g_tills == host.Tills) return true;
  std::fprintf(stderr, "qt_host: %s: %s, %d tills\n", host.Name, end.Text().c_str(), *g_tills);
  return false;
}

}  // namespace

int main() {
  void* const room = mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED || !faults::ReadShop() || faults::LearnTillAhead() != nullptr) return 2;
  g_tills = static_cast<int*>(room);
  int failures = 0;
  for (const Host& host : kHosts) failures += Holds(host) ? 0 : 1;
  std::printf("qt_host: %zu hosts, %d failures\n", kHosts.size(), failures);
  return failures == 0 ? 0 : 1;
}
