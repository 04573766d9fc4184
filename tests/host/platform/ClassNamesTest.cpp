#include "host/platform/ClassNames.h"

#include <gtest/gtest.h>

struct PlainlyNamed {};

TEST(ClassNames, arePlain) {
    EXPECT_STREQ("PlainlyNamed", cubes::platform::className(typeid(PlainlyNamed)));
    EXPECT_STREQ("int", cubes::platform::className(typeid(int)));
}

TEST(ClassNames, areTheSameTextAtEachCall) {
    char const* const first = cubes::platform::className(typeid(PlainlyNamed));
    EXPECT_STRNE(first, cubes::platform::className(typeid(int)));
    EXPECT_EQ(first, cubes::platform::className(typeid(PlainlyNamed)));
}
