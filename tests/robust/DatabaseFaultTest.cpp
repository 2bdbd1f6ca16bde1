// The store's file taken away, replaced or broken before, in the middle of and after a calculation: at each of its
// statements. A rule whose rows are lost gives nothing and the log says so; all others give what they always give; and
// with a whole store the till gives what it always gave.
#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <random>
#include <sstream>

#include "tests/robust/StatementWatch.h"
#include "tests/robust/WholeShop.h"

namespace Corvane::Testing {
namespace {

using ::testing::IsEmpty;
using ::testing::Not;

namespace fs = std::filesystem;

constexpr std::size_t kPage = 512;

class DatabaseFaults : public WholeShop {
 protected:
  /// How many statements the shop's sale has.
  static int Statements() {
    RenewStore();
    const StatementWatch watch([](int) {});
    Play();
    return watch.Count();
  }

  /// Plays the sale on a store that was just opened, and strikes before its n-th statement.
  static std::vector<PlayedCall> PlayStruckAt(int statement, const std::function<void()>& strike) {
    RenewStore();
    const StatementWatch watch([&](int number) {
      if (number == statement) strike();
    });
    return Play();
  }

  /// Back again: as another file, or as the same one with other contents.
  void ExpectWholeAgain(int turn, const std::string& fault) {
    if (turn % 2 == 0 || !fs::is_regular_file(fs::symlink_status(StoreFile()))) {
      RenewStore();
    } else {
      HealStore();
    }
    ExpectWhole(fault);
  }

  static void Overwrite(std::size_t at, const std::string& bytes) {
    std::string store = BytesOf(StoreFile());
    store.replace(at, bytes.size(), bytes);
    WriteBytes(StoreFile(), store);
  }

