// A log that can't be written, or that another process takes away at any moment: the sale doesn't know of it, the call
// doesn't wait, and the log goes on when it can.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <qncorvane/qncorvane.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>

#include "tests/robust/LogCallWatch.h"
#include "tests/robust/WholeShop.h"
#include "tests/support/LogPipe.h"

namespace Corvane::Testing {
namespace {

using std::chrono::steady_clock;
using ::testing::ElementsAre;

namespace fs = std::filesystem;

constexpr const char* kLog = "QnCorvane.txt";
constexpr std::size_t kEntriesOfASale = 19;

/// A till in a process of its own, whose log is flushed in one of the two ways.
class LogFaults : public FreshTill, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    FreshTill::SetUp();
    fs::remove(Directory() + "/store.db");
    MakeTables();
    Put({DirectRow("X1", 1, "COLA").Price("8")});
    WriteSettings("SQLITE", Directory() + "/store.db");
    std::ofstream("config.ini", std::ios::app) << "[Log]\nFlush=" << GetParam() << "\n";
  }

  static void LoadCola() {
    EXPECT_EQ(BeginInitPro(), 0);
    EXPECT_EQ(Load("PTXS", RuleXml("X1", "PTXS")).Code, 0);
    FinishInitPro();
    TakeLog();
  }

  /// A sale with the one discount that there is, in less time than anybody notices.
  static void ExpectASale(const std::string& key = "till") {
    const auto start = steady_clock::now();
    const Answer sale = Calc(key, "All", SaleXml(LineXml(1, "COLA", "10", "3", "30")));
    EXPECT_LT(std::chrono::duration<double>(steady_clock::now() - start).count(), 2);
    EXPECT_EQ(sale.Code, 0);
    EXPECT_EQ(sale.Msg, "sucess");
    EXPECT_THAT(LinesOf(sale.Out), ElementsAre("1 COLA 3.00 x 10.00 = 24.00"));
  }

  static void ExpectTheLogGoesOn() {
    ExpectASale();
    EXPECT_EQ(TakeLog().size(), kEntriesOfASale);
  }

  /// Two sales with the fault in the log's place, and one without.
  static void ExpectToStand(const std::function<void()>& strike) {
    LoadCola();
    ExpectTheLogGoesOn();
    strike();
    ExpectASale();
    ExpectASale("second");
    fs::remove_all(kLog);
    ExpectTheLogGoesOn();
  }
};

INSTANTIATE_TEST_SUITE_P(Flush, LogFaults, ::testing::Values("entry", "call"),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(LogFaults, ADirectoryInItsPlace) {
  InFreshProcess([] { ExpectToStand([] { fs::create_directory(kLog); }); });
}

TEST_P(LogFaults, ADeviceThatIsFull) {
  InFreshProcess([] { ExpectToStand([] { fs::create_symlink("/dev/full", kLog); }); });
}

TEST_P(LogFaults, ALinkToItself) {
  InFreshProcess([] { ExpectToStand([] { fs::create_symlink(kLog, kLog); }); });
}

TEST_P(LogFaults, APipeThatNobodyReads) {
  InFreshProcess([] { ExpectToStand([] { ASSERT_EQ(mkfifo(kLog, 0600), 0); }); });
}

TEST_P(LogFaults, APipeThatIsRead) {
  InFreshProcess([] {
    LoadCola();
    LogPipe pipe;
    ExpectASale();
    EXPECT_EQ(EntriesIn(pipe.Take()), kEntriesOfASale);
    fs::remove(kLog);
    ExpectTheLogGoesOn();
  });
}

TEST_P(LogFaults, APipeThatIsFull) {
  InFreshProcess([] {
    LoadCola();
    LogPipe pipe;
    {
      const int end = open(kLog, O_WRONLY | O_NONBLOCK);
      const std::string kilobytes(4096, 'x');
      while (write(end, kilobytes.data(), kilobytes.size()) > 0) {
      }
      close(end);
    }
    ExpectASale();
    ExpectASale("second");
    EXPECT_EQ(EntriesIn(pipe.Take()), 0U);
    ExpectASale();
    EXPECT_EQ(EntriesIn(pipe.Take()), kEntriesOfASale);
    fs::remove(kLog);
    ExpectTheLogGoesOn();
  });
}

// Its signal would end the process.
TEST_P(LogFaults, APipeWhoseReaderLeavesAtAnyMoment) {
  InFreshProcess([] {
    LoadCola();
    int calls = 0;
    for (int moment = -1; moment < calls; ++moment) {
      LogPipe pipe;
      const LogCallWatch watch([&](int number) {
        if (number == moment) pipe.Leave();
      });
      ExpectASale();
      calls = std::max(calls, watch.Count());
    }
    EXPECT_GT(calls, 2);
    fs::remove(kLog);
    ExpectTheLogGoesOn();
  });
}

TEST_P(LogFaults, AFileOverTheHostsOwnLimit) {
  InFreshProcess([] {
    LoadCola();
    const rlimit small{300, RLIM_INFINITY};
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    ExpectASale();
    ExpectASale("second");
    EXPECT_EQ(fs::file_size(kLog), 300U);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    fs::remove(kLog);
    ExpectTheLogGoesOn();
  });
}

// The signals that writing brings are the host's again behind it.
TEST_P(LogFaults, LeavesTheHostsSignalsAsTheyWere) {
  InFreshProcess([] {
    LoadCola();
    const LogPipe pipe;
    sigset_t held{};
    sigemptyset(&held);
    sigaddset(&held, SIGPIPE);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &held, nullptr), 0);
    raise(SIGPIPE);
    ExpectASale();
    sigset_t now{};
    sigpending(&now);
    EXPECT_EQ(sigismember(&now, SIGPIPE), 1);
    EXPECT_EQ(sigismember(&now, SIGXFSZ), 0);
    pthread_sigmask(SIG_BLOCK, nullptr, &now);
    EXPECT_EQ(sigismember(&now, SIGPIPE), 1);
    EXPECT_EQ(sigismember(&now, SIGXFSZ), 0);
  });
}

