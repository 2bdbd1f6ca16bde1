// What the contracts cost at the least, beside what the engine pays: a log entry against the bare system calls and
// against the file class of Qt; a sale in and out against TinyXML alone. With real baskets, if a file of them is given:
//
//   qncorvane_floor_bench [BASKETS.csv] [--m_benchmark...]
//
// The log is written in a folder of its own, which goes away at the end.

#include <QDateTime>
#include <QFile>
#include <QTextStream>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <tinyxml.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/CalcPromotion.h"
#include "engine/SaleCalls.h"
#include "log/Log.h"

namespace {

constexpr const char* kEntry = "促销优惠类型：2";

void LogEntry(benchmark::State& state) {
  for (auto _ : state) Corvane::Log(kEntry);
}
BENCHMARK(LogEntry);

/// The floor: open, look at the size, write, close.
void LogEntryFloor(benchmark::State& state) {
  const std::string entry = std::string("2026-11-21 10:00:00  ") + kEntry + "\n\r";
  for (auto _ : state) {
    const int file = open("Floor.txt", O_WRONLY | O_APPEND | O_CREAT, 0666);
    struct stat size {};
    if (fstat(file, &size) == 0 && size.st_size > 1000000 && ftruncate(file, 0) != 0)
      state.SkipWithError("no truncation");
    if (write(file, entry.data(), entry.size()) < 0) state.SkipWithError("no write");
    close(file);
  }
}
BENCHMARK(LogEntryFloor);

/// The rival: the same steps with the file, stream and date classes of Qt.
void LogEntryByQt(benchmark::State& state) {
  for (auto _ : state) {
    QFile file("Qt.txt");
    const bool overfull = file.size() > 1000000;
    file.open(overfull ? QIODevice::WriteOnly | QIODevice::Truncate : QIODevice::Append | QIODevice::Text);
    QTextStream stream(&file);
    stream << QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm:ss") + "  " + QString::fromUtf8(kEntry) + "\n\r";
  }
}
BENCHMARK(LogEntryByQt);

std::string SaleOf(const std::vector<std::string>& lines) {
  std::string sale = R"(<Sale OrgCode="S01" BillNo="B1" IsCalc="0"><Plu>)";
  for (const std::string& line : lines) sale += line;
  return sale + "</Plu></Sale>";
}

std::string Line(int serialNo, const std::string& code, const std::string& price, double count) {
  const double total = std::atof(price.c_str()) * count;
  return "<D SerialNo=\"" + std::to_string(serialNo) + "\" PluCode=\"" + code + "\" Price=\"" + price +
         "\" PluCount=\"" + std::to_string(count) + "\" Total=\"" + std::to_string(total) +
         "\" PackCnt=\"1\" CAT=\"C1\" BRD=\"B1\" SaleDate=\"2026-11-21\" SaleTime=\"10:00:00\" PluID=\"1\" "
         "ClsId=\"2\"/>";
}

std::string SaleOfLines(std::int64_t count) {
  std::vector<std::string> lines;
  for (int serialNo = 1; serialNo <= count; ++serialNo) {
    lines.push_back(Line(serialNo, "P" + std::to_string(serialNo), "9.90", 2));
  }
  return SaleOf(lines);
}

std::vector<char> result(std::size_t{16} << 20U);
std::vector<char> message(1024);

/// A calculation without rules: read, merge, reset, write, with the log entries of the frame.
void SaleInAndOut(benchmark::State& state) {
  const std::string sale = SaleOfLines(state.range(0));
  for (auto _ : state) Corvane::CalcPromotion("till", "All", sale.c_str(), result.data(), message.data());
  Corvane::DeleteSaleSetByKey("till");
}
BENCHMARK(SaleInAndOut)->Arg(1)->Arg(10)->Arg(100)->Arg(1000);

/// The floor: TinyXML parses the sale and prints it.
void SaleThroughTinyXml(benchmark::State& state) {
  const std::string sale = SaleOfLines(state.range(0));
  for (auto _ : state) {
    TiXmlDocument document;
    document.Parse(sale.c_str());
    TiXmlPrinter printer;
    document.Accept(&printer);
    benchmark::DoNotOptimize(printer.CStr());
  }
}
BENCHMARK(SaleThroughTinyXml)->Arg(1)->Arg(10)->Arg(100)->Arg(1000);

/// The fields of a line of comma-separated values; a field in double quotes may hold commas.
std::vector<std::string> FieldsOf(std::string_view line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (const char letter : line) {
    if (letter == '"') {
      quoted = !quoted;
    } else if (letter == ',' && !quoted) {
      fields.emplace_back();
    } else if (letter != '\r') {
      fields.back() += letter;
    }
  }
  return fields;
}

/// One sale per invoice: the columns are number, goods, description, quantity, date and unit price. What was taken back
/// (a quantity below 0) is left out.
std::vector<std::string> SalesOf(const char* path) {
  std::vector<std::pair<std::string, std::vector<std::string>>> invoices;
  std::ifstream file(path);
  std::string text;
  std::getline(file, text);
  while (std::getline(file, text)) {
    const std::vector<std::string> fields = FieldsOf(text);
    if (fields.size() < 6 || std::atof(fields[3].c_str()) <= 0) continue;
    if (invoices.empty() || invoices.back().first != fields[0])
      invoices.emplace_back(fields[0], std::vector<std::string>());
    std::vector<std::string>& lines = invoices.back().second;
    lines.push_back(Line(static_cast<int>(lines.size()) + 1, fields[1], fields[5], std::atof(fields[3].c_str())));
  }
  std::vector<std::string> sales;
  sales.reserve(invoices.size());
  for (const auto& invoice : invoices) sales.push_back(SaleOf(invoice.second));
  return sales;
}

void RegisterBaskets(const char* path) {
  const std::vector<std::string> sales = SalesOf(path);
  benchmark::RegisterBenchmark("RealBaskets", [sales](benchmark::State& state) {
    for (auto _ : state) {
      for (const std::string& sale : sales) {
        Corvane::CalcPromotion("till", "All", sale.c_str(), result.data(), message.data());
        Corvane::DeleteSaleSetByKey("till");
      }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(sales.size()));
  });
}

/// A folder to write in, gone at the end.
class WorkFolder {
 public:
  WorkFolder() : m_path(std::filesystem::temp_directory_path() / ("qncorvane-bench-" + std::to_string(getpid()))) {
    std::filesystem::create_directory(m_path);
    std::filesystem::current_path(m_path);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }

 private:
  std::filesystem::path m_path;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc == 2) RegisterBaskets(argv[1]);
  const WorkFolder folder;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