  static std::string RandomBytes(std::size_t count, unsigned seed) {
    std::mt19937 chance(seed);
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>(chance() & 0xFFU);
    return bytes;
  }
};

// --- Gone and replaced -----------------------------------------------------------------------------------------------

struct Replacement {
  const char* Name;
  std::function<void(const std::string& store)> Strike;
  bool IsNoticed;  ///< whether the next call looks at what stands there now
};

void PrintTo(const Replacement& replacement, std::ostream* out) { *out << replacement.Name; }

class ReplacedStore : public DatabaseFaults, public ::testing::WithParamInterface<Replacement> {};

INSTANTIATE_TEST_SUITE_P(
    By, ReplacedStore,
    ::testing::Values(Replacement{"Nothing", [](const std::string& store) { fs::remove(store); }, false},
                      Replacement{"AnotherName", [](const std::string& store) { fs::rename(store, store + ".away"); },
                                  false},
                      Replacement{"LinkToItself",
                                  [](const std::string& store) {
                                    fs::remove(store);
                                    fs::create_symlink(store, store);
                                  },
                                  false},
                      Replacement{"EmptyFile",
                                  [](const std::string& store) {
                                    WriteBytes(store + ".empty", "");
                                    fs::rename(store + ".empty", store);
                                  },
                                  true},
                      Replacement{"Folder",
                                  [](const std::string& store) {
                                    fs::remove(store);
                                    fs::create_directory(store);
                                  },
                                  true},
                      Replacement{"Pipe",
                                  [](const std::string& store) {
                                    fs::remove(store);
                                    ASSERT_EQ(mkfifo(store.c_str(), 0600), 0);
                                  },
                                  true},
                      Replacement{"FullDevice",
                                  [](const std::string& store) {
                                    fs::remove(store);
                                    fs::create_symlink("/dev/full", store);
                                  },
                                  true}),
    [](const auto& test) { return std::string(test.param.Name); });

// The call that is under way goes on with what it has opened.
TEST_P(ReplacedStore, AtEachStatementCostsTheNextCallAtMost) {
  const int statements = Statements();
  ASSERT_GT(statements, 20);
  for (int statement = 0; statement < statements; ++statement) {
    const std::string fault = GetParam().Name + (" at statement " + std::to_string(statement));
    const std::vector<PlayedCall> calls = PlayStruckAt(statement, [] { GetParam().Strike(StoreFile()); });
    const std::vector<PlayedCall> next = Play();
    EXPECT_THAT(LostRules(calls.front(), "All"), IsEmpty()) << fault;
    ExpectLostRulesAlone(calls, fault);
    EXPECT_EQ(LostRules(next).size(), GetParam().IsNoticed ? std::size(kShopRules) : 0U) << fault;
    ExpectLostRulesAlone(next, "after " + fault);
    ExpectWholeAgain(statement, fault);
  }
}

TEST_P(ReplacedStore, BeforeTheFirstCallOfAnEngineIsMissedUntilItIsBack) {
  // What was opened is given up first.
  WriteBytes(StoreFile() + ".empty", "");
  fs::rename(StoreFile() + ".empty", StoreFile());
  fs::remove(StoreFile());
  fs::create_directory(StoreFile());
  Play();
  fs::remove(StoreFile());
  WriteBytes(StoreFile(), "");
  GetParam().Strike(StoreFile());

  const std::vector<PlayedCall> calls = Play();

  EXPECT_EQ(LostRules(calls).size(), std::size(kShopRules));
  ExpectLostRulesAlone(calls, GetParam().Name);
  ExpectWholeAgain(0, GetParam().Name);
}

TEST_F(DatabaseFaults, AnotherStoreInItsPlaceIsReadAtTheNextCall) {
  const int statements = Statements();
  const std::string other = OtherStore();
  fs::copy_file(other, StoreFile() + ".new");
  fs::rename(StoreFile() + ".new", StoreFile());
  const std::vector<std::string> othersResults = Results(Play());
  const std::vector<std::string> results = ResultsWithout({});
  ASSERT_NE(othersResults.front(), results.front());
  int inFirst = 0;
  for (int statement = 0; statement < statements; ++statement) {
    const std::vector<std::string> struck = Results(PlayStruckAt(statement, [&] {
      fs::copy_file(other, StoreFile() + ".new");
      fs::rename(StoreFile() + ".new", StoreFile());
    }));
    EXPECT_EQ(struck.front(), results.front()) << statement;
    // In the first call: the second one has the other store's reduction of 4.00.
    const bool isOther = struck.back().find(R"(DisMoney="4.00" ProBillNo="MZMJ")") != std::string::npos;
    const bool isOwn = struck.back().find(R"(DisMoney="3.00" ProBillNo="MZMJ")") != std::string::npos;
    EXPECT_NE(isOther, isOwn) << statement;
    if (isOther) ++inFirst;
    EXPECT_EQ(Results(Play()), othersResults) << statement;
  }
  EXPECT_GT(inFirst, 10);
  EXPECT_LT(inFirst, statements);
  RenewStore();
  ExpectWhole("another store");
}

// --- Broken ----------------------------------------------------------------------------------------------------------

TEST_F(DatabaseFaults, EachPageBrokenCostsTheRulesThatNeedIt) {
  const std::size_t pages = BytesOf(StoreFile()).size() / kPage;
  ASSERT_GT(pages, 40U);
  std::set<std::string> everLost;
  for (std::size_t page = 0; page < pages; ++page) {
    for (const std::string& bytes :
         {std::string(kPage, '\0'), std::string(kPage, '\xFF'), RandomBytes(kPage, static_cast<unsigned>(page))}) {
      const std::string fault = "page " + std::to_string(page) + " of " + std::to_string(int(bytes.front()));
      RenewStore();
      Overwrite(page * kPage, bytes);
      const std::vector<PlayedCall> calls = Play();
      ExpectLostRulesAlone(calls, fault);
      everLost.merge(LostRules(calls));
      ExpectWholeAgain(static_cast<int>(page), fault);
    }
  }
  EXPECT_EQ(everLost.size(), std::size(kShopRules));
}

// What is read before the page breaks is kept, and what needs it later is lost.
TEST_F(DatabaseFaults, EachPageBrokenInTheMiddleCostsTheRulesThatNeedItStill) {
  const std::size_t pages = BytesOf(StoreFile()).size() / kPage;
  const int statements = Statements();
  int costly = 0;
  int free = 0;
  for (std::size_t page = 0; page < pages; ++page) {
    for (int statement = static_cast<int>(page % 5); statement < statements; statement += 5) {
      const std::string fault = "page " + std::to_string(page) + " at statement " + std::to_string(statement);
      const std::vector<PlayedCall> calls = PlayStruckAt(
          statement, [&] { Overwrite(page * kPage, RandomBytes(kPage, static_cast<unsigned>(page) + 1000)); });
      const std::vector<PlayedCall> next = Play();
      ++(LostRules(calls).empty() ? free : costly);
      ExpectLostRulesAlone(calls, fault);
      ExpectLostRulesAlone(next, "after " + fault);
      ExpectWholeAgain(statement, fault);
    }
  }
  EXPECT_GT(costly, 20);
  EXPECT_GT(free, 20);
}

TEST_F(DatabaseFaults, AStoreCutOffAtAnyLengthCostsTheRulesBehindTheCut) {
  const std::size_t size = BytesOf(StoreFile()).size();
  const int statements = Statements();
  int turn = 0;
  for (std::size_t length :
       {std::size_t{0}, std::size_t{1}, std::size_t{15}, std::size_t{16}, std::size_t{99}, std::size_t{100}, kPage - 1,
        kPage, kPage + 1, size / 4, size / 2, size - kPage, size - 1}) {
    for (int statement = -1; statement < statements; statement += 3) {
      const std::string fault = "cut at " + std::to_string(length) + ", statement " + std::to_string(statement);
      const auto cut = [&] { fs::resize_file(StoreFile(), length); };
      RenewStore();
      if (statement < 0) cut();
      const std::vector<PlayedCall> calls = statement < 0 ? Play() : PlayStruckAt(statement, cut);
      const std::vector<PlayedCall> next = Play();
      ExpectLostRulesAlone(calls, fault);
      ExpectLostRulesAlone(next, "after " + fault);
      ExpectWholeAgain(++turn, fault);
    }
  }
}

TEST_F(DatabaseFaults, AHeaderOfGarbageCostsAllRules) {
  for (const std::string& header :
       {std::string(16, '\0'), std::string("SQLite format 4\0", 16), std::string(100, 'x'), RandomBytes(100, 1)}) {
    RenewStore();
    Overwrite(0, header);
    const std::vector<PlayedCall> calls = Play();
    EXPECT_EQ(LostRules(calls).size(), std::size(kShopRules));
    ExpectLostRulesAlone(calls, "garbage");
    ExpectWholeAgain(static_cast<int>(header.size()), "garbage");
  }
}

// A byte may be a price: then the store says something else. It answers, and the next whole store is read.
TEST_F(DatabaseFaults, AnyByteChangedLeavesAnAnswer) {
  const std::string whole = BytesOf(StoreFile());
  std::mt19937 chance(20261121);  // NOLINT(cert-msc51-cpp): the same bytes in every run
  for (int turn = 0; turn < 150; ++turn) {
    RenewStore();
    std::string changed = whole;
    for (int change = 0; change < 3; ++change) changed[chance() % whole.size()] = static_cast<char>(chance() & 0xFFU);
    WriteBytes(StoreFile(), changed);
    for (const PlayedCall& call : Play()) EXPECT_THAT(RowsOf(call.Result, "Plu"), ::testing::SizeIs(12U));
    if (turn % 10 == 0) ExpectWholeAgain(turn, "changed bytes");
  }
}

// --- Tables and columns ----------------------------------------------------------------------------------------------

/// The names that a statement brings, from the whole store.
std::vector<std::string> Names(const std::string& store, const std::string& statement) {
  sqlite3* opened = nullptr;
  EXPECT_EQ(sqlite3_open(store.c_str(), &opened), SQLITE_OK);
  std::vector<std::string> names;
  const auto append = [](void* all, int, char** values, char**) {
    static_cast<std::vector<std::string>*>(all)->emplace_back(values[0]);
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(opened, statement.c_str(), append, &names, nullptr), SQLITE_OK);
  sqlite3_close(opened);
  return names;
}

std::vector<std::string> Tables(const std::string& store) {
  return Names(store, "select name from sqlite_master where type='table'");
}

TEST_F(DatabaseFaults, EachTableMissingCostsTheRulesThatReadIt) {
  const std::vector<std::string> tables = Tables(StoreFile());
  ASSERT_EQ(tables.size(), 10U);
  std::set<std::string> everLost;
  int turn = 0;
  for (const std::string& table : tables) {
    RenewStore();
    if (++turn % 2 == 0) Play();  // its statement is kept by then
    Sql("drop table " + table);
    const std::vector<PlayedCall> calls = Play();
    EXPECT_THAT(LostRules(calls), Not(IsEmpty())) << table;
    ExpectLostRulesAlone(calls, table);
    everLost.merge(LostRules(calls));
    ExpectWholeAgain(turn, table);
  }
  EXPECT_EQ(everLost.size(), std::size(kShopRules));
}

// No column of the sample store stands there in vain.
TEST_F(DatabaseFaults, EachColumnMissingCostsTheRulesThatReadIt) {
  int turn = 0;
  for (const std::string& table : Tables(StoreFile())) {
    for (const std::string& column : Names(StoreFile(), "select name from pragma_table_info('" + table + "')")) {
      const std::string name = table + "." + column;
      RenewStore();
      if (++turn % 2 == 0) Play();
      Sql("alter table " + table + " rename column " + column + " to gone");
      const std::vector<PlayedCall> calls = Play();
      EXPECT_THAT(LostRules(calls), Not(IsEmpty())) << name;
      ExpectLostRulesAlone(calls, name);
      ExpectWholeAgain(turn, name);
    }
  }
  EXPECT_GT(turn, 80);
}

}  // namespace
}  // namespace Corvane::Testing
