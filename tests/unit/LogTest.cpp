// The calculation log as a file.
#include "log/Log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTextCodec>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/LogPipe.h"
#include "tests/unit/RuleFixture.h"

using Corvane::Log;
using Corvane::Testing::LogPipe;
using ruletest::Entries;

namespace {

constexpr std::size_t kLimit = 1000000;

class LogFile : public ruletest::WithLog {
 protected:
  static void WriteFile(const std::string& name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
  }

  static std::string ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  /// The descriptors that this process holds open.
  static std::ptrdiff_t OpenFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  }

  static std::string LocalTime() {
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")).toStdString();
  }
};

/// A process that is the superuser may write every file; for the life of this object it is nobody.
class AsOrdinaryUser {
 public:
  AsOrdinaryUser() : m_changed(geteuid() == 0 && seteuid(kNobody) == 0) {}
  ~AsOrdinaryUser() {
    if (m_changed && seteuid(0) != 0) ADD_FAILURE() << "the superuser is gone";
  }
  AsOrdinaryUser(const AsOrdinaryUser&) = delete;
  AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

  static bool IsOrdinary() { return geteuid() != 0; }

 private:
  static constexpr uid_t kNobody = 65534;
  bool m_changed;
};

TEST_F(LogFile, TheFirstEntryCreatesIt) {
  ASSERT_FALSE(QFile::exists(QStringLiteral("QnCorvane.txt")));
  Log("促销");
  EXPECT_TRUE(QFile::exists(QStringLiteral("QnCorvane.txt")));
}

TEST_F(LogFile, AnEntryIsTimeTwoBlanksTextNewlineCarriageReturn) {
  Log("single PTXS");
  const std::regex form("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}  single PTXS\n\r");
  EXPECT_TRUE(std::regex_match(m_log.Bytes(), form)) << m_log.Bytes();
}

TEST_F(LogFile, TheTimeIsTheLocalTimeOfTheEntry) {
  const std::string before = LocalTime();
  Log("now");
  const std::string after = LocalTime();
  const std::string stamp = m_log.Bytes().substr(0, 19);
  EXPECT_GE(stamp, before);
  EXPECT_LE(stamp, after);
}

TEST_F(LogFile, TheTimeGoesOnFromEntryToEntry) {
  Log("one");
  sleep(1);
  const std::string before = LocalTime();
  Log("two");
  EXPECT_GE(m_log.Bytes().substr(26, 19), before);
}

