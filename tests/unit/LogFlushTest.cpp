// How "config.ini" says when the log is flushed.
#include "log/LogFlush.h"

#include <gtest/gtest.h>

#include <string>

#include "db/Settings.h"
#include "tests/unit/DbStore.h"

using Corvane::CurrentLogFlush;
using Corvane::LogFlush;

namespace {

class LogFlushSetting : public testing::Test {
 protected:
  ~LogFlushSetting() override { Corvane::SetLogFlush(LogFlush::Entry); }

  /// What holds after settings with this content were read.
  LogFlush After(const QByteArray& content) {
    dbtest::Store::Write(QStringLiteral("config.ini"), content);
    Corvane::ReadSettings();
    return CurrentLogFlush();
  }

  dbtest::Store m_store;
};

TEST_F(LogFlushSetting, IsEntryUnlessTold) {
  EXPECT_EQ(CurrentLogFlush(), LogFlush::Entry);
  EXPECT_EQ(After("[DataBase]\nDbType=SQLITE\n"), LogFlush::Entry);
}

TEST_F(LogFlushSetting, IsCallInAnyLetterCase) {
  EXPECT_EQ(After("[Log]\nFlush=call\n"), LogFlush::Call);
  EXPECT_EQ(After("[DataBase]\nDbType=SQLITE\n[Log]\nFlush=Call\n"), LogFlush::Call);
  EXPECT_EQ(After("[Log]\nFlush = CALL \n"), LogFlush::Call);
}

TEST_F(LogFlushSetting, IsEntryForEverythingElse) {
  for (const char* const value : {"entry", "Entry", "calls", "call,call", "", "1", "\"call \""}) {
    Corvane::SetLogFlush(LogFlush::Call);
    EXPECT_EQ(After(QByteArray("[Log]\nFlush=") + value + "\n"), LogFlush::Entry) << value;
  }
}

TEST_F(LogFlushSetting, IsNotFoundUnderAnotherSpelling) {
  EXPECT_EQ(After("[log]\nFlush=call\n"), LogFlush::Entry);
  EXPECT_EQ(After("[Log]\nflush=call\n"), LogFlush::Entry);
  EXPECT_EQ(After("[DataBase]\nFlush=call\n"), LogFlush::Entry);
}

TEST_F(LogFlushSetting, IsFoundBesideAGroupWithinItsGroup) {
  EXPECT_EQ(After("[Log]\nFlush=call\n[Log\\Archive]\nFlush=entry\n"), LogFlush::Call);
  EXPECT_EQ(After("[Log/Archive]\nFlush=entry\n[Log]\nFlush=call\n"), LogFlush::Call);
}

TEST_F(LogFlushSetting, IsEntryAgainWithoutTheFile) {
  EXPECT_EQ(After("[Log]\nFlush=call\n"), LogFlush::Call);
  QFile::remove(QStringLiteral("config.ini"));
  Corvane::ReadSettings();
  EXPECT_EQ(CurrentLogFlush(), LogFlush::Entry);
}

}  // namespace
