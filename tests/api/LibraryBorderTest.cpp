#include <cubes/core/TRkCubesException.h>
#include <cubes/text/TRkBase.h>
#include <cubes/text/TRkException.h>
#include <cubes/text/TRkObject.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

class Sketch : public TRkBase {};

namespace {

class Keeper : public TRkObject {};

class Refuser : public TRkVisitor {
public:
    void Visit(TRkBase const& object) override {
        TRkException error(object.ClassName(), __FILE__, __func__, __LINE__);
        throw error;
    }
};

}

TEST(LibraryBorder, namesAClassThatTheLibraryDoesNotKnow) {
    Sketch const sketch;
    TRkBase const& base = sketch;
    EXPECT_STREQ("Sketch", base.ClassName());
    EXPECT_STREQ("TRkBase", TRkBase().ClassName());
}

TEST(LibraryBorder, downCastsTheApplicationsOwnObjects) {
    std::unique_ptr<TRkObject> const object = std::make_unique<Keeper>();
    EXPECT_NE(nullptr, dynamic_cast<Keeper*>(object.get()));
    std::unique_ptr<TRkObject> const plain = std::make_unique<TRkObject>();
    EXPECT_EQ(nullptr, dynamic_cast<Keeper*>(plain.get()));
}

TEST(LibraryBorder, letsAnExceptionPassThroughTheLibrary) {
    Sketch const sketch;
    Refuser refuser;
    EXPECT_THROW(sketch.Accept(refuser), TRkException);
    EXPECT_THROW(sketch.Accept(refuser), VclOrStdException);
    EXPECT_THROW(sketch.Accept(refuser), std::exception);
}

TEST(LibraryBorder, tellsItsExceptionsApart) {
    auto const fail = [] { throw TRkCubesException(TRkCubesException::ecCubeExists); };
    try {
        fail();
        FAIL() << "nothing was thrown";
    } catch (TRkException const& error) {
        EXPECT_NE(nullptr, dynamic_cast<TRkCubesException const*>(&error));
        EXPECT_STREQ("Cube already exists", error.what());
    }
}
