// Another process locks or writes the store before, in the middle of and after a calculation, in both of SQLite's
// journal modes.
#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <fstream>

#include "tests/robust/StatementWatch.h"
#include "tests/robust/WholeShop.h"

namespace Corvane::Testing {
namespace {

using std::chrono::steady_clock;
using ::testing::IsEmpty;

/// Another process with a connection of its own to the store, which runs statements that it is told.
class OtherProcess {
 public:
  explicit OtherProcess(const std::string& store) {
    EXPECT_EQ(pipe(m_orders.data()), 0);
    EXPECT_EQ(pipe(m_answers.data()), 0);
    m_child = fork();
    if (m_child == 0) Serve(store);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess() {
    kill(m_child, SIGKILL);
    waitpid(m_child, nullptr, 0);
    for (const int end : {m_orders[0], m_orders[1], m_answers[0], m_answers[1]}) close(end);
  }

  /// @return SQLite's code; it waits for nobody.
  int Run(const std::string& statements) const {
    const std::string order = statements + '\n';
    int code = -1;
    EXPECT_EQ(write(m_orders[1], order.data(), order.size()), static_cast<ssize_t>(order.size()));
    EXPECT_EQ(read(m_answers[0], &code, sizeof code), static_cast<ssize_t>(sizeof code));
    return code;
  }

 private:
  [[noreturn]] void Serve(const std::string& path) const {
    sqlite3* store = nullptr;
    sqlite3_open(path.c_str(), &store);
    std::string order;
    for (char sign = 0; read(m_orders[0], &sign, 1) == 1;) {
      if (sign != '\n') {
        order += sign;
        continue;
      }
      const int code = sqlite3_exec(store, order.c_str(), nullptr, nullptr, nullptr);
      if (write(m_answers[1], &code, sizeof code) < 0) _exit(1);
      order.clear();
    }
    _exit(0);
  }

  std::array<int, 2> m_orders{};
  std::array<int, 2> m_answers{};
  pid_t m_child = -1;
};

/// A shop whose engine waits one second for a lock.
class DatabaseLocks : public WholeShop {
 protected:
  void SetUp() override {
    std::ofstream(Directory() + "/config.ini", std::ios::app) << "ReadTimeout=1\n";
    WholeShop::SetUp();
  }

  static double SecondsOfPlay(std::vector<PlayedCall>& calls) {
    const auto start = steady_clock::now();
    calls = Play();
    return std::chrono::duration<double>(steady_clock::now() - start).count();
  }

  /// A store of the other journal mode, which the file itself names.
  void UseWriteAheadLog() {
    Sql("pragma journal_mode=wal; pragma wal_checkpoint(truncate)");
    LearnStore();
  }

  /// Plays the sale; before its n-th statement the other process runs some of its own.
  static std::vector<PlayedCall> PlayWith(const OtherProcess& other, int statement, const std::string& statements,
                                          int& code) {
    const StatementWatch watch([&](int number) {
      if (number != statement) return;
      code = other.Run(statements);
      // Who waits to write keeps others from beginning to read.
      if (code == SQLITE_BUSY) other.Run("rollback");
    });
    return Play();
  }

  static int Statements() {
    const StatementWatch watch([](int) {});
    Play();
    return watch.Count();
  }
};

TEST_F(DatabaseLocks, AnExclusiveLockCostsEachCallOneTimeout) {
  const OtherProcess other(StoreFile());
  ASSERT_EQ(other.Run("begin exclusive"), SQLITE_OK);
  std::vector<PlayedCall> calls;
  const double seconds = SecondsOfPlay(calls);
  EXPECT_GT(seconds, 2 * 0.9);
  EXPECT_LT(seconds, 2 * 3 + 1);  // in an engine that another test has set to three seconds, too
  EXPECT_EQ(LostRules(calls).size(), std::size(kShopRules));
  ExpectLostRulesAlone(calls, "exclusive lock");
  ASSERT_EQ(other.Run("commit"), SQLITE_OK);
  ExpectWhole("exclusive lock");
}

TEST_F(DatabaseLocks, AWriteLockCostsNothing) {
  const OtherProcess other(StoreFile());
  ASSERT_EQ(other.Run("begin immediate; update tProPrjDirectProAct set DscPrice=6"), SQLITE_OK);
  std::vector<PlayedCall> calls;
  EXPECT_LT(SecondsOfPlay(calls), 0.9);
  EXPECT_EQ(Results(calls), ResultsWithout({}));
  ASSERT_EQ(other.Run("rollback"), SQLITE_OK);
}

// Who reads first keeps the store as it is until the call ends: from the second statement on, for the first one only
// begins to.
TEST_F(DatabaseLocks, AWriterInTheMiddleOfACallWaitsForItsEnd) {
  const int statements = Statements();
  ASSERT_GT(statements, 20);
  int waited = 0;
  for (int statement = 2; statement < statements; ++statement) {
    RenewStore();
    const OtherProcess other(StoreFile());
    int written = SQLITE_OK;
    const std::vector<PlayedCall> calls =
        PlayWith(other, statement, "begin immediate; update tProPrjDirectProAct set DscPrice=6; commit", written);
    EXPECT_EQ(Results(calls), ResultsWithout({})) << statement;
    EXPECT_THAT(LostRules(calls), IsEmpty()) << statement;
    if (written == SQLITE_BUSY) ++waited;
  }
  // Between the calls nobody waits.
  EXPECT_GE(waited, statements - 6);
  RenewStore();
  ExpectWhole("a writer");
}

TEST_F(DatabaseLocks, AWriterWithALogOfItsOwnIsReadAtTheNextCall) {
  UseWriteAheadLog();
  const int statements = Statements();
  const std::string drop = "begin immediate; drop table tProPrjDirectProAct; commit";
  for (int statement = 2; statement < statements; ++statement) {
    const OtherProcess other(StoreFile());
    int written = SQLITE_ERROR;
    const std::vector<PlayedCall> calls = PlayWith(other, statement, drop, written);
    const std::vector<PlayedCall> next = Play();
    EXPECT_EQ(written, SQLITE_OK) << statement;
    EXPECT_EQ(Results(calls), ResultsWithout({})) << statement;
    EXPECT_THAT(LostRules(calls), IsEmpty()) << statement;
    EXPECT_EQ(LostRules(next), (std::set<std::string>{"PTXS", "PTPL", "PTOS"})) << statement;
    ExpectLostRulesAlone(next, "table dropped in the middle");
    RenewStore();
  }
  ExpectWhole("a table dropped in the middle");
}

TEST_F(DatabaseLocks, AnExclusiveLockBesideAWriteAheadLogCostsNothing) {
  UseWriteAheadLog();
  const OtherProcess other(StoreFile());
  ExpectWhole("a write-ahead log");
  ASSERT_EQ(other.Run("begin exclusive; update tProPrjDirectProAct set DscPrice=6"), SQLITE_OK);
  std::vector<PlayedCall> calls;
  EXPECT_LT(SecondsOfPlay(calls), 0.9);
  EXPECT_EQ(Results(calls), ResultsWithout({}));
  ASSERT_EQ(other.Run("rollback"), SQLITE_OK);
}

}  // namespace
}  // namespace Corvane::Testing
