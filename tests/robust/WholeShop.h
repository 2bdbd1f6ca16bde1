#ifndef QNCORVANE_TESTS_ROBUST_WHOLESHOP_H
#define QNCORVANE_TESTS_ROBUST_WHOLESHOP_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/Till.h"

namespace Corvane::Testing {

/// A rule of the shop, whose number is its type.
struct ShopRule {
  const char* Type;
  const char* Mode;  ///< the call in which it reads its rows
};

/// The types that read tables.
inline constexpr ShopRule kShopRules[] = {{"PTXS", "All"},         {"PTPL", "All"},         {"PTOS", "All"},
                                          {"ZHZY", "All"},         {"ZHGD", "All"},         {"ZHTJ", "All"},
                                          {"ZHZX", "All"},         {"MZMJ", "MzPromotion"}, {"MZDP", "MzPromotion"},
                                          {"MZZM", "MzPromotion"}, {"MZZP", "MzPromotion"}, {"MZHG", "MzPromotion"}};

/// One of the two calls of a sale: what it answered and what it wrote into the log.
struct PlayedCall {
  std::string Result;
  std::vector<std::string> Log;
};

/// A till with a rule of each type that reads tables, each on goods of its own, so that a rule which gives nothing
/// leaves what the others give as it is.
class WholeShop : public Till {
 protected:
  void SetUp() override;

  static std::string StoreFile() { return Directory() + "/store.db"; }
  /// Puts a whole store in the place of what is there: another file, as a file that is renamed over it.
  static void RenewStore();
  /// Writes the whole store's bytes into the file that is there.
  static void HealStore();
  /// A copy of the whole store, which the shop's sale gets other prices from. @return its path.
  static std::string OtherStore();

  static void LoadRules(const std::set<std::string>& without = {});

  /// A sale of two calls, "All" with all lines and "MzPromotion".
  static std::vector<PlayedCall> Play();
  static std::vector<std::string> Results(const std::vector<PlayedCall>& calls);
  static std::string Line(int serialNo, const std::string& goods);
  static std::string Sale();

  /// What the sale gives with a whole store and without some of the rules.
  const std::vector<std::string>& ResultsWithout(const std::set<std::string>& rules);

  /// The rules of which a call's log says that their rows could not be read.
  static std::set<std::string> LostRules(const PlayedCall& call, const std::string& mode);
  static std::set<std::string> LostRules(const std::vector<PlayedCall>& calls);

  /// Expects that the rules whose rows were lost, by the log, gave nothing, and all others what they always give.
  void ExpectLostRulesAlone(const std::vector<PlayedCall>& calls, const std::string& fault);

  /// Expects that a whole store gives what it always gave.
  void ExpectWhole(const std::string& fault);

  /// Takes the bytes of the store as it is now for those of a whole one.
  void LearnStore();

 private:
  std::map<std::set<std::string>, std::vector<std::string>> m_known;  ///< what was given without which rules
};

/// The bytes of a file.
std::string BytesOf(const std::string& path);
void WriteBytes(const std::string& path, const std::string& bytes);

}  // namespace Corvane::Testing

#endif
