// Which form of copying and moving throws what, and that nothing is written before.

#include "matcubes/TransferTest.h"

namespace cubes::test {
namespace {

constexpr Flags failIfExists = {true, false};

class TransferErrors : public TransferTest {
protected:
    /// Ends whose cubes pass the form's check with failIfExists: by name within a catalogue these
    /// must be two cubes, elsewhere one and the same.
    static End targetFor(Form const& form, short user) { return end(form.isByName && !form.isBetween ? 2 : 1, user); }
};

CUBES_BOTH_BACKENDS(TransferErrors);

TEST_P(TransferErrors, tellTheFormsApartWhenTheTargetExists) {
    store(end(1, 1), 1);
    store(end(1, 2), 2);
    store(end(2, 2), 2);
    std::string const before = state();
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        EXPECT_EQ(messageOf([&] { run(form, end(1, 1), targetFor(form, 2), failIfExists); }), form.refusal);
        EXPECT_EQ(first(end(1, 1)), 1.0);
        EXPECT_EQ(first(targetFor(form, 2)), 2.0);
    }
    EXPECT_EQ(state(), before);
}

TEST_P(TransferErrors, areNoneForAFreeTarget) {
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        EXPECT_TRUE(run(form, end(1, 1), targetFor(form, 2), failIfExists));
        EXPECT_EQ(first(targetFor(form, 2)), 1.0);
        clear();
    }
}

TEST_P(TransferErrors, areNoneForAMissingSource) {
    store(end(1, 2), 1);
    store(end(2, 2), 2);
    std::string const before = state();
    for (auto const& form : forms) EXPECT_TRUE(run(form, end(1, 1), targetFor(form, 2), failIfExists)) << form.name;
    EXPECT_EQ(state(), before);
}

TEST_P(TransferErrors, sayThatAnEntryOntoItselfExists) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms) {
        if (form.isByName && !form.isBetween) continue;
        SCOPED_TRACE(form.name);
        EXPECT_EQ(messageOf([&] { run(form, end(1, 1), end(1, 1), failIfExists); }), form.refusal);
    }
    EXPECT_EQ(state(), before);
}

TEST_P(TransferErrors, findAZeroBasedTarget) {
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        store(targetFor(form, 2), 2);
        EXPECT_EQ(messageOf([&] { run(form, end(1, 0), targetFor(form, 1), {true, true}); }), form.refusal);
        clear();
    }
}

// Negative numbers count as present, and never as a cube that is in the way.
TEST_P(TransferErrors, ofANegativeTargetAreThoseOfEntries) {
    for (auto const& form : forms) {
        if (form.isByName) continue;
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        EXPECT_TRUE(run(form, end(1, 1), end(-8, 1), failIfExists));
        store(end(1, 1), 1);
        EXPECT_EQ(messageOf([&] { run(form, end(1, 1), end(-8, 1), failIfExists); }), form.refusal);
        clear();
    }
}

struct CubeError {
    char const* when;
    bool isByName;
    bool isBetween;
    End from;
    End to;
    bool failIfExists;
    char const* message;
};

constexpr CubeError cubeErrors[] = {
    {"no source", false, false, end(3, 1), end(2, 1), false, "From cube doesn't exist"},
    {"no target", false, false, end(1, 1), end(3, 1), false, "To cube doesn't exist"},
    {"no target, failing", false, false, end(1, 1), end(3, 1), true, "To cube doesn't exist"},
    {"another cube", false, false, end(1, 1), end(2, 9), true, cubeExists},
    {"no source", false, true, end(3, 1), end(2, 1), false, "From cube doesn't exist"},
    {"no target", false, true, end(1, 1), end(3, 1), false, "To cube doesn't exist"},
    {"another cube", false, true, end(1, 1), end(2, 9), true, cubeExists},
    {"the same cube by name", true, false, end(1, 1), end(1, 9), true, cubeExists},
    {"another cube by name", true, true, end(1, 1), end(2, 9), true, cubeExists},
};

TEST_P(TransferErrors, ofTheCubesComeBeforeAnythingElse) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms)
        for (auto const& error : cubeErrors) {
            if (form.isByName != error.isByName || form.isBetween != error.isBetween) continue;
            SCOPED_TRACE(form.name + std::string(", ") + error.when);
            EXPECT_EQ(messageOf([&] { run(form, error.from, error.to, {error.failIfExists, false}); }), error.message);
        }
    EXPECT_EQ(state(), before);
}

TEST_P(TransferErrors, areNoneForAnUnknownNameWhichIsFalse) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(run(form, end(3, 1), end(2, 1)));
        EXPECT_FALSE(run(form, {0, nullptr, 1}, end(2, 1)));
        EXPECT_FALSE(run(form, end(1, 1), {0, nullptr, 1}));
        EXPECT_FALSE(run(form, end(3, 1), end(4, 1)));
    }
    EXPECT_EQ(state(), before);
}

TEST_P(TransferErrors, areNoneForANewNameWhichBecomesACube) {
    for (auto const& form : forms) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        EXPECT_TRUE(run(form, end(1, 1), end(3, 1), failIfExists));
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        EXPECT_EQ(first(end(3, 1)), 1.0);
        clear();
    }
}

// Entries may be left of a cube that went out of the register by itself; its number is given anew.
TEST_P(TransferErrors, ofAnEntryThatIsInTheWayLeaveTheCubeOfANewName) {
    for (auto const& form : forms) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        store(end(3, 1), 3);
        std::string const before = rows() + files();
        EXPECT_EQ(messageOf([&] { run(form, end(1, 1), end(3, 1), failIfExists); }), form.refusal);
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        EXPECT_EQ(rows() + files(), before);
        EXPECT_EQ(first(end(3, 1)), 3.0);
        clear();
    }
}

}
}
