#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/core/TRkCubesException.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

namespace {

struct Coded {
    short number;
    char const* characters;
};

class Base40 : public testing::TestWithParam<Coded> {};

TEST_P(Base40, encodesToTwoCharacters) {
    EXPECT_STREQ(TRkBaseCubes::ShortTo40T(GetParam().number), GetParam().characters);
}

TEST_P(Base40, decodesWhatItEncodes) {
    EXPECT_EQ(TRkBaseCubes::cnvrt40TToShort(GetParam().characters, 0, 2), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(numbers, Base40,
    testing::Values(Coded{0, "00"}, Coded{9, "09"}, Coded{10, "0a"}, Coded{29, "0t"}, Coded{30, "0v"}, Coded{34, "0z"},
        Coded{35, "0_"}, Coded{36, "0@"}, Coded{37, "0#"}, Coded{38, "0&"}, Coded{39, "0^"}, Coded{40, "10"},
        Coded{100, "2k"}, Coded{1199, "t^"}, Coded{1200, "v0"}, Coded{1599, "^^"}));

TEST(Base40, hasFortyDigitsAndNoU) {
    EXPECT_STREQ(TRkBaseCubes::letters, "0123456789abcdefghijklmnopqrstvwxyz_@#&^");
    EXPECT_EQ(std::strlen(TRkBaseCubes::letters), 40u);
    EXPECT_EQ(std::strchr(TRkBaseCubes::letters, 'u'), nullptr);
}

TEST(Base40, decodesEveryNumberItEncodes) {
    for (short number = 0; number < 1600; ++number)
        ASSERT_EQ(TRkBaseCubes::cnvrt40TToShort(TRkBaseCubes::ShortTo40T(number), 0, 2), number);
}

TEST(Base40, refusesNumbersThatTwoCharactersCannotHold) {
    for (short const number : {short(1600), short(1601), std::numeric_limits<short>::max(), short(-1), short(-8),
             std::numeric_limits<short>::min()}) {
        try {
            TRkBaseCubes::ShortTo40T(number);
            ADD_FAILURE() << number << " was encoded";
        } catch (TRkCubesException const& error) {
            EXPECT_STREQ(error.what(), "IntTo40T> Only 2 positions reserved! Maximum value is 1599");
        }
    }
}

TEST(Base40, returnsOneBufferThatTheNextCallOverwrites) {
    char const* const first = TRkBaseCubes::ShortTo40T(9);
    char const* const second = TRkBaseCubes::ShortTo40T(100);
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, "2k");
}

struct Decoded {
    char const* text;
    int start;
    int count;
    short number;
};

class Base40Decoder : public testing::TestWithParam<Decoded> {};

TEST_P(Base40Decoder, neverFails) {
    EXPECT_EQ(TRkBaseCubes::cnvrt40TToShort(GetParam().text, GetParam().start, GetParam().count), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(texts, Base40Decoder,
    testing::Values(Decoded{"1u", 0, 2, 40}, Decoded{"1U", 0, 2, 40}, Decoded{"1A", 0, 2, 40},
        Decoded{"abc", 1, 2, 11 * 40 + 12}, Decoded{"7", 0, 2, 7}, Decoded{"^^", 0, 0, 0}, Decoded{nullptr, 0, 2, 0},
        Decoded{"", 0, 2, 0}, Decoded{"12", 2, 2, 0}, Decoded{"12", 99, 2, 0}, Decoded{"12", -1, 2, 0},
        Decoded{"12", 0, -1, 0}, Decoded{"12", 0, 99, 42},
        // 39 * 40 * 40 + 39 * 40 + 39 = 63999, kept in 16 bits and read as signed.
        Decoded{"^^^", 0, 3, short(63999 - 65536)},
        // The value of five digits is taken modulo 65536.
        Decoded{"10000", 0, 5, short(2560000 % 65536)}));

}
