#include "db/ProcessEnd.h"

#include <unistd.h>

#include <QString>
#include <algorithm>
#include <atomic>
#include <vector>

namespace Corvane {
namespace {

/// Needs neither constructor nor destructor, so that it can be asked at any time.
std::atomic<bool> g_hasCome{false};
std::atomic<void (*)()> g_hold{nullptr};

/// A connection in Qt's list, and the process that made it.
struct Made {
  std::shared_ptr<QSqlDatabase> Db;
  pid_t Maker;
};

/// Never destroyed.
std::vector<Made>& Connections() {
  static auto& connections = *new std::vector<Made>;
  return connections;
}

/// Whoever still holds the connection holds none then.
void Close(QSqlDatabase& connection) {
  const QString name = connection.connectionName();
  connection.close();
  connection = QSqlDatabase();  // Qt complains of a connection that somebody holds when it is taken out
  QSqlDatabase::removeDatabase(name);
}

void Come() noexcept {
  if (g_hasCome.exchange(true)) return;
  if (void (*const hold)() = g_hold.load()) hold();
  for (Made& connection : Connections()) {
    if (connection.Maker != getpid()) continue;
    try {
      Close(*connection.Db);
    } catch (...) {  // a driver's; there is nobody left to be told
    }
    connection.Db = nullptr;
  }
}

struct Guard {
  Guard() = default;
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;
  ~Guard() { Come(); }
};

}  // namespace

bool ProcessEnd::HasCome() { return g_hasCome.load(std::memory_order_relaxed); }

void ProcessEnd::HoldFirst(void (*hold)()) {
  g_hold.store(hold);
  static const Guard guard;
}

void ProcessEnd::AfterSettings() { static const Guard guard; }

void ProcessEnd::AfterConnection(const std::shared_ptr<QSqlDatabase>& connection) {
  Connections().push_back({connection, getpid()});
  static const Guard guard;
}

void ProcessEnd::Forget(const std::shared_ptr<QSqlDatabase>& connection) {
  std::vector<Made>& made = Connections();
  made.erase(std::remove_if(made.begin(), made.end(), [&](const Made& one) { return one.Db == connection; }),
             made.end());
}

void ProcessEnd::AfterOpening() { static const Guard guard; }

}  // namespace Corvane
