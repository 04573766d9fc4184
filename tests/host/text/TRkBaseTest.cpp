#include <cubes/text/TRkBase.h>

#include <gtest/gtest.h>

namespace {

struct Counted : TRkBase {
    explicit Counted(int& count) : alive(count) { ++alive; }
    ~Counted() override { --alive; }
    int& alive;
};

struct LastVisit : TRkVisitor {
    void Visit(TRkBase const& object) override { visited = &object; }
    TRkBase const* visited = nullptr;
};

}

// Not in the anonymous namespace: its name is part of the test.
class NamedCatalogue : public TRkBase {};

TEST(TRkBase, isUsableAndOfFamily0) {
    TRkBase const object;
    EXPECT_TRUE(object.Ok());
    EXPECT_EQ(0, object.ClassID());
    EXPECT_EQ(0, object.ReferenceCount());
    EXPECT_FALSE(object.IsReferenced());
}

TEST(TRkBase, isDeletedWithItsLastReference) {
    int alive = 0;
    auto* const object = new Counted(alive);
    EXPECT_EQ(1, object->AddReference());
    EXPECT_EQ(2, object->AddReference());
    EXPECT_EQ(2, object->ReferenceCount());
    EXPECT_EQ(1, object->ReleaseReference());
    EXPECT_TRUE(object->IsReferenced());
    EXPECT_EQ(1, alive);
    EXPECT_EQ(0, object->ReleaseReference());
    EXPECT_EQ(0, alive);
}

TEST(TRkBase, keepsItsOwnReferencesWhenCopiedOrAssigned) {
    TRkBase first;
    first.AddReference();
    TRkBase const copy(first);
    EXPECT_EQ(0, copy.ReferenceCount());
    TRkBase second;
    second.AddReference();
    second.AddReference();
    first = second;
    EXPECT_EQ(1, first.ReferenceCount());
}

TEST(TRkBase, returnsTheNameOfTheObjectsOwnClass) {
    NamedCatalogue const object;
    TRkBase const& base = object;
    EXPECT_STREQ("NamedCatalogue", base.ClassName());
    EXPECT_EQ(base.ClassName(), NamedCatalogue().ClassName()) << "one text that lives as long as the program";
}

TEST(TRkBase, passesItselfToAVisitor) {
    TRkBase const object;
    LastVisit visitor;
    object.Accept(visitor);
    EXPECT_EQ(&object, visitor.visited);
}
