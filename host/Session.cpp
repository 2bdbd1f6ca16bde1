#include "host/Session.h"

#include <pthread.h>
#include <unistd.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QThread>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <utility>

#include "db/ProcessEnd.h"
#include "db/Settings.h"
#include "engine/Promotion.h"
#include "engine/RuleCalls.h"
#include "host/Failure.h"
#include "host/StoreCheck.h"
#include "host/Worker.h"
#include "host/XmlCheck.h"
#include "log/LogCall.h"
#include "log/LogFolder.h"
#include "sale/ProSale.h"

namespace Corvane::Host {

namespace {

/// An open engine. What hosts hold of it is a number that never comes again: no call follows it as a pointer.
struct Opened {
  std::uintptr_t Number;
  pid_t Process;
  std::string Folder;
  Worker Thread;
};

// Nothing below is ever destroyed; calls may come at the process's very end.

std::mutex g_opening;  ///< held while an engine is opened or closed
std::mutex g_slot;     ///< for what follows it
std::shared_ptr<Opened>* g_opened = nullptr;
std::uintptr_t g_lastNumber = 0;

std::shared_ptr<Opened>& Slot() {
  if (g_opened == nullptr) g_opened = new std::shared_ptr<Opened>;
  return *g_opened;
}

qnc_engine* HandleOf(std::uintptr_t number) {
  return reinterpret_cast<qnc_engine*>(number);  // NOLINT(performance-no-int-to-ptr): never followed
}

/// A process is forked between two calls, so that it finds the engine in one piece.
void PrepareForForks() {
  static const int prepared = pthread_atfork(
      [] {
        g_opening.lock();
        g_slot.lock();
        WorkersHeld::Hold();
      },
      [] {
        WorkersHeld::Release();
        g_slot.unlock();
        g_opening.unlock();
      },
      [] {
        WorkersHeld::Release();
        g_slot.unlock();
        g_opening.unlock();
      });
  if (prepared != 0) throw std::bad_alloc();
}

/// @return the engine of this handle; null when there is none.
std::shared_ptr<Opened> Find(const qnc_engine* engine) {
  if (ProcessEnd::HasCome()) return nullptr;
  const std::lock_guard<std::mutex> lock(g_slot);
  const std::shared_ptr<Opened>& opened = Slot();
  const bool isMeant = opened != nullptr && HandleOf(opened->Number) == engine;
  return isMeant && opened->Process == getpid() ? opened : nullptr;
}

Outcome Failed(qnc_code code, std::string text) { return {code, std::move(text), {}}; }

Outcome NoEngine() {
  return Failed(QNC_CLOSED, ProcessEnd::HasCome() ? "the process ends, and the engine is closed"
                                                  : "there is no such engine in this process; open one by qnc_open");
}

/// Does a task; nothing comes out of it but its outcome.
void Carry(const Task& task, Outcome& outcome) noexcept {
  const LogCall logged;
  try {
    task(outcome);
  } catch (Failure& failure) {
    outcome.Code = failure.Code;
    outcome.Error = std::move(failure.Text);
  } catch (const std::bad_alloc&) {
    outcome.Code = QNC_NO_MEMORY;
  } catch (...) {
    outcome.Code = QNC_REFUSED;
  }
}

Outcome DoOn(Worker& worker, unsigned limit_ms, const Task& task) {
  const auto outcome = std::make_shared<Outcome>();
  const Worker::Ended ended =
      worker.Do([outcome, task] { Carry(task, *outcome); }, std::chrono::milliseconds(limit_ms));
  const std::string limit = "after " + std::to_string(limit_ms) + " ms ";
  switch (ended) {
    case Worker::Ended::kDone:
      return std::move(*outcome);
    case Worker::Ended::kNotBegun:
      return Failed(QNC_TIMED_OUT,
                    limit + "the call had not begun, for others were at work; nothing was done, try again");
    case Worker::Ended::kRunning:
      return Failed(
          QNC_TIMED_OUT,
          limit + "the call was at work; it is carried through and its result is dropped, so send the sale again");
    case Worker::Ended::kStopped:
      break;
  }
  return NoEngine();
}

/// Has Qt make what it keeps for the whole process. The process may end while the engine's thread is at work: that end is
/// held then until the work is done, but only what was made before can be held.
void WarmUp() {
  static_cast<void>(ReadSettings(QStringLiteral("/dev/null")));
  {
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("QnCorvaneHost"));
    database.setDatabaseName(QStringLiteral(":memory:"));
    if (database.open()) QSqlQuery(QStringLiteral("select 1"), database).next();
  }
  QSqlDatabase::removeDatabase(QStringLiteral("QnCorvaneHost"));
  CheckSale(
      "<Sale><Plu><Row SerialNo='1' PluCode='1' PluCount='1' Total='1' SaleDate='2024-06-15' "
      "SaleTime='10:30:00'/></Plu></Sale>",
      "sale");
  ProcessEnd::HoldFirst([] { WorkersHeld::Hold(); });
}

std::atomic<bool> g_isPrepared{false};

/// To be called before a thread of the engine's touches anything, with g_opening held.
void Prepare() {
  if (g_isPrepared || ProcessEnd::HasCome()) return;
  PrepareForForks();
  // Qt takes the first thread that it hears of for the main one.
  static_cast<void>(QThread::currentThread());
  const Outcome outcome = [] {
    Worker worker;
    return DoOn(worker, 0, [](Outcome&) { WarmUp(); });
  }();
  if (outcome.Code != QNC_OK) throw Failure{outcome.Code, outcome.Error};
  g_isPrepared = true;
}

std::string AbsoluteFolder(const std::string& folder) {
  if (folder.empty()) Fail(QNC_BAD_ARGUMENT, "no folder is named; name the folder of a store");
  char* const path = realpath(folder.c_str(), nullptr);
  if (path == nullptr) {
    Fail(QNC_BAD_STORE, folder + ": there is no such folder: " + std::generic_category().message(errno) +
                            "; name the folder of a store");
  }
  std::string absolute = path;
  std::free(path);
  return absolute;
}

// Both on the engine's thread.

void LeaveStore() {
  ProSale::DestroyAll();
  Promotion::Instance().Leave();
}

void EnterStore(const std::string& folder) {
  const Findings findings = CheckDatabase(folder);
  if (const Finding* const error = FirstError(findings)) Fail(error->Code, error->Text());
  SetLogFolder(folder);
  ProSale::DestroyAll();
  Promotion::Enter(QString::fromStdString(folder));
  FinishInitPro();
  const bool isOpen = BeginInitPro() == 0;
  FinishInitPro();
  if (isOpen) return;
  LeaveStore();
  Fail(QNC_BAD_STORE, "config.ini: the database can't be opened; the log may say more");
}

void PutIntoSlot(std::shared_ptr<Opened> opened) {
  const std::lock_guard<std::mutex> lock(g_slot);
  Slot() = std::move(opened);
}

}  // namespace

