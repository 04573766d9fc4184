#include <cubes/store/EntryKey.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace cubes::test {
namespace {

TEST(EntryKey, holdsTheNumbersOfEitherFamily) {
    EntryKey const trips(3, 1, 2, 4, 5);
    EXPECT_FALSE(trips.isResult());
    EXPECT_EQ(std::vector<short>(trips.numbers().begin(), trips.numbers().end()), (std::vector<short>{3, 1, 2, 4, 5}));
    EXPECT_EQ(trips.result(), -1);
    EXPECT_EQ(trips.iteration(), -1);

    EntryKey const skim(-1, 1, 2, 3, 4, 5, 0);
    EXPECT_TRUE(skim.isResult());
    EXPECT_EQ(std::vector<short>(skim.parts().begin(), skim.parts().end()), (std::vector<short>{1, 2, 3, 4, 5, 0}));
    EXPECT_EQ(skim.cube(), -1);
    EXPECT_EQ(skim.time(), 3);
}

TEST(EntryKey, ordersEntriesOfCubesBeforeResultsThenByNumbers) {
    std::vector<EntryKey> keys = {{-1, 1, 1, 1, 1, 0, 0}, {2, 1, 1, 1, 1}, {1, 2, 1, 1, 1}, {-2, 9, 9, 9, 9, 9, 9},
        {1, 1, 1, 1, 2}, {-8, 1, 1, 1, 1}};
    std::sort(keys.begin(), keys.end());
    std::vector<EntryKey> const expected = {{-8, 1, 1, 1, 1}, {1, 1, 1, 1, 2}, {1, 2, 1, 1, 1}, {2, 1, 1, 1, 1},
        {-2, 9, 9, 9, 9, 9, 9}, {-1, 1, 1, 1, 1, 0, 0}};
    EXPECT_EQ(keys, expected);
}

TEST(EntryKey, distinguishesAnEntryOfACubeFromAResultWithUnsetParts) {
    EXPECT_NE(EntryKey(1, 1, 1, 1, 1), EntryKey(1, 1, 1, 1, 1, -1, -1));
}

}
}
