// What "PTXS" rules took on the lines in front of a line.
#include <gtest/gtest.h>

#include <vector>

#include "promo/direct/ProDirectLimit.h"

using Corvane::EarlierCounts;
using Corvane::ProResult;
using Corvane::SalePlu;

namespace {

/// Three pieces of some goods, of which a rule of this type took some.
SalePlu Line(const char* goods, const char* type = nullptr, double taken = 0) {
  SalePlu line;
  line.PluCode = goods;
  line.PluCount = 3;
  if (type == nullptr) return line;
  ProResult row;
  row.ProType = type;
  row.DisNum = taken;
  line.ProResults.push_back(row);
  return line;
}

std::vector<SalePlu> Numbered(std::vector<SalePlu> lines) {
  for (std::size_t place = 0; place < lines.size(); ++place) lines[place].Index = static_cast<int>(place);
  return lines;
}

TEST(EarlierCounts, AreThoseOfTheSameGoodsAndType) {
  const auto lines = Numbered({Line("A", "PTXS", 2), Line("B", "PTXS", 1), Line("A"), Line("A", "PTPL", 3),
                               Line("A", "PTXS", 0.5), Line("A"), Line("B"), Line("C"), Line(nullptr)});
  EarlierCounts earlier(lines);
  EXPECT_EQ(earlier.Before(lines[0]), 0);
  EXPECT_EQ(earlier.Before(lines[1]), 0);
  EXPECT_EQ(earlier.Before(lines[2]), 2);
  EXPECT_EQ(earlier.Before(lines[2]), 2);
  EXPECT_EQ(earlier.Before(lines[5]), 2.5);
  EXPECT_EQ(earlier.Before(lines[6]), 1);
  EXPECT_EQ(earlier.Before(lines[7]), 0);
  EXPECT_EQ(earlier.Before(lines[8]), 0);
}

TEST(EarlierCounts, MakeNoSenseBehindALineThatHoldsLessThanWasTaken) {
  const auto lines = Numbered({Line("A", "PTXS", 3), Line("A", "PTXS", 4), Line("A", "PTXS", 1), Line("A"), Line("B")});
  EarlierCounts earlier(lines);
  EXPECT_EQ(earlier.Before(lines[1]), 3);
  EXPECT_EQ(earlier.Before(lines[2]), -1);
  EXPECT_EQ(earlier.Before(lines[3]), -1);
  EXPECT_EQ(earlier.Before(lines[4]), 0);
}

TEST(EarlierCounts, SeeWhatALineGotMeanwhile) {
  auto lines = Numbered({Line("A"), Line("A"), Line("A")});
  EarlierCounts earlier(lines);
  EXPECT_EQ(earlier.Before(lines[0]), 0);
  lines[0] = Line("A", "PTXS", 1);
  EXPECT_EQ(earlier.Before(lines[1]), 1);
  lines[1] = Line("A", "PTXS", 2);
  EXPECT_EQ(earlier.Before(lines[2]), 3);
}

}  // namespace
