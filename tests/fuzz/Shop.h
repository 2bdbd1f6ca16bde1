#ifndef QNCORVANE_TESTS_FUZZ_SHOP_H
#define QNCORVANE_TESTS_FUZZ_SHOP_H

#include <string>
#include <vector>

struct sqlite3;

namespace Corvane::Fuzz {

// A shop for the fuzz targets: a temporary folder as current directory, in memory where the machine has such a one, with
// settings, an SQLite store and the engine's log; and the engine's calls with buffers just as large as their
// documentation asks for, so that AddressSanitizer sees a byte too many.

/// Makes the folder and goes there. Once in a process; it is removed at the process's end.
/// @return its path.
const std::string& EnterFolder();

/// The whole of a file. The process ends without it.
std::string FileText(const std::string& path);

/// Writes the settings and makes the store: the tables and rows of samples/, and those of tests/fuzz/store.
void MakeStore();

/// The store, for statements beside the engine's; opened at the first asking.
sqlite3* Store();

/// Runs statements on the store. The process ends when they fail.
void Sql(const std::string& statements);

/// The one number that a statement brings.
long long Number(const char* statement);

/// What a call answered.
struct Answer {
  int Code = 0;
  std::string Msg;
  std::string Out;  ///< empty when the call left it alone
};

/// A rule, and the type to load it as.
struct LoadedRule {
  std::string Type;
  std::string Xml;
};

/// The rules of samples/store and of tests/fuzz/store, in the order of their file names: at least one of each type.
const std::vector<LoadedRule>& ShopRules();

/// The engine's calls. A null text is handed on as null. Each requires what holds for any input: the code is one of those
/// that the call may answer, the status text is one, and what comes out is a result (Check.h).
Answer Load(const char* type, const char* xml);
Answer Clear(const char* billNo);
Answer Calc(const char* key, const char* mode, const char* xml, bool isUtf8 = false);
Answer ClearSales();
std::string State();

/// Loads all rules of the shop.
void LoadShopRules();

/// A sale of the goods of all promotions of the shop, with a member, payments and coupons.
const std::string& BigSale();

/// The one rule of the shop that the sale of RequireSameSale needs.
const LoadedRule& ProbeRule();

/// Requires that a small sale is calculated as at the first asking. The rules must be those of then.
void RequireSameSale();

}  // namespace Corvane::Fuzz

#endif
