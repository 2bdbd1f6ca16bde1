#include <gtest/gtest.h>

#include "promo/direct/ProDirectLimit.h"
#include "rule/RuleType.h"

namespace Corvane {
namespace {

SalePlu Line(double count, double given, Text proType = TypeWord::kLimit) {
  SalePlu line;
  line.PluCount = count;
  ProResult row;
  row.ProType = proType;
  row.DisNum = given;
  line.ProResults.push_back(row);
  return line;
}

TEST(TypeCountOnLine, IsTheSumOfTheTypesRows) {
  EXPECT_EQ(GetTypeCountOnLine(Line(3, 2), TypeWord::kLimit), 2);
  EXPECT_EQ(GetTypeCountOnLine(Line(3, 2, TypeWord::kBatch), TypeWord::kLimit), 0);
}

TEST(TypeCountOnLine, MakesNoSenseAboveTheLineOrBelowNothing) {
  EXPECT_EQ(GetTypeCountOnLine(Line(3, 4), TypeWord::kLimit), -1);
  EXPECT_EQ(GetTypeCountOnLine(Line(3, -1), TypeWord::kLimit), -1);
}

}  // namespace
}  // namespace Corvane
