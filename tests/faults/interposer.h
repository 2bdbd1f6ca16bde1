/* The file calls of the system, as everything in the program makes them (the log, Qt's settings, the database): counted,
 * and made to fail at will where they mean a file below the directory in which the program began. */
#ifndef QNCORVANE_TESTS_FAULTS_INTERPOSER_H
#define QNCORVANE_TESTS_FAULTS_INTERPOSER_H

#ifdef __cplusplus
extern "C" {
#endif

/* In place of an error number: a read or write moves only a half of what it was asked for, and a call of another kind
 * works. */
enum { kHalfOfIt = -1 };

/* Learns the directory below which the files are meant. */
void WatchCurrentDirectory(void);

/* From now on `granted` calls work as ever and the one behind them fails with the error number; with `all_behind` all
 * that follow fail, too. */
void FailAfter(long granted, int error, int all_behind);

/* A signal arrives in the call behind `granted` ones; with `all_behind` in all that follow, too. It breaks the first off,
 * and then one in five, with EINTR, where a signal may do so. */
void SignalAfter(long granted, int signal_number, int all_behind);

/* Lets all calls work again. Returns the number of calls that failed or were met by a signal. */
long EndFailures(void);

/* The calls so far that meant a file below the directory. */
long SystemCalls(void);

/* The name of the call that failed last; "" when none did. */
const char* LastFailed(void);

#ifdef __cplusplus
}
#endif

#endif
