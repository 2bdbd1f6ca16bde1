#ifndef QNCORVANE_BENCH_RECORDING_H
#define QNCORVANE_BENCH_RECORDING_H

#include <cstddef>
#include <string_view>

/// A recording: what an engine asked of the world in one pass of a workload, event by event. Each is a line with its
/// letter and the length of its text, then the text, then a newline.

/// The letter of an event.
namespace Bench::Event {
constexpr char kStatement = 'S';  ///< a statement, with its values, as the database ran it
constexpr char kLogEntry = 'L';   ///< what one write put into the log
constexpr char kXmlIn = 'I';      ///< an XML text that went into the engine
constexpr char kXmlOut = 'O';     ///< a result that came out
}  // namespace Bench::Event

/// The recorder's side, bench/Recorder.cpp. A program that runs without the recorder finds null pointers here.
extern "C" {
[[gnu::weak]] void BenchRecordEvent(char event, const char* text, std::size_t length);
[[gnu::weak]] void BenchRecordNow(bool on);
}

namespace Bench {

/// Records an event where a recorder stands by.
inline void Record(char event, std::string_view text) {
  if (BenchRecordEvent != nullptr) BenchRecordEvent(event, text.data(), text.size());
}

/// Starts or ends the recording where a recorder stands by.
inline void RecordNow(bool on) {
  if (BenchRecordNow != nullptr) BenchRecordNow(on);
}

}  // namespace Bench

#endif
