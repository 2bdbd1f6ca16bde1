// What texts and sales of great size cost: a table for the host guide.
//
//   sizes SCHEMA [--quick | NAME]
//
// SCHEMA are the statements that make the store's tables. Each case runs in a process and a directory of its own, at up to
// three sizes; --quick takes the first alone, NAME the cases that have it in their names. Told are milliseconds of the
// processor's time in the calls, and the most memory that the process held with the last size, the case's own texts
// included. A case that takes longer than five minutes, or answers otherwise than it should, fails.
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"

namespace {

constexpr int kMostSeconds = 300;
constexpr std::size_t kMegabyte = 1000 * 1000;

/// Room for any result and any message: what is not written to costs nothing.
char* Room() {
  constexpr std::size_t kSize = std::size_t{2} << 30U;
  constexpr int kHow = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
  static char* const room = static_cast<char*>(mmap(nullptr, kSize, PROT_READ | PROT_WRITE, kHow, -1, 0));
  return room;
}

[[noreturn]] void GiveUp(const std::string& what) {
  std::fprintf(stderr, "sizes: %s\n", what.c_str());
  _exit(1);
}

int Calculate(const char* mode, const std::string& xml, const char* key = "till") {
  static std::array<char, 64> msg{};
  return CalcPromotion(key, mode, xml.c_str(), Room(), msg.data());
}

void Expect(int code, int expected, const char* what) {
  if (code != expected) GiveUp(std::string(what) + " answers " + std::to_string(code));
}

void Load(const std::string& type, const std::string& xml) {
  Expect(InitPromotion(type.c_str(), xml.c_str(), Room()), 0, "a load");
}

std::string Rule(const std::string& number, const std::string& type, const std::string& more = "",
                 const std::string& groups = "") {
  return "<Rules><Rule BillNo=\"" + number + "\" ProType=\"" + type + "\" ProMode=\"" + type.substr(0, 2) +
         "\" Primary=\"DJ\" JzDate=\"2026-01-01\" " + more +
         "><OrgFilter><R OrgCode=\"*\"/></OrgFilter><ProTime><R "
         "StartDate=\"2000-01-01\" EndDate=\"2099-12-31\" Frequency=\"DAY\"/></ProTime>" +
         groups + "</Rule></Rules>";
}

/// Goods that lines bear in turn.
constexpr std::size_t kGoods = 100;

/// Lines of about 200 bytes.
std::string Lines(std::size_t count) {
  std::ostringstream lines;
  for (std::size_t line = 1; line <= count; ++line) {
    lines
        << "<R SerialNo=\"" << line << "\" PluCode=\"G" << line % kGoods
        << "\" PluType=\"PLU\" Price=\"10.00\" PluCount=\"3\" Total=\"30.00\" PackCnt=\"1\" CAT=\"FOOD\" BRD=\"ACME\" "
           "SaleDate=\"2026-11-21\" SaleTime=\"10:00:00\" PageNo=\"1\" LnNo=\"1\" ClsId=\"12345\"/>\n";
  }
  return lines.str();
}

std::string Sale(const std::string& lines, const std::string& groups = "") {
  return "<Sale BillNo=\"B\" OrgCode=\"S\" IsCalc=\"0\"><Plu>" + lines + "</Plu>" + groups + "</Sale>";
}

const std::string kNothingNew = "<Sale BillNo=\"B\" OrgCode=\"S\" IsCalc=\"0\"/>";

void Sql(const std::string& statements) {
  sqlite3* store = nullptr;
  char* error = nullptr;
  sqlite3_open("store.db", &store);
  if (sqlite3_exec(store, statements.c_str(), nullptr, nullptr, &error) != SQLITE_OK) GiveUp(error);
  sqlite3_close(store);
}

double MillisecondsOf(const std::function<void()>& work) {
  const std::clock_t start = std::clock();
  work();
  return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

struct Case {
  std::string Name;
  const char* Unit;  ///< of its sizes
  std::vector<std::size_t> Sizes;
  std::function<double(std::size_t size)> Run;  ///< @return milliseconds
};

/// Reads alone: an unknown mode is refused behind the reading.
double Reading(const std::string& xml) {
  return MillisecondsOf([&] { Expect(Calculate("read", xml), -1, "reading"); });
}

// --- Texts -----------------------------------------------------------------------------------------------------------

double ReadSale(std::size_t megabytes) { return Reading(Sale(Lines(megabytes * kMegabyte / 200))); }

double ReadUnknownGroups(std::size_t megabytes) {
  std::string rows;
  while (rows.size() < megabytes * kMegabyte) rows += "<Row Name='unknown' Value='&#228;&amp;'>text</Row>";
  return Reading(Sale("", "<Other>" + rows + "</Other>"));
}

double WriteSale(std::size_t megabytes) {
  Expect(Calculate("read", Sale(Lines(megabytes * kMegabyte / 290))), -1, "reading");
  const double took = MillisecondsOf([] { Expect(Calculate("All", kNothingNew), 0, "writing"); });
  const double written = static_cast<double>(std::strlen(Room())) / kMegabyte;
  return took * static_cast<double>(megabytes) / written;
}

double LoadRule(std::size_t megabytes) {
  std::string rows;
  while (rows.size() < megabytes * kMegabyte) rows += "<R OrgCode=\"S" + std::to_string(rows.size()) + "\"/>";
  const std::string rule = Rule("R", "MZYQ", "", "<OrgFilter>" + rows + "</OrgFilter>");
  return MillisecondsOf([&] { Load("MZYQ", rule); });
}

double ReadAttributes(std::size_t thousands) {
  std::string attributes;
  for (int attribute = 0; attribute < 980; ++attribute) attributes += " a" + std::to_string(attribute) + "=\"\"";
  std::string lines;
  for (std::size_t line = 0; line < thousands; ++line)
    lines += "<R SerialNo=\"" + std::to_string(line) + "\"" + attributes + "/>";
  return Reading(Sale(lines));
}

double ReadOneElement(std::size_t thousands) {
  std::string attributes;
  for (std::size_t attribute = 0; attribute < 1000 * thousands; ++attribute)
    attributes += " a" + std::to_string(attribute) + "=\"\"";
  return Reading(Sale("<R SerialNo=\"1\"" + attributes + "/>"));
}

double ReadNesting(std::size_t thousands) {
  std::string open;
  std::string close;
  for (std::size_t level = 0; level < 1000 * thousands; ++level) {
    open += "<a>";
    close += "</a>";
  }
  return Reading(Sale("", open + close));
}

double ReadLongText(std::size_t megabytes) {
  const std::string text(megabytes * kMegabyte, 'x');
  return Reading(Sale("<R SerialNo=\"1\" PluCode=\"" + text + "\" CAT=\"" + text + "\"/>"));
}

double LongKey(std::size_t megabytes) {
  const std::string text(megabytes * kMegabyte, 'x');
  return MillisecondsOf([&] {
    Expect(Calculate("All", Sale(Lines(1)), text.c_str()), 0, "a long key");
    Expect(DeleteSaleSetByKey(text.c_str()), 0, "a long key's end");
  });
}

double LongNumberOfARule(std::size_t megabytes) {
  const std::string text(megabytes * kMegabyte, 'x');
  const std::string rule = Rule(text, "PTXS");
  return MillisecondsOf([&] {
    Load("PTXS", rule);
    Expect(Calculate("All", Sale(Lines(1))), 0, "a long rule's sale");
  });
}

double LoadManyRules(std::size_t thousands) {
  std::vector<std::string> rules;
  for (std::size_t rule = 0; rule < 1000 * thousands; ++rule) rules.push_back(Rule("R" + std::to_string(rule), "PTXS"));
  return MillisecondsOf([&] {
    for (const std::string& rule : rules) Load("PTXS", rule);
  });
}

double CalculateWithManyRules(std::size_t thousands) {
  LoadManyRules(thousands);
  return MillisecondsOf([] { Expect(Calculate("All", Sale(Lines(1))), 0, "a sale"); });
}

// --- Calculations ----------------------------------------------------------------------------------------------------

/// For each of the goods a row of a table.
void PutForGoods(const std::string& into, const std::string& begin, const std::string& end) {
  std::string rows;
  for (std::size_t goods = 0; goods < kGoods; ++goods) {
    rows +=
        (goods == 0 ? "(" : ",(") + begin + std::to_string(goods + 1) + ",'G" + std::to_string(goods) + "'" + end + ")";
  }
  Sql("insert into " + into + " values " + rows);
}

constexpr const char* kDirect = "tProPrjDirectProAct (BillNo,SerialNo,PluCode,DscType,DscPrice,SaleCount)";
constexpr const char* kCombGoods = "tProPrjCombPluSet (BillNo,ProActCode,SerialNo,PluCode,SaleCount,DscType,DscPrice)";
constexpr const char* kConditions = "tProMzConPluSet (BillNo,ListCode,SerialNo,PluCode)";

struct Calculation {
  std::string Type;
  std::function<void()> Fill;
  const char* Mode;
  std::string More;    ///< of the rule's header
  std::string Groups;  ///< of the rule
  std::string SaleGroups;
};

std::vector<Calculation> Calculations() {
  const auto direct = [](const std::string& price, const std::string& count) {
    return [=] { PutForGoods(kDirect, "'R',", ",'PRC'," + price + "," + count); };
  };
  const auto scheme = [](const std::string& goods) {
    return [=] {
      PutForGoods(kConditions, "'R','0',", "");
      Sql("insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum) values "
          "('R',1,'" +
          goods + "','SUM',10,'NUM',1)");
    };
  };
  const auto offers = [](const std::string& area, const std::string& spread) {
    return [=] {
      Sql("insert into tpromzlist (BillNo,ListCode,ConAreaType,DscIntoPlu) values ('R','L','" + area + "','" + spread +
          "'); insert into tProMzDiscountAct (BillNo,ListCode,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney) values "
          "('R','L',100,10,100,10)");
      if (area == "DES") PutForGoods(kConditions, "'R','L',", "");
    };
  };
  const auto comb = [](const std::string& prices) {
    return [=] {
      PutForGoods(kCombGoods, "'R','S',", ",1,'PRC',8");
      Sql("insert into tProPrjCombProAct (BillNo,SerialNo,SaleCount,PriceType,PriceTotal,ProActCode,IsRequired) "
          "values " +
          prices);
    };
  };
  return {
      {"PTXS", direct("8", "0"), "All", "", "", ""},
      {"PTXS, limited in money", direct("8", "0"), "All", "MaxYhType=\"1\" MaxYhValue=\"1000\"", "", ""},
      {"PTXS, limited to 300 pieces", direct("8", "0"), "All", "MaxYhType=\"2\" MaxYhValue=\"300\"", "", ""},
      {"PTPL", direct("8", "2"), "All", "", "", ""},
      {"PTOS", direct("1", "2"), "All", "", "", ""},
      {"ZHZY", comb("('R',1,2,'DP',15,'',0)"), "All", "", "", ""},
      {"ZHGD", comb("('R',1,1,'TC',900,'',0)"), "All", "", "", ""},
      {"ZHTJ",
       [=] {
         comb("('R',1,1,'',0,'',0)")();
         Sql("insert into tProCombConditionAct (BillNo,SerialNo,PluCode,SaleCount) values ('R',1,'G1',1)");
       },
       "All", "", "", ""},
      {"ZHZX", comb("('R',1,1,'DP',8,'S',1)"), "All", "", "", ""},
      {"MZMJ, whole sale", offers("ALL", "0"), "MzPromotion", "", "", ""},
      {"MZMJ, chosen goods", offers("DES", "0"), "MzPromotion", "", "", ""},
      {"MZDP",
       [] {
         PutForGoods("tProMzPluAct (BillNo,BaseConType,BaseConNum,BaseDscType,BaseDscNum,SerialNo,PluCode)",
                     "'R','NUM',1,'NUM',1,", "");
       },
       "MzPromotion", "", "", ""},
      {"MZZM", scheme("G1"), "MzPromotion", "", "", ""},
      {"MZZP", scheme("BAG"), "MzPromotion", "", "", ""},
      {"MZHG", scheme("BAG"), "MzPromotion", "", "", ""},
      {"MZZQ", [] {}, "MzPromotion", "",
       "<ProList ConAreaType=\"ALL\"><PluAddAction><R BaseConNum=\"5\" BaseDscNum=\"8\"/></PluAddAction><CouponType "
       "LimitType=\"1\" LimitDay=\"9\" IsDenom=\"1\"/><CouponDenomination><R "
       "Denomination=\"1000\"/></CouponDenomination></ProList>",
       ""},
      {"MZYQ", [] {}, "Coupon", "",
       "<ProList ConAreaType=\"ALL\"><PluAddAction><R BaseConNum=\"5\" BaseDscNum=\"8\"/></PluAddAction><CouponType "
       "LimitType=\"1\" LimitDay=\"9\" IsDenom=\"1\" CouponTypeCode=\"C\"/></ProList>",
       "<Coupon><R BillNo=\"C1\" CouponTypeCode=\"C\" CouponValue=\"5\"/></Coupon>"},
      {"MZZF", [] {}, "Pay", "",
       "<ProCtr><R PriceTotal=\"100\" PayType=\"CARD\"/></ProCtr><PluAction><R DisPrice=\"10\" "
       "DisRate=\"9\"/></PluAction>",
       "<PayMode><R PayMode=\"CARD\" PayMoney=\"100\"/></PayMode>"},
  };
}

/// The sale is read before; writing its result is part of what is measured.
double CalculatingOn(const Calculation& calculation, const std::string& sale) {
  calculation.Fill();
  const std::string type = calculation.Type.substr(0, 4);
  Load(type == "MZZQ" ? "MZYQ" : type, Rule("R", type, calculation.More, calculation.Groups));
  Expect(BeginInitPro(), 0, "opening");
  FinishInitPro();
  Expect(Calculate("read", sale), -1, "reading");
  const double took = MillisecondsOf([&] { Expect(Calculate(calculation.Mode, kNothingNew), 0, calculation.Mode); });
  // A gift is no discount yet, and a coupon given or taken no line's.
  if (std::strstr(Room(), "ProBillNo=\"R\"") == nullptr) GiveUp(calculation.Type + " gives nothing");
  return took;
}

double Calculating(const Calculation& calculation, std::size_t lines) {
  return CalculatingOn(calculation, Sale(Lines(lines), calculation.SaleGroups));
}

double CalculateManyGoods(std::size_t thousands) {
  const std::size_t count = 1000 * thousands;
  std::string lines;
  for (std::size_t line = 1; line <= count; ++line) {
    lines +=
        "<R SerialNo=\"" + std::to_string(line) + "\" PluCode=\"G" + std::to_string(line) +
        "\" Price=\"10\" PluCount=\"3\" Total=\"30\" PackCnt=\"1\" SaleDate=\"2026-11-21\" SaleTime=\"10:00:00\"/>";
  }
  const auto fill = [count] {
    Sql("with recursive n(i) as (select 1 union all select i+1 from n where i<" + std::to_string(count) +
        ") insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,DscType,DscPrice) select 'R',i,'G'||i,'PRC',8 from "
        "n");
  };
  return CalculatingOn({"PTXS", fill, "All", "", "", ""}, Sale(lines));
}

/// The limit counts what the rule holds for each line, and logs each row of it.
double CalculateWideLimit(std::size_t thousands) {
  const auto fill = [] { PutForGoods(kDirect, "'R',", ",'PRC',8,0"); };
  const std::string limit = "MaxYhType=\"2\" MaxYhValue=\"" + std::to_string(3000 * thousands) + "\"";
  return CalculatingOn({"PTXS", fill, "All", limit, "", ""}, Sale(Lines(1000 * thousands)));
}

std::vector<Case> Cases() {
  std::vector<Case> cases = {
      {"a sale read", "MB", {1, 10, 50}, ReadSale},
      {"groups that are not known, read", "MB", {1, 10, 50}, ReadUnknownGroups},
      {"a result written", "MB", {1, 10, 50}, WriteSale},
      {"a rule of many rows, loaded", "MB", {1, 10, 50}, LoadRule},
      {"attributes, 980 to a line, read", "thousand", {10, 100, 1000}, ReadAttributes},
      {"attributes of one line, read up to the limit", "thousand", {10, 100, 1000}, ReadOneElement},
      {"elements in each other, read up to the limit", "thousand", {10, 100, 1000}, ReadNesting},
      {"two texts of a line, read", "MB", {1, 10, 50}, ReadLongText},
      {"a key, for a sale of one line", "MB", {1, 10, 50}, LongKey},
      {"a rule's number, for a sale of one line", "MB", {1, 10, 50}, LongNumberOfARule},
      {"rules, loaded", "thousand", {1, 10}, LoadManyRules},
      {"rules, on a sale of one line", "thousand", {1, 10}, CalculateWithManyRules},
      {"goods, each on a line and in a row of PTXS", "thousand", {1, 10}, CalculateManyGoods},
      {"lines under PTXS with a limit of as many pieces", "thousand", {1, 2}, CalculateWideLimit},
  };
  for (const Calculation& calculation : Calculations()) {
    // Where the log has an entry for each piece, the last size would be of little else.
    const bool isLong = calculation.Type.find("pieces") != std::string::npos;
    const std::vector<std::size_t> all = {1, 10, 100};
    cases.push_back({"lines under " + calculation.Type,
                     "thousand",
                     {all.begin(), isLong ? all.end() - 1 : all.end()},
                     [calculation](std::size_t thousands) { return Calculating(calculation, thousands * 1000); }});
  }
  return cases;
}

// --- Processes -------------------------------------------------------------------------------------------------------

void MakeStore(const std::string& schema) {
  std::ofstream("config.ini") << "[DataBase]\nDbType=SQLITE\nDBName=./store.db\n";
  std::ifstream file(schema);
  std::stringstream statements;
  statements << file.rdbuf();
  Sql(statements.str());
}

struct Measured {
  double Milliseconds = -1;  ///< below 0: given up
  long Megabytes = 0;        ///< the most that the process held
};

/// Runs a case in a process and a directory of its own.
Measured Measure(const Case& each, std::size_t size, const std::string& schema) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) GiveUp("no pipe");
  const pid_t child = fork();
  if (child == 0) {
    alarm(kMostSeconds);
    std::string folder = (std::filesystem::temp_directory_path() / "qncorvane-sizes-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr || chdir(folder.c_str()) != 0) GiveUp("no directory");
    MakeStore(schema);
    const double took = each.Run(size);
    std::filesystem::remove_all(folder);
    _exit(write(ends[1], &took, sizeof took) == static_cast<ssize_t>(sizeof took) ? 0 : 1);
  }
  close(ends[1]);
  Measured measured;
  if (read(ends[0], &measured.Milliseconds, sizeof measured.Milliseconds) < 0) GiveUp("no answer");
  close(ends[0]);
  rusage used{};
  int status = 0;
  wait4(child, &status, 0, &used);
  if (status != 0) measured.Milliseconds = -1;
  measured.Megabytes = used.ru_maxrss * 1024 / static_cast<long>(kMegabyte);
  return measured;
}

/// One row of the table. @return whether every size was done with.
bool Tell(const Case& each, bool isQuick, const std::string& schema) {
  std::printf("| %s | %s ", each.Name.c_str(), each.Unit);
  long memory = 0;
  bool isDone = true;
  for (std::size_t place = 0; place < 3; ++place) {
    std::fflush(stdout);
    if (place >= each.Sizes.size() || (isQuick && place > 0)) {
      std::printf("| | ");
      continue;
    }
    const Measured measured = Measure(each, each.Sizes[place], schema);
    memory = measured.Megabytes;
    isDone = isDone && measured.Milliseconds >= 0;
    std::printf("| %zu | %.0f ", each.Sizes[place], measured.Milliseconds);
  }
  std::printf("| %ld |\n", memory);
  return isDone;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) GiveUp("names no tables to make");
  const std::string schema = std::filesystem::absolute(argv[1]).string();
  const bool isQuick = argc > 2 && std::strcmp(argv[2], "--quick") == 0;
  const std::string name = argc > 2 && !isQuick ? argv[2] : "";
  std::printf("| What | in | size | ms | size | ms | size | ms | MB held |\n|---|---|---|---|---|---|---|---|---|\n");
  bool isDone = true;
  for (const Case& each : Cases()) {
    if (each.Name.find(name) != std::string::npos) isDone = Tell(each, isQuick, schema) && isDone;
  }
  return isDone ? 0 : 1;
}