TEST_P(LogFaults, AFileOverItsLimitStartsAnew) {
  InFreshProcess([] {
    LoadCola();
    std::ofstream(kLog, std::ios::binary) << std::string(1000001, 'x');
    ExpectTheLogGoesOn();
  });
}

// --- Another process at every moment ---------------------------------------------------------------------------------

struct Rotation {
  const char* Name;
  std::function<void(const std::string& kept)> Rotate;
};

std::string BytesOfAll(const std::string& beginning) {
  std::string all;
  for (const auto& file : fs::directory_iterator(".")) {
    if (file.path().filename().string().rfind(beginning, 0) == 0) all += BytesOf(file.path().string());
  }
  return all;
}

TEST_P(LogFaults, RotationAtAnyMomentLosesNoEntry) {
  InFreshProcess([] {
    LoadCola();
    const std::vector<Rotation> rotations = {
        {"renamed", [](const std::string& kept) { std::rename(kLog, kept.c_str()); }},
        {"linked and deleted",
         [](const std::string& kept) {
           if (link(kLog, kept.c_str()) == 0) unlink(kLog);
         }},
        {"replaced",
         [](const std::string& kept) {
           if (std::rename(kLog, kept.c_str()) == 0) WriteBytes(kLog, "");
         }},
        {"renamed twice",
         [](const std::string& kept) {
           std::rename(kLog, kept.c_str());
           WriteBytes(kLog, "");
           std::rename(kLog, (kept + "+").c_str());
         }},
    };
    for (const Rotation& rotation : rotations) {
      int calls = 0;
      for (int moment = -1; moment < calls; ++moment) {
        for (const auto& file : fs::directory_iterator(".")) {
          if (file.path().filename() != "config.ini") fs::remove(file.path());
        }
        const LogCallWatch watch([&](int number) {
          if (number == moment) rotation.Rotate("kept");
        });
        ExpectASale();
        calls = std::max(calls, watch.Count());
        EXPECT_EQ(EntriesIn(BytesOfAll("kept") + BytesOfAll(kLog)), kEntriesOfASale)
            << rotation.Name << " at " << moment;
      }
      EXPECT_GE(calls, std::string(GetParam()) == "entry" ? 2 * static_cast<int>(kEntriesOfASale) : 3);
    }
  });
}

TEST_P(LogFaults, AFileDeletedAtAnyMomentCostsNoMoreThanWasInIt) {
  InFreshProcess([] {
    LoadCola();
    int calls = 0;
    for (int moment = -1; moment < calls; ++moment) {
      {
        const LogCallWatch watch([&](int number) {
          if (number == moment) unlink(kLog);
        });
        ExpectASale();
        calls = std::max(calls, watch.Count());
      }
      EXPECT_LE(TakeLog().size(), kEntriesOfASale);
      ExpectTheLogGoesOn();
    }
    EXPECT_GT(calls, 2);
  });
}