/// The zone of the process for the life of this object.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) : m_wasSet(std::getenv("TZ") != nullptr) {
    if (m_wasSet) m_before = std::getenv("TZ");
    setenv("TZ", zone, 1);
  }
  ~TimeZone() {
    if (m_wasSet) {
      setenv("TZ", m_before.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  bool m_wasSet;
  std::string m_before;
};

/// The hour of the day in an entry, and that of a zone so many hours east of Greenwich: at once, so that the second
/// that the stamp was made for is mostly still the same.
int HourOf(const std::string& bytes, std::size_t entry, std::size_t length) {
  return std::stoi(bytes.substr(entry * length + 11, 2));
}

TEST_F(LogFile, TheTimeFollowsAZoneThatTheHostChanges) {
  const int before = static_cast<int>(std::time(nullptr) / 3600 % 24);
  for (const char* const zone : {"UTC0", "EAST-5", "WEST+7", "UTC0"}) {
    const TimeZone changed(zone);
    Log("x");
  }
  const int after = static_cast<int>(std::time(nullptr) / 3600 % 24);
  if (before != after) GTEST_SKIP() << "the hour changed in between";
  constexpr std::size_t kLength = 19 + 2 + 1 + 2;
  const std::string bytes = m_log.Bytes();
  ASSERT_EQ(bytes.size(), 4 * kLength);
  EXPECT_EQ(HourOf(bytes, 0, kLength), before);
  EXPECT_EQ(HourOf(bytes, 1, kLength), (before + 5) % 24);
  EXPECT_EQ(HourOf(bytes, 2, kLength), (before + 17) % 24);
  EXPECT_EQ(HourOf(bytes, 3, kLength), before);
}

/// Sends this process a signal every few milliseconds, whose handler breaks system calls off.
class SignalStorm {
 public:
  SignalStorm() {
    struct sigaction action {};
    action.sa_handler = [](int) {};  // and no SA_RESTART
    sigaction(SIGALRM, &action, &m_before);
    const itimerval often = {{0, 2000}, {0, 2000}};
    setitimer(ITIMER_REAL, &often, nullptr);
  }
  ~SignalStorm() {
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &m_before, nullptr);
  }
  SignalStorm(const SignalStorm&) = delete;
  SignalStorm& operator=(const SignalStorm&) = delete;

 private:
  struct sigaction m_before {};
};

// A pipe takes 64 kB at once, so that the writing waits until the reader has taken something.
TEST_F(LogFile, AnInterruptedWaitIsGoneOnWith) {
  LogPipe pipe;
  std::atomic<bool> isWritten{false};
  std::string read;
  std::thread reader([&] {
    sigset_t alarm;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    pthread_sigmask(SIG_BLOCK, &alarm, nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    read = pipe.TakeUntil(isWritten);
  });
  {
    const SignalStorm storm;
    Log(std::string(300000, 'x'));
  }
  isWritten = true;
  reader.join();
  EXPECT_EQ(read.substr(19), "  " + std::string(300000, 'x') + "\n\r");
}

// One that nobody reads costs the entry, one that is full what it has no room for; neither holds the host.
TEST_F(LogFile, APipeHoldsNobody) {
  const auto start = std::chrono::steady_clock::now();
  LogPipe pipe;
  Log(std::string(300000, 'x'));
  EXPECT_GE(pipe.Take().size(), 65536U);
  pipe.Leave();
  Log("nobody reads");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(LogFile, SeveralPiecesAreOneEntry) {
  Corvane::LogPieces({"till", ":", "15", "\n"});
  EXPECT_EQ(m_log.Bytes().substr(19), "  till:15\n\n\r");
}

TEST_F(LogFile, BytesThatAreNoUtf8BecomeTheReplacementCharacter) {
  Log("a\xE4z\xFF");
  EXPECT_EQ(Logged(), (Entries{"a\uFFFDz\uFFFD"}));
}

struct Bytes {
  std::string Text;
  std::string Written;
};

TEST_F(LogFile, BytesComeOutOfTheConversionSo) {
  using namespace std::string_literals;
  const std::vector<Bytes> cases = {
      {"\xEF\xBB\xBF"
       "a",
       "a"},  // a byte order mark in front goes, and only one
      {"\xEF\xBB\xBF\xEF\xBB\xBF", "\xEF\xBB\xBF"},
      {"a\xEF\xBB\xBF", "a\xEF\xBB\xBF"},
      {"\xEF\xBB", "\uFFFD\uFFFD"},
      {"a\0b"s, "a\0b"s},
      {"\xEF\xBF\xBE", "\xEF\xBF\xBE"},  // U+FFFE and U+FDD0 are no characters, and stay
      {"\xEF\xB7\x90", "\xEF\xB7\x90"},
      {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},  // a surrogate
      {"\xC0\x80", "\uFFFD\uFFFD"},
      {"\xE0\x9F\xBF", "\uFFFD\uFFFD\uFFFD"},
      {"\xE4\xBF\x83\xE4", "\xE4\xBF\x83\uFFFD"},
      {"\xF0\x9F\x8D\xB5", "\xF0\x9F\x8D\xB5"},
  };
  Entries written;
  for (const Bytes& test : cases) {
    Log(test.Text);
    written.push_back(test.Written);
  }
  EXPECT_EQ(Logged(), written);
}

TEST_F(LogFile, PiecesAreConvertedTogether) {
  Corvane::LogPieces({"\xE4\xBF", "\x83"});
  Corvane::LogPieces({"", "\xEF\xBB", "\xBF", "a"});
  Corvane::LogPieces({"a", "\xEF\xBB\xBF"});
  EXPECT_EQ(Logged(), (Entries{"\xE4\xBF\x83", "a", "a\xEF\xBB\xBF"}));
}

TEST_F(LogFile, FollowsACodecThatTheHostChanges) {
  QTextCodec::setCodecForLocale(QTextCodec::codecForName("GB18030"));
  Log("满");
  QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
  Log("满");
  EXPECT_EQ(Logged(), (Entries{"\xC2\xFA", "\xE6\xBB\xA1"}));
}

TEST_F(LogFile, EntriesFollowEachOther) {
  Log("one");
  Log("two");
  Log("three");
  EXPECT_EQ(Logged(), (Entries{"one", "two", "three"}));
}

TEST_F(LogFile, ANullTextLogsAnEmptyText) {
  Log(static_cast<const char*>(nullptr));
  EXPECT_EQ(m_log.Bytes().substr(19), "  \n\r");
}

TEST_F(LogFile, AnEmptyTextIsAnEntry) {
  Log("");
  Log(QString());
  Log(std::string());
  EXPECT_EQ(Logged(), (Entries{"", "", ""}));
}

TEST_F(LogFile, TakesAllKindsOfText) {
  char bytes[] = "组织满足";
  Log(static_cast<char*>(bytes));
  Log("组织满足");
  Log(QStringLiteral("组织满足"));
  Log(std::string("组织满足"));
  EXPECT_EQ(Logged(), (Entries{"组织满足", "组织满足", "组织满足", "组织满足"}));
}

TEST_F(LogFile, ANewlineInsideTheTextStaysAsItIs) {
  Log("K1:15\n");
  EXPECT_EQ(m_log.Bytes().substr(19), "  K1:15\n\n\r");
}

TEST_F(LogFile, PercentSignsAreText) {
  Log("%s %1 100%");
  EXPECT_EQ(Logged(), (Entries{"%s %1 100%"}));
}

TEST_F(LogFile, ALongTextIsOneEntry) {
  Log(std::string(300000, 'x'));
  EXPECT_EQ(Logged(), (Entries{std::string(300000, 'x')}));
}

TEST_F(LogFile, IsWrittenInTheCodecOfTheLocale) {
  QTextCodec* const chinese = QTextCodec::codecForName("GB18030");
  ASSERT_NE(chinese, nullptr);
  QTextCodec::setCodecForLocale(chinese);
  Log("组织满足");
  EXPECT_EQ(m_log.Bytes().substr(19), "  \xD7\xE9\xD6\xAF\xC2\xFA\xD7\xE3\n\r");
}

TEST_F(LogFile, OfJustTheLimitIsAppendedTo) {
  WriteFile("QnCorvane.txt", std::string(kLimit, 'o'));
  Log("next");
  // 19 of the time, 2 blanks, 4 of the text, 2 of the end.
  const std::string bytes = m_log.Bytes();
  ASSERT_EQ(bytes.size(), kLimit + 27);
  EXPECT_EQ(bytes.substr(0, kLimit), std::string(kLimit, 'o'));
  EXPECT_EQ(bytes.substr(kLimit + 19), "  next\n\r");
}

TEST_F(LogFile, OneByteOverTheLimitStartsAnewWithTheEntry) {
  WriteFile("QnCorvane.txt", std::string(kLimit + 1, 'o'));
  Log("next");
  EXPECT_EQ(m_log.Bytes().size(), 27U);
  EXPECT_EQ(Logged(), (Entries{"next"}));
}

TEST_F(LogFile, GrowsPastTheLimitOnceAndThenStartsAnew) {
  WriteFile("QnCorvane.txt", std::string(kLimit, 'o'));
  Log("appended");
  Log("anew");
  Log("behind");
  EXPECT_EQ(Logged(), (Entries{"anew", "behind"}));
}

TEST_F(LogFile, KeepsNoFileOpen) {
  Log("first");
  const std::ptrdiff_t before = OpenFiles();
  for (int entry = 0; entry < 10; ++entry) Log("next");
  EXPECT_EQ(OpenFiles(), before);
}

TEST_F(LogFile, KeepsNoFileOpenWhereItCannotWrite) {
  ASSERT_EQ(symlink("/dev/full", "QnCorvane.txt"), 0);
  const std::ptrdiff_t before = OpenFiles();
  for (int entry = 0; entry < 10; ++entry) Log("lost");
  EXPECT_EQ(OpenFiles(), before);
}

TEST_F(LogFile, ThatWasDeletedComesBackWithTheNextEntry) {
  Log("one");
  ASSERT_TRUE(QFile::remove(QStringLiteral("QnCorvane.txt")));
  Log("two");
  EXPECT_EQ(Logged(), (Entries{"two"}));
}

TEST_F(LogFile, ThatWasReplacedIsTheOneThatGoesOn) {
  Log("one");
  ASSERT_TRUE(QFile::rename(QStringLiteral("QnCorvane.txt"), QStringLiteral("kept.txt")));
  const std::string kept = ReadFile("kept.txt");
  WriteFile("QnCorvane.txt", "other file\n");
  Log("two");
  EXPECT_EQ(m_log.Bytes().substr(0, 11), "other file\n");
  EXPECT_EQ(m_log.Bytes().substr(11 + 19), "  two\n\r");
  EXPECT_EQ(ReadFile("kept.txt"), kept);
}

TEST_F(LogFile, FollowsTheCurrentDirectory) {
  Log("here");
  ASSERT_TRUE(QDir().mkdir(QStringLiteral("elsewhere")));
  ASSERT_TRUE(QDir::setCurrent(QStringLiteral("elsewhere")));
  Log("there");
  EXPECT_EQ(Logged(), (Entries{"here"}));
  EXPECT_EQ(ReadFile("QnCorvane.txt").substr(19), "  there\n\r");
}

TEST_F(LogFile, ThatIsReadOnlyCostsTheEntry) {
  WriteFile("QnCorvane.txt", "read only\n");
  ASSERT_EQ(chmod("QnCorvane.txt", 0444), 0);
  ASSERT_EQ(chmod(".", 0755), 0);
  {
    const AsOrdinaryUser user;
    if (!AsOrdinaryUser::IsOrdinary()) GTEST_SKIP() << "the superuser can't be left here";
    Log("lost");
  }
  EXPECT_EQ(m_log.Bytes(), "read only\n");
}

TEST_F(LogFile, ADirectoryInItsPlaceCostsTheEntry) {
  ASSERT_TRUE(QDir().mkdir(QStringLiteral("QnCorvane.txt")));
  Log("lost");
  EXPECT_TRUE(QFileInfo(QStringLiteral("QnCorvane.txt")).isDir());
  ASSERT_TRUE(QDir().rmdir(QStringLiteral("QnCorvane.txt")));
  Log("found");
  EXPECT_EQ(Logged(), (Entries{"found"}));
}

TEST_F(LogFile, ALinkToNowhereCostsTheEntry) {
  ASSERT_EQ(symlink("missing/folder/log.txt", "QnCorvane.txt"), 0);
  Log("lost");
  EXPECT_FALSE(QFile::exists(QStringLiteral("QnCorvane.txt")));
}

TEST_F(LogFile, ADeletedCurrentDirectoryCostsTheEntry) {
  ASSERT_TRUE(QDir().mkdir(QStringLiteral("gone")));
  ASSERT_TRUE(QDir::setCurrent(QStringLiteral("gone")));
  ASSERT_EQ(rmdir(m_log.Path("gone").c_str()), 0);
  Log("lost");
  EXPECT_FALSE(QFile::exists(QString::fromStdString(m_log.Path("gone"))));
  EXPECT_EQ(Logged(), Entries{});
}

TEST_F(LogFile, AFullDiskCostsTheEntry) {
  ASSERT_EQ(symlink("/dev/full", "QnCorvane.txt"), 0);
  Log("lost");
  ASSERT_TRUE(QFile::remove(QStringLiteral("QnCorvane.txt")));
  Log("found");
  EXPECT_EQ(Logged(), (Entries{"found"}));
}

}  // namespace
