#include <gtest/gtest.h>

#include "sums.h"

TEST(Sums, AddWhatIsAbove) { EXPECT_EQ(Above({1, 5, 3}, 2), 8); }

TEST(Sums, BeginWithTheFirst) { EXPECT_EQ(First({kBase, 7}), 30); }

TEST(Sums, Count) { EXPECT_EQ(Counted(3), 3); }