// --- File systems of its own -----------------------------------------------------------------------------------------

/// A file system in memory, in a view of the files that only this process has.
class OwnFiles {
 public:
  static bool IsAllowed() {
    const pid_t child = fork();
    if (child == 0) _exit(Mount() ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
  }

  /// Makes the current directory one of 64 kB.
  static bool Mount() {
    const std::string here = fs::current_path().string();
    const std::string settings = BytesOf("config.ini");
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", here.c_str(), "tmpfs", 0, "size=64k") != 0) {
      return false;
    }
    fs::current_path(here);
    WriteBytes("config.ini", settings);
    return true;
  }

  static void MakeReadOnly(bool is) {
    const unsigned long readOnly = is ? MS_RDONLY : 0;
    ASSERT_EQ(mount("none", fs::current_path().c_str(), "tmpfs", MS_REMOUNT | readOnly, "size=64k"), 0);
  }
};

class LogFileSystems : public LogFaults {
 protected:
  void SetUp() override {
    LogFaults::SetUp();
    if (!OwnFiles::IsAllowed()) GTEST_SKIP() << "this user may not mount file systems";
  }
};

INSTANTIATE_TEST_SUITE_P(Flush, LogFileSystems, ::testing::Values("entry", "call"),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(LogFileSystems, ThatAreReadOnly) {
  InFreshProcess([] {
    ASSERT_TRUE(OwnFiles::Mount());
    LoadCola();
    ExpectASale();
    const std::string before = BytesOf(kLog);
    OwnFiles::MakeReadOnly(true);
    ExpectASale();
    ExpectASale("second");
    EXPECT_EQ(BytesOf(kLog), before);
    OwnFiles::MakeReadOnly(false);
    fs::remove(kLog);
    OwnFiles::MakeReadOnly(true);
    ExpectASale();
    EXPECT_FALSE(fs::exists(kLog));
    OwnFiles::MakeReadOnly(false);
    ExpectTheLogGoesOn();
  });
}

TEST_P(LogFileSystems, WithTheFileAloneReadOnly) {
  InFreshProcess([] {
    ASSERT_TRUE(OwnFiles::Mount());
    LoadCola();
    ExpectASale();
    const std::string log = (fs::current_path() / kLog).string();
    ASSERT_EQ(mount(log.c_str(), log.c_str(), nullptr, MS_BIND, nullptr), 0);
    ASSERT_EQ(mount(nullptr, log.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    const std::string before = BytesOf(kLog);
    ExpectASale();
    ExpectASale("second");
    EXPECT_EQ(BytesOf(kLog), before);
    ASSERT_EQ(umount(log.c_str()), 0);
    TakeLog();
    ExpectTheLogGoesOn();
  });
}

TEST_P(LogFileSystems, ThatAreFull) {
  InFreshProcess([] {
    ASSERT_TRUE(OwnFiles::Mount());
    LoadCola();
    std::ofstream("filling", std::ios::binary) << std::string(100000, 'x');
    ExpectASale();
    ExpectASale("second");
    EXPECT_EQ(fs::file_size(kLog), 0U);
    fs::remove("filling");
    ExpectTheLogGoesOn();
  });
}

// At every size of what is left: the entry that doesn't fit is cut or lost, and those behind it.
TEST_P(LogFileSystems, ThatBecomeFullInTheMiddleOfASale) {
  InFreshProcess([] {
    ASSERT_TRUE(OwnFiles::Mount());
    LoadCola();
    for (std::size_t left = 0; left < 3 * 4096; left += 512) {
      fs::remove(kLog);
      fs::remove("filling");
      // The log begins in the last pages, which it shares with nothing.
      std::ofstream(kLog, std::ios::binary) << std::string(4096 - left % 4096, 'o');
      std::ofstream("filling", std::ios::binary) << std::string(100000, 'x');
      ExpectASale();
      const std::string cut = BytesOf(kLog);
      EXPECT_LE(cut.size(), 4096U);
      fs::remove("filling");
      ExpectASale("second");
      EXPECT_EQ(EntriesIn(BytesOf(kLog).substr(cut.size())), kEntriesOfASale);
    }
  });
}

}  // namespace
}  // namespace Corvane::Testing
