// The plain floor: does what a recording tells and nothing else. Each statement is prepared, stepped through all rows
// with all columns read, and finalized; each log entry opens the file, looks at its size, writes and closes; each XML
// text that went in is parsed, each that came out printed, both by TinyXML. No engine can do the same things the same
// way for less; what it takes beyond that is its own.
//
//   floor WORLD RECORDING --times N    tells what a pass costs: the median of N, behind one that warms up
//   floor WORLD RECORDING --serve      answers what the standard input asks: bench/Passes.h
//
// WORLD is a folder of bench/worlds.py, or a copy of one; RECORDING is of bench/Recorder.cpp.

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <tinyxml.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/Calls.h"
#include "bench/Passes.h"
#include "bench/Recording.h"

namespace {

constexpr const char* kLog = "QnCorvane.txt";
constexpr off_t kLargestLog = 1000000;

/// One thing that the recorded engine did. A result stands ready as a document: making it is the engine's own work.
struct Step {
  char Event;
  std::string Text;
  std::unique_ptr<TiXmlDocument> Result;
};

/// What is read, summed up, so that no compiler leaves the reading out.
std::size_t seen = 0;

std::vector<Step> StepsOf(const std::vector<Bench::Call>& recording) {
  std::vector<Step> steps;
  for (const Bench::Call& event : recording) {
    Step step{event.Name.front(), event.Texts.at(0), nullptr};
    if (step.Event == Bench::Event::kXmlOut) {
      step.Result = std::make_unique<TiXmlDocument>();
      step.Result->Parse(step.Text.c_str());
    }
    steps.push_back(std::move(step));
  }
  return steps;
}

sqlite3* OpenStore() {
  sqlite3* store = nullptr;
  if (sqlite3_open_v2("store.db", &store, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) Bench::Fail("no store");
  return store;
}

void ReadColumn(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
      seen += static_cast<std::size_t>(sqlite3_column_int64(statement, column));
      break;
    case SQLITE_FLOAT:
      seen += sqlite3_column_double(statement, column) > 0 ? 1 : 0;
      break;
    case SQLITE_NULL:
      break;
    default:
      sqlite3_column_text(statement, column);
      seen += static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
  }
}

void RunStatement(sqlite3* store, const std::string& text) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(store, text.data(), static_cast<int>(text.size()), &statement, nullptr) != SQLITE_OK) {
    Bench::Fail(sqlite3_errmsg(store));
  }
  while (sqlite3_step(statement) == SQLITE_ROW) {
    for (int column = 0; column < sqlite3_column_count(statement); ++column) ReadColumn(statement, column);
  }
  if (sqlite3_finalize(statement) != SQLITE_OK) Bench::Fail(sqlite3_errmsg(store));
}

void WriteEntry(const std::string& entry) {
  const int file = open(kLog, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  struct stat state {};
  if (fstat(file, &state) != 0) Bench::Fail("no log");
  if (state.st_size > kLargestLog && ftruncate(file, 0) != 0) Bench::Fail("the log can't start over");
  if (write(file, entry.data(), entry.size()) < 0) Bench::Fail("the log can't be written");
  close(file);
}

void Parse(const std::string& xml) {
  TiXmlDocument document;
  document.Parse(xml.c_str());
  seen += document.NoChildren() ? 1 : 0;
}

void Print(const TiXmlDocument& document) {
  TiXmlPrinter printer;
  document.Accept(&printer);
  seen += printer.Size();
}

void Do(const Step& step, sqlite3* store) {
  switch (step.Event) {
    case Bench::Event::kStatement:
      return RunStatement(store, step.Text);
    case Bench::Event::kLogEntry:
      return WriteEntry(step.Text);
    case Bench::Event::kXmlIn:
      return Parse(step.Text);
    default:
      return Print(*step.Result);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() < 3) Bench::Fail("floor WORLD RECORDING --times N | --serve");
  const std::vector<Step> steps = StepsOf(Bench::ReadCalls(words[1]));
  std::filesystem::current_path(words[0]);
  sqlite3* const store = OpenStore();
  const Bench::Passes passes{[&] {
                               for (const Step& step : steps) Do(step, store);
                             },
                             [] {}, [] { return std::size_t{0}; }};
  if (words[2] == "--serve") {
    Bench::Serve(passes);
  } else {
    Bench::Tell(passes, words.size() > 3 ? std::atoll(words[3].c_str()) : 1);
  }
  sqlite3_close(store);
  return 0;
}
