#include <cubes/text/CountedPtr.h>

#include <gtest/gtest.h>

namespace {

struct Guest {
    explicit Guest(int& count) : alive(count) { ++alive; }
    Guest(Guest const&) = delete;
    Guest& operator=(Guest const&) = delete;
    ~Guest() { --alive; }
    int& alive;
};

}

TEST(CountedPtr, isEmptyByDefaultAndFromNull) {
    EXPECT_FALSE(CountedPtr<int>());
    EXPECT_FALSE(CountedPtr<int>(static_cast<int*>(nullptr)));
    EXPECT_FALSE(CountedPtr<int>(std::unique_ptr<int>()));
}

TEST(CountedPtr, pointsToItsObject) {
    CountedPtr<std::pair<int, int>> const pointer(new std::pair(1, 2));
    ASSERT_TRUE(pointer);
    EXPECT_EQ(1, pointer->first);
    EXPECT_EQ(2, (*pointer).second);
}

TEST(CountedPtr, destroysTheObjectWithTheLastCopy) {
    int alive = 0;
    CountedPtr<Guest> first(new Guest(alive));
    {
        CountedPtr<Guest> const second = first;
        first.Release();
        EXPECT_FALSE(first);
        EXPECT_TRUE(second);
        EXPECT_EQ(1, alive);
    }
    EXPECT_EQ(0, alive);
}

TEST(CountedPtr, takesOwnershipFromAUniquePointer) {
    int alive = 0;
    {
        CountedPtr<Guest> const pointer(std::make_unique<Guest>(alive));
        EXPECT_EQ(1, alive);
    }
    EXPECT_EQ(0, alive);
}
