// How "config.ini" is read, as docs/host-guide.md tells it: which file a value of DBName opens. SQLite makes the file
// that it opens, and so the file's name says what was read.

#include <gtest/gtest.h>
#include <qncorvane/qncorvane.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>

#include "tests/support/Till.h"

namespace Corvane::Testing {
namespace {

struct Case {
  const char* Name;
  const char* Settings;
  const char* File;  ///< what lies in the current directory then; empty when nothing was opened
};

void PrintTo(const Case& test, std::ostream* out) { *out << test.Name; }

std::string FilesBesideTheSettings() {
  std::string names;
  for (const auto& entry : std::filesystem::directory_iterator(".")) {
    const std::string name = entry.path().filename().string();
    if (name != "config.ini" && name != "QnCorvane.txt") names += name;
  }
  return names;
}

class SettingsFile : public FreshTill, public ::testing::WithParamInterface<Case> {};

TEST_P(SettingsFile, IsReadSo) {
  std::ofstream("config.ini", std::ios::binary) << GetParam().Settings;
  InFreshProcess([] {
    const int code = BeginInitPro();
    const std::string expected = GetParam().File;
    EXPECT_EQ(code, expected.empty() ? -1 : 0);
    EXPECT_EQ(FilesBesideTheSettings(), expected);
  });
}

constexpr Case kCases[] = {
    {"Plain", "[DataBase]\nDbType=SQLITE\nDBName=./a.db\n", "a.db"},
    {"LetterCaseOfTheKindDoesNotCount", "[DataBase]\nDbType=sqlite\nDBName=./a.db\n", "a.db"},
    {"LetterCaseOfTheGroupCounts", "[database]\nDbType=SQLITE\nDBName=./a.db\n", ""},
    {"LetterCaseOfTheKeysCounts", "[DataBase]\ndbtype=SQLITE\nDBName=./a.db\n", ""},
    {"BlanksAroundAreDropped", "[DataBase]\nDbType = SQLITE \nDBName =  ./a.db  \n", "a.db"},
    {"ASemicolonEndsAValue", "[DataBase]\nDbType=SQLITE\nDBName=./a;b.db\n", "a"},
    {"NotSoInQuotes", "[DataBase]\nDbType=SQLITE\nDBName=\"./a;b.db\"\n", "a;b.db"},
    {"ABackslashIsWrittenTwice", "[DataBase]\nDbType=SQLITE\nDBName=./a\\\\b.db\n", "a\\b.db"},
    {"ABackslashIsWrittenTwiceInQuotesToo", "[DataBase]\nDbType=SQLITE\nDBName=\"./a\\\\b.db\"\n", "a\\b.db"},
    {"AQuoteInsideIsDropped", "[DataBase]\nDbType=SQLITE\nDBName=./a\"b.db\n", "ab.db"},
    {"AQuoteBehindABackslashStays", "[DataBase]\nDbType=SQLITE\nDBName=\"./a\\\"b.db\"\n", "a\"b.db"},
    {"ACommaStays", "[DataBase]\nDbType=SQLITE\nDBName=./a,b.db\n", "a,b.db"},
    {"BlanksBesideACommaGetLost", "[DataBase]\nDbType=SQLITE\nDBName=./a , b.db\n", "a,b.db"},
    {"NotSoInQuotesEither", "[DataBase]\nDbType=SQLITE\nDBName=\"./a , b.db\"\n", "a , b.db"},
    {"HashAndEqualsAreLetters", "[DataBase]\nDbType=SQLITE\nDBName=./a#b=c.db\n", "a#b=c.db"},
    {"LinesOfRemarks", "; one\n# two\n[DataBase]\nDbType=SQLITE\nDBName=./a.db\n", "a.db"},
    {"Utf8", "[DataBase]\nDbType=SQLITE\nDBName=./\xE8\x8C\xB6.db\n", "\xE8\x8C\xB6.db"},
    {"BesideAGroupWithinTheGroup", "[DataBase]\nDbType=SQLITE\nDBName=./a.db\n[DataBase\\Old]\nDBName=./b.db\n",
     "a.db"},
    {"TheLastOfTwoCounts", "[DataBase]\nDbType=SQLITE\nDBName=./a.db\nDBName=./b.db\n", "b.db"},
};

INSTANTIATE_TEST_SUITE_P(Values, SettingsFile, ::testing::ValuesIn(kCases),
                         [](const auto& test) { return std::string(test.param.Name); });

}  // namespace
}  // namespace Corvane::Testing
