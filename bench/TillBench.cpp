// How long a till waits for each call, with the rules, rows and sales of the sample store.
//
//   qncorvane_bench STORE SALES [--m_benchmark...]
//
// STORE is a folder with config.ini, rules/ and the database; SALES is samples/sales. The log is written as at a till,
// to STORE/QnCorvane.txt. Calls of one sale go under one key, as at a till that calculates the subtotal again and
// again.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"

namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (file) return {std::istreambuf_iterator<char>(file), {}};
  std::fprintf(stderr, "qncorvane_bench: no %s\n", path.c_str());
  std::exit(1);
}

/// A call that fails ends the run: there is nothing to time in it.
void Require(int code, const std::string& what) {
  if (code == 0) return;
  std::fprintf(stderr, "qncorvane_bench: %s answers %d\n", what.c_str(), code);
  std::exit(1);
}

/// The type word of a rule file is the first part of its name, but for a rule that gives coupons.
void LoadRule(const std::filesystem::path& path) {
  const std::string xml = ReadFile(path);
  const std::string word = path.filename().string().substr(0, 4);
  std::vector<char> message(xml.size() + 1024);
  Require(InitPromotion(word == "MZZQ" ? "MZYQ" : word.c_str(), xml.c_str(), message.data()), path.string());
}

std::vector<std::filesystem::path> RuleFiles() {
  const std::filesystem::directory_iterator files("rules");
  std::vector<std::filesystem::path> paths(begin(files), end(files));
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::array<char, std::size_t{1} << 20U> result;
std::array<char, 1024> message;

void Calculate(const char* key, const char* mode, const std::string& sale) {
  Require(CalcPromotion(key, mode, sale.c_str(), result.data(), message.data()), mode);
}

/// Registers one mode on one sale; `before` runs untimed ahead of each call when it is not empty.
void Register(const std::string& name, const char* mode, const std::string& sale, const std::string& before = {}) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    for (auto _ : state) {
      if (!before.empty()) {
        state.PauseTiming();
        Calculate(name.c_str(), "All", before);
        state.ResumeTiming();
      }
      Calculate(name.c_str(), mode, sale);
    }
    DeleteSaleSetByKey(name.c_str());
  });
}

void RegisterAll(const std::filesystem::path& sales) {
  const std::string header = "<Sale BillNo=\"S-1\" OrgCode=\"01\" IsCalc=\"0\"/>";
  const std::string week = ReadFile(sales / "weekly-shop.xml");
  const std::string till = ReadFile(sales / "till" / "4-subtotal.xml");
  Register("Single/one_line", "Single", ReadFile(sales / "till" / "3-scan-orange-juice.xml"));
  Register("All/6_lines", "All", ReadFile(sales / "basket.xml"));
  Register("All/15_lines", "All", week);
  Register("Union/15_lines", "Union", week);
  Register("Zh/15_lines", "Zh", week);
  Register("MzPromotion/7_lines", "MzPromotion", header, till);
  const std::vector<std::filesystem::path> rules = RuleFiles();
  benchmark::RegisterBenchmark("InitPromotion/replace_all_rules", [rules](benchmark::State& state) {
    for (auto _ : state) {
      for (const std::filesystem::path& rule : rules) LoadRule(rule);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rules.size()));
  });
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc != 3) {
    std::fprintf(stderr, "qncorvane_bench STORE SALES\n");
    return 2;
  }
  const std::filesystem::path sales = std::filesystem::absolute(argv[2]);
  std::filesystem::current_path(argv[1]);
  Require(BeginInitPro(), "BeginInitPro");
  for (const std::filesystem::path& rule : RuleFiles()) LoadRule(rule);
  Require(FinishInitPro(), "FinishInitPro");
  RegisterAll(sales);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