Outcome Session::Open(const std::string& folder, qnc_engine*& engine) {
  const std::lock_guard<std::mutex> opening(g_opening);
  if (ProcessEnd::HasCome()) return NoEngine();
  Prepare();
  if (const std::shared_ptr<Opened> held = Slot()) {
    if (held->Process == getpid()) {
      return Failed(QNC_ALREADY_OPEN, "this process has an engine open, on " + held->Folder + "; close that one first");
    }
    // The other process's thread is not here: nothing of it may be waited for.
    static_cast<void>(new std::shared_ptr<Opened>(held));
  }
  const std::string absolute = AbsoluteFolder(folder);
  auto opened = std::make_shared<Opened>();
  opened->Number = g_lastNumber + 1;
  opened->Process = getpid();
  opened->Folder = absolute;
  Outcome outcome = DoOn(opened->Thread, 0, [absolute](Outcome&) { EnterStore(absolute); });
  if (outcome.Code != QNC_OK) {
    opened->Thread.StopBehind(nullptr);
    return outcome;
  }
  g_lastNumber = opened->Number;
  engine = HandleOf(opened->Number);
  PutIntoSlot(std::move(opened));
  return outcome;
}

Outcome Session::Close(const qnc_engine* engine) {
  const std::lock_guard<std::mutex> opening(g_opening);
  const std::shared_ptr<Opened> opened = Find(engine);
  if (opened == nullptr) return NoEngine();
  PutIntoSlot(nullptr);
  try {
    // Whoever found the engine before and asks for something later is refused by its thread.
    const auto outcome = std::make_shared<Outcome>();
    opened->Thread.StopBehind([outcome] { Carry([](Outcome&) { LeaveStore(); }, *outcome); });
    return *outcome;
  } catch (...) {
    PutIntoSlot(opened);  // short of memory, the engine stays open
    throw;
  }
}

Outcome Session::Do(const qnc_engine* engine, unsigned limit_ms, const Task& task) {
  const std::shared_ptr<Opened> opened = Find(engine);
  return opened == nullptr ? NoEngine() : DoOn(opened->Thread, limit_ms, task);
}

Outcome Session::DoAnyway(unsigned limit_ms, const Task& task) {
  // Not while another thread waits for a server, unless it is the first.
  if (!g_isPrepared) {
    const std::lock_guard<std::mutex> opening(g_opening);
    Prepare();
  }
  if (ProcessEnd::HasCome()) return NoEngine();
  // No two workers are at work at once, so that this one disturbs no engine.
  Worker worker;
  return DoOn(worker, limit_ms, task);
}

std::string Session::FolderOf(const qnc_engine* engine) {
  const std::shared_ptr<Opened> opened = Find(engine);
  if (opened == nullptr) throw Failure{QNC_CLOSED, NoEngine().Error};
  return opened->Folder;
}

}  // namespace Corvane::Host
