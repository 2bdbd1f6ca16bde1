// The calculation log within an exported call: entry by entry, and gathered until the call ends.
#include "log/LogCall.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTextCodec>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "log/Log.h"
#include "log/LogFlush.h"
#include "log/LogWriter.h"
#include "tests/support/LogMover.h"
#include "tests/support/LogPipe.h"
#include "tests/unit/RuleFixture.h"

namespace fs = std::filesystem;

using Corvane::Log;
using Corvane::LogCall;
using Corvane::LogFlush;
using Corvane::Testing::LogPipe;
using ruletest::Entries;

namespace {

constexpr const char* kLog = "QnCorvane.txt";
constexpr std::size_t kStamp = 19;

std::string Content(const fs::path& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Fill(const fs::path& name, const std::string& content) { std::ofstream(name, std::ios::binary) << content; }

/// The texts of the entries of a file, without their times.
Entries TextsOf(const fs::path& name) {
  const std::string bytes = Content(name);
  Entries texts;
  for (std::size_t begin = 0, end = 0; (end = bytes.find("\n\r", begin)) != std::string::npos; begin = end + 2) {
    texts.push_back(bytes.substr(begin + kStamp + 2, end - begin - kStamp - 2));
  }
  return texts;
}

std::ptrdiff_t OpenFiles() { return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()); }

/// Runs the body in a child of this process. @return its exit code, or -1 when it did not end by itself.
template <class Body>
int InChild(const Body& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class LogCalls : public ruletest::WithLog {
 protected:
  ~LogCalls() override { Corvane::SetLogFlush(LogFlush::Entry); }
};

// --- Entry by entry -------------------------------------------------------------------------------------------------

using LogEntryByEntry = LogCalls;

TEST_F(LogEntryByEntry, EachIsInTheFileAtOnce) {
  const LogCall call;
  Log("one");
  EXPECT_EQ(Logged(), (Entries{"one"}));
  Log("two");
  EXPECT_EQ(Logged(), (Entries{"one", "two"}));
}

TEST_F(LogEntryByEntry, OneDescriptorServesTheCallAndNoneOutlastsIt) {
  const std::ptrdiff_t before = OpenFiles();
  {
    const LogCall call;
    for (int entry = 0; entry < 10; ++entry) Log("next");
    EXPECT_EQ(OpenFiles(), before + 1);
  }
  EXPECT_EQ(OpenFiles(), before);
}

TEST_F(LogEntryByEntry, AProgramThatTheHostStartsDoesNotInheritIt) {
  const LogCall call;
  Log("one");
  for (const auto& link : fs::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (fs::read_symlink(link, gone).filename() != kLog) continue;
    EXPECT_EQ(fcntl(std::stoi(link.path().filename()), F_GETFD), FD_CLOEXEC);
    return;
  }
  FAIL() << "no descriptor of the log";
}

TEST_F(LogEntryByEntry, AFileThatIsMovedAwayStaysAsItIs) {
  const LogCall call;
  Log("one");
  fs::rename(kLog, "moved.txt");
  Log("two");
  EXPECT_EQ(TextsOf("moved.txt"), (Entries{"one"}));
  EXPECT_EQ(Logged(), (Entries{"two"}));
}

TEST_F(LogEntryByEntry, AFileThatIsMovedAwayAndBackGoesOn) {
  const LogCall call;
  Log("one");
  fs::rename(kLog, "moved.txt");
  Log("two");
  fs::rename("moved.txt", kLog);
  Log("three");
  EXPECT_EQ(Logged(), (Entries{"one", "three"}));
}

TEST_F(LogEntryByEntry, AFileThatIsDeletedComesBack) {
  const LogCall call;
  for (const char* const text : {"one", "two", "three"}) {
    Log(text);
    EXPECT_EQ(Logged(), (Entries{text}));
    fs::remove(kLog);
  }
}

TEST_F(LogEntryByEntry, AFileThatIsEmptiedBeginsAtItsFront) {
  const LogCall call;
  Log("one");
  fs::resize_file(kLog, 0);
  Log("two");
  EXPECT_EQ(Logged(), (Entries{"two"}));
}

TEST_F(LogEntryByEntry, AFileThatAnotherReplacesIsLeft) {
  const LogCall call;
  Log("one");
  Fill("other.txt", "other file\n");
  fs::rename("other.txt", kLog);
  Log("two");
  EXPECT_EQ(m_log.Bytes().substr(0, 11), "other file\n");
  EXPECT_EQ(m_log.Bytes().substr(11 + kStamp), "  two\n\r");
}

TEST_F(LogEntryByEntry, ALinkThatIsTurnedIsFollowed) {
  const LogCall call;
  fs::create_symlink("first.txt", kLog);
  Log("one");
  fs::remove(kLog);
  fs::create_symlink("second.txt", kLog);
  Log("two");
  EXPECT_EQ(TextsOf("first.txt"), (Entries{"one"}));
  EXPECT_EQ(TextsOf("second.txt"), (Entries{"two"}));
}

TEST_F(LogEntryByEntry, TheCurrentDirectoryIsThatOfTheEntry) {
  const LogCall call;
  Log("here");
  fs::create_directory("elsewhere");
  fs::current_path("elsewhere");
  Log("there");
  fs::current_path("..");
  Log("here again");
  EXPECT_EQ(TextsOf("elsewhere/QnCorvane.txt"), (Entries{"there"}));
  EXPECT_EQ(Logged(), (Entries{"here", "here again"}));
}

TEST_F(LogEntryByEntry, WhatOthersAppendCountsForItsSize) {
  const LogCall call;
  Log("one");
  Fill(kLog, std::string(1000001, 'o'));
  Log("two");
  EXPECT_EQ(Logged(), (Entries{"two"}));
}

TEST_F(LogEntryByEntry, ADirectoryInItsPlaceCostsTheEntriesOfThatTime) {
  const std::ptrdiff_t before = OpenFiles();
  const LogCall call;
  Log("one");
  fs::rename(kLog, "moved.txt");
  fs::create_directory(kLog);
  Log("lost");
  EXPECT_EQ(OpenFiles(), before);
  fs::remove(kLog);
  Log("two");
  EXPECT_EQ(TextsOf("moved.txt"), (Entries{"one"}));
  EXPECT_EQ(Logged(), (Entries{"two"}));
}

TEST_F(LogEntryByEntry, AFileThatBecomesReadOnlyTakesNoMore) {
  fs::permissions(".", fs::perms{0777});
  EXPECT_EQ(InChild([] {
              if (geteuid() == 0 && seteuid(65534) != 0) return 2;
              const LogCall call;
              Log("one");
              chmod(kLog, 0444);
              Log("lost");
              chmod(kLog, 0644);
              Log("two");
              return 0;
            }),
            0);
  EXPECT_EQ(Logged(), (Entries{"one", "two"}));
}

TEST_F(LogEntryByEntry, AFullDiskCostsTheEntriesOfThatTime) {
  const LogCall call;
  fs::create_symlink("/dev/full", kLog);
  Log("lost");
  fs::remove(kLog);
  Log("found");
  EXPECT_EQ(Logged(), (Entries{"found"}));
}

// A reader of a pipe that reads to the end has the entry, and need not wait for the end of the call.
TEST_F(LogEntryByEntry, ThePipeInItsPlaceEndsBehindEachEntry) {
  LogPipe pipe;
  const LogCall call;
  for (const char* const text : {"one", "two"}) {
    Log(text);
    EXPECT_EQ(pipe.Take().substr(kStamp), std::string("  ") + text + "\n\r");
    EXPECT_FALSE(pipe.HasWriter());
  }
}

// A host without standard streams: what anybody writes to one of them must not land in the log.
TEST_F(LogEntryByEntry, ANumberOfTheStandardStreamsIsNotKept) {
  EXPECT_EQ(InChild([] {
              close(STDERR_FILENO);
              const LogCall call;
              Log("one");
              return fcntl(STDERR_FILENO, F_GETFD) == -1 ? 0 : 1;
            }),
            0);
  EXPECT_EQ(Logged(), (Entries{"one"}));
}

// --- Gathered -------------------------------------------------------------------------------------------------------

class GatheredLog : public LogCalls {
 protected:
  GatheredLog() { Corvane::SetLogFlush(LogFlush::Call); }
};

TEST_F(GatheredLog, IsWrittenWhenTheCallEnds) {
  {
    const LogCall call;
    Log("one");
    Log("two");
    EXPECT_FALSE(fs::exists(kLog));
  }
  EXPECT_EQ(Logged(), (Entries{"one", "two"}));
}

TEST_F(GatheredLog, ACallWithinACallIsPartOfIt) {
  {
    const LogCall outer;
    Log("one");
    {
      const LogCall inner;
      Log("two");
    }
    EXPECT_FALSE(fs::exists(kLog));
    Log("three");
  }
  EXPECT_EQ(Logged(), (Entries{"one", "two", "three"}));
}

TEST_F(GatheredLog, OutsideACallAnEntryIsInTheFileAtOnce) {
  const std::ptrdiff_t before = OpenFiles();
  Log("one");
  EXPECT_EQ(OpenFiles(), before);
  EXPECT_EQ(Logged(), (Entries{"one"}));
}

TEST_F(GatheredLog, LiesWhereTheCallEnds) {
  fs::create_directory("elsewhere");
  {
    const LogCall call;
    Log("one");
    fs::current_path("elsewhere");
    Log("two");
  }
  EXPECT_EQ(Logged(), Entries{});
  EXPECT_EQ(TextsOf(kLog), (Entries{"one", "two"}));
}

TEST_F(GatheredLog, FindsTheFileThatIsThereWhenTheCallEnds) {
  Log("before");
  {
    const LogCall call;
    Log("one");
    fs::rename(kLog, "moved.txt");
    Fill(kLog, "other file\n");
    Log("two");
  }
  EXPECT_EQ(TextsOf("moved.txt"), (Entries{"before"}));
  EXPECT_EQ(m_log.Bytes().substr(0, 11), "other file\n");
  EXPECT_EQ(m_log.Bytes().size(), 11 + 2 * (kStamp + 2 + 3 + 2));
}

TEST_F(GatheredLog, EachEntryHasItsOwnTime) {
  const char* const before = getenv("TZ");
  const std::string zone = before == nullptr ? "" : before;
  {
    const LogCall call;
    setenv("TZ", "UTC0", 1);
    Log("one");
    setenv("TZ", "EAST-5", 1);
    Log("two");
    setenv("TZ", "UTC0", 1);
  }
  if (before == nullptr) {
    unsetenv("TZ");
  } else {
    setenv("TZ", zone.c_str(), 1);
  }
  constexpr std::size_t kHour = 11;
  constexpr std::size_t kLength = kStamp + 2 + 3 + 2;
  const int first = std::stoi(m_log.Bytes().substr(kHour, 2));
  const int second = std::stoi(m_log.Bytes().substr(kLength + kHour, 2));
  EXPECT_TRUE((second - first + 24) % 24 == 5 || (second - first + 24) % 24 == 6) << first << " " << second;
}

TEST_F(GatheredLog, OfMoreThanTheMostIsHandedOverBefore) {
  const std::string text(100000, 'x');
  const LogCall call;
  constexpr std::size_t kEnough = Corvane::LogWriter::MostGathered / 100000;
  for (std::size_t entry = 0; entry < kEnough; ++entry) Log(text);
  EXPECT_FALSE(fs::exists(kLog));
  Log(text);
  EXPECT_TRUE(fs::exists(kLog));
}

TEST_F(GatheredLog, AnEntryOfMoreThanTheMostComesWhole) {
  {
    const LogCall call;
    Log("before");
    Log(std::string(5000000, 'x'));
  }
  ASSERT_EQ(Logged().size(), 2U);
  EXPECT_EQ(Logged()[1].size(), 5000000U);
}

TEST_F(GatheredLog, ATurnToEntryByEntryKeepsTheOrder) {
  const LogCall call;
  Log("one");
  Corvane::SetLogFlush(LogFlush::Entry);
  Log("two");
  EXPECT_EQ(Logged(), (Entries{"one", "two"}));
  Corvane::SetLogFlush(LogFlush::Call);
  Log("three");
  EXPECT_EQ(Logged(), (Entries{"one", "two"}));
}

TEST_F(GatheredLog, ThatCanNotBeWrittenIsLostAndTheNextCallTriesAgain) {
  fs::create_directory(kLog);
  {
    const LogCall call;
    Log("lost");
  }
  fs::remove(kLog);
  {
    const LogCall call;
    Log("found");
  }
  EXPECT_EQ(Logged(), (Entries{"found"}));
}

TEST_F(GatheredLog, AllOfItGoesThroughAPipe) {
  LogPipe pipe;
  std::atomic<bool> isWritten{false};
  std::string read;
  std::thread reader([&] { read = pipe.TakeUntil(isWritten); });
  {
    const LogCall call;
    for (int entry = 0; entry < 3; ++entry) Log(std::string(600000, 'x'));
  }
  isWritten = true;
  reader.join();
  EXPECT_EQ(read.size(), 3 * (kStamp + 2 + 600000 + 2));
}

// The child has one thread, which runs no call, and what the call has gathered is not the child's to write.
TEST_F(GatheredLog, AChildForkedInTheMiddleOfACallWritesItsOwnEntries) {
  {
    const LogCall call;
    Log("gathered");
    int code = -1;
    std::thread([&] {
      code = InChild([] {
        {
          const LogCall own;
          Log("one");
          Log("two");
        }
        return TextsOf(kLog) == Entries{"one", "two"} ? 0 : 1;
      });
    }).join();
    EXPECT_EQ(code, 0);
  }
  EXPECT_EQ(Logged(), (Entries{"one", "two", "gathered"}));
}

// --- Both -----------------------------------------------------------------------------------------------------------

class EitherLog : public LogCalls, public testing::WithParamInterface<LogFlush> {
 protected:
  EitherLog() { Corvane::SetLogFlush(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Flush, EitherLog, testing::Values(LogFlush::Entry, LogFlush::Call), [](const auto& test) {
  return std::string(test.param == LogFlush::Entry ? "Entry" : "Call");
});

TEST_P(EitherLog, IsInTheFileAfterAnException) {
  const std::ptrdiff_t before = OpenFiles();
  try {
    const LogCall call;
    Log("one");
    throw std::runtime_error("the call fails");
  } catch (const std::runtime_error&) {
    EXPECT_EQ(Logged(), (Entries{"one"}));
    EXPECT_EQ(OpenFiles(), before);
  }
}

/// The log as its rule tells it: an entry that finds more than 1000000 bytes starts it anew. The time of an entry stands
/// as so many blanks.
class Model {
 public:
  explicit Model(std::string content) : m_content(std::move(content)) {}
  void Append(const std::string& text) {
    if (m_content.size() > 1000000) {
      m_content.clear();
      m_stamps.clear();
    }
    m_stamps.push_back(m_content.size());
    m_content += std::string(kStamp + 2, ' ') + text + "\n\r";
  }
  /// The same of a file's content: the times of this log's entries blanked.
  std::string Blanked(std::string bytes) const {
    for (const std::size_t stamp : m_stamps) {
      if (stamp + kStamp <= bytes.size()) bytes.replace(stamp, kStamp, kStamp, ' ');
    }
    return bytes;
  }
  const std::string& Bytes() const { return m_content; }

 private:
  std::string m_content;
  std::vector<std::size_t> m_stamps;
};

TEST_P(EitherLog, KeepsTheSizeRuleEntryByEntry) {
  std::mt19937 chance(20261121);  // NOLINT(*-msc51-cpp): the same sizes each time
  const auto upTo = [&](std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(chance); };
  for (int round = 0; round < 40; ++round) {
    const std::string before(upTo(1100000), 'o');
    Fill(kLog, before);
    Model model(before);
    for (std::size_t calls = upTo(3) + 1; calls > 0; --calls) {
      const LogCall call;
      for (std::size_t entries = upTo(60); entries > 0; --entries) {
        // Mostly small ones; now and then one that fills the file by itself, or all that a call gathers.
        const std::size_t kind = upTo(99);
        const std::size_t most = kind < 60 ? 200 : kind < 95 ? 120000 : kind < 99 ? 1100000 : 5000000;
        const std::string text(upTo(most), static_cast<char>('a' + upTo(25)));
        Log(text);
        model.Append(text);
      }
    }
    ASSERT_TRUE(model.Blanked(Content(kLog)) == model.Bytes()) << "round " << round;
  }
}

TEST_P(EitherLog, KeepsTheSizeRuleAtItsEdge) {
  for (std::size_t before = 999990; before <= 1000010; ++before) {
    const std::string old(before, 'o');
    Fill(kLog, old);
    Model model(old);
    {
      const LogCall call;
      for (const char* const text : {"", "two", "three"}) {
        Log(text);
        model.Append(text);
      }
    }
    ASSERT_TRUE(model.Blanked(Content(kLog)) == model.Bytes()) << before;
  }
}

// A file that may only grow, as one that the superuser has marked so.
TEST_P(EitherLog, AFileThatCanNotBeEmptiedTakesWhatComesBeforeItWouldBe) {
  const int memory = memfd_create("log", MFD_ALLOW_SEALING);
  ASSERT_GE(memory, 0);
  ASSERT_EQ(ftruncate(memory, 999990), 0);
  ASSERT_EQ(fcntl(memory, F_ADD_SEALS, F_SEAL_SHRINK), 0);
  fs::create_symlink("/proc/self/fd/" + std::to_string(memory), kLog);
  {
    const LogCall call;
    Log("one");
    Log("lost");
    Log("lost");
  }
  EXPECT_EQ(m_log.Bytes().substr(999990 + kStamp), "  one\n\r");
  close(memory);
}

/// Latin-1 of a host that logs by itself while it converts a text with a question mark.
class LoggingCodec : public QTextCodec {
 public:
  QByteArray name() const override { return "x-logging"; }
  QList<QByteArray> aliases() const override { return {}; }
  int mibEnum() const override { return -4711; }

 protected:
  QString convertToUnicode(const char* text, int length, ConverterState* /*state*/) const override {
    return QString::fromLatin1(text, length);
  }
  QByteArray convertFromUnicode(const QChar* text, int length, ConverterState* /*state*/) const override {
    QByteArray converted = QString(text, length).toLatin1();
    if (!converted.contains('?')) return converted;
    Log("asked");
    return converted.replace('?', '!');
  }
};

TEST_P(EitherLog, AnEntryThatAHostsCodecMakesInTheMiddleOfAnotherComesBeforeIt) {
  LoggingCodec codec;
  QTextCodec* const usual = QTextCodec::codecForLocale();
  QTextCodec::setCodecForLocale(&codec);
  {
    const LogCall call;
    Log("one");
    Log("two?");
    Log(QStringLiteral("three?"));
    Log("four");
  }
  QTextCodec::setCodecForLocale(usual);
  EXPECT_EQ(Logged(), (Entries{"one", "asked", "two!", "asked", "three!", "four"}));
}

/// Lets the files of this process grow to so many bytes, as on a disk that is full then.
void LetFilesGrowTo(rlim_t size) {
  const struct rlimit limit { size, size };
  setrlimit(RLIMIT_FSIZE, &limit);
  signal(SIGXFSZ, SIG_IGN);
}

/// Three entries of 26, 26 and 28 bytes in one call.
int LogThreeWhileFilesGrowTo(rlim_t size) {
  return InChild([&] {
    LetFilesGrowTo(size);
    const LogCall call;
    for (const char* const text : {"one", "two", "three"}) Log(text);
    return 0;
  });
}

// Without room the file never gets longer than that from which it starts anew.
TEST_P(EitherLog, AFullDiskDoesNotStartTheFileAnew) {
  Fill(kLog, std::string(999990, 'o'));
  EXPECT_EQ(LogThreeWhileFilesGrowTo(999995), 0);
  EXPECT_EQ(fs::file_size(kLog), 999995U);
}

TEST_P(EitherLog, ADiskThatIsFullBehindTheLimitDoes) {
  Fill(kLog, std::string(999990, 'o'));
  EXPECT_EQ(LogThreeWhileFilesGrowTo(1000001), 0);
  EXPECT_EQ(Logged(), (Entries{"two", "three"}));
}

TEST_P(EitherLog, AFullDiskCutsTheEntryThatDoesNotFit) {
  EXPECT_EQ(LogThreeWhileFilesGrowTo(30), 0);
  EXPECT_EQ(fs::file_size(kLog), 30U);
}

/// Everything that stands in the logs of the current directory, moved ones included, in order of letters.
Entries EverywhereSorted() {
  Entries all;
  for (const auto& file : fs::directory_iterator(".")) {
    // The other process was ended between its link and its deletion: one file under two names.
    if (file.path().filename() == kLog && file.hard_link_count() > 1) continue;
    const Entries texts = TextsOf(file.path());
    all.insert(all.end(), texts.begin(), texts.end());
  }
  std::sort(all.begin(), all.end());
  return all;
}

/// Logs so many entries, twenty in a call, as "name 0" and so on.
void LogMany(const std::string& name, int count) {
  for (int entry = 0; entry < count;) {
    const LogCall call;
    for (int inCall = 0; inCall < 20; ++inCall, ++entry) Log(name.c_str(), " ", std::to_string(entry));
  }
}

Entries Many(const std::vector<std::string>& names, int count) {
  Entries all;
  for (const std::string& name : names) {
    for (int entry = 0; entry < count; ++entry) all.push_back(name + " " + std::to_string(entry));
  }
  std::sort(all.begin(), all.end());
  return all;
}

TEST_P(EitherLog, TwoProcessesLoseNothing) {
  constexpr int kEntries = 6000;
  const pid_t child = fork();
  if (child == 0) {
    LogMany("child", kEntries);
    _exit(0);
  }
  LogMany("parent", kEntries);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(EverywhereSorted() == Many({"child", "parent"}, kEntries));
}

TEST_P(EitherLog, ThreadsLoseNothing) {
  constexpr int kEntries = 4000;
  std::thread other([] { LogMany("other", kEntries); });
  std::thread outside([] {
    for (int entry = 0; entry < kEntries; ++entry) Log("outside", " ", std::to_string(entry));
  });
  LogMany("this", kEntries);
  other.join();
  outside.join();
  EXPECT_TRUE(EverywhereSorted() == Many({"other", "outside", "this"}, kEntries));
}

TEST_P(EitherLog, WhileAnotherProcessMovesItEveryEntryIsInOneOfTheFiles) {
  const std::vector<std::string> sales = {"a", "b", "c", "d", "e", "f", "g", "h"};
  {
    const Corvane::Testing::LogMover mover;
    for (const std::string& sale : sales) {
      LogMany(sale, 2500);
      ASSERT_TRUE(mover.HasMovedAll());
    }
  }
  EXPECT_TRUE(EverywhereSorted() == Many(sales, 2500));
}

}  // namespace
