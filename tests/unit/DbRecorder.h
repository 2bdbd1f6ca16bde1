#ifndef QNCORVANE_TESTS_UNIT_DBRECORDER_H
#define QNCORVANE_TESTS_UNIT_DBRECORDER_H

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QtGlobal>
#include <chrono>
#include <string>
#include <vector>

namespace dbtest {

/** What the recording driver was asked for, and what it is to answer: one script for all its connections. */
struct Recorder {
  std::vector<std::string> Events;     ///< Everything that came to the driver, in order.
  QString OpenError;                   ///< Not empty: opening fails with this text.
  bool Transactions = false;           ///< Whether the driver claims to have transactions.
  QString StatementError;              ///< Not empty: each statement fails with this text.
  std::chrono::milliseconds Takes{0};  ///< How long each statement takes, by the clock that stands still.
  QString PrepareError;                ///< Not empty: each preparation fails with this text.
  bool Throws = false;                 ///< Whether each statement and each opening throws.
  QMap<int, QVariant> OutValues;       ///< What the server puts into arguments, by position from 0.
  QStringList Columns;                 ///< Column names of every result.
  QList<QVariantList> Rows;            ///< Rows of every result.
};

/** The one script. */
Recorder& TheRecorder();

/** @return the events since the last call. */
std::vector<std::string> TakeEvents();

/**
 * Puts the recording driver in the place of a Qt driver, with an empty script, for the life of this object. The clock
 * by which connections are trusted stands still meanwhile.
 */
class RecordingDriver {
 public:
  explicit RecordingDriver(const QString& name);
  ~RecordingDriver();
  RecordingDriver(const RecordingDriver&) = delete;
  RecordingDriver& operator=(const RecordingDriver&) = delete;

 private:
  QString m_name;
};

/** Moves the clock on. */
void Advance(std::chrono::milliseconds time);

/** Moves the clock on by what no connection is trusted for. */
void RestForAServersRestart();

/** Counts what Qt says on its message channel among the events, for the life of this object. */
class QtMessagesAsEvents {
 public:
  QtMessagesAsEvents();
  ~QtMessagesAsEvents();
  QtMessagesAsEvents(const QtMessagesAsEvents&) = delete;
  QtMessagesAsEvents& operator=(const QtMessagesAsEvents&) = delete;

 private:
  QtMessageHandler m_before;
};

}  // namespace dbtest

#endif
