#include <cubes/project/TRkGlobalSettings.h>
#include <cubes/text/TRkBase.h>

#include <gtest/gtest.h>

namespace {

TEST(GlobalSettings, storeObjectsUnderKeysWithoutOwningThem) {
    TRkObject one;
    TRkObject two;
    TRkGlobalSettings settings;
    EXPECT_EQ(settings.Get("a"), nullptr);
    settings.Set("a", &one);
    settings.Set("b", &two);
    EXPECT_EQ(settings.Get("a"), &one);
    settings.Set("a", &two);
    EXPECT_EQ(settings.Get("a"), &two);
    settings.Set("a", nullptr);
    settings.Set("nothing", nullptr);
    EXPECT_EQ(settings.Get("a"), nullptr);
    EXPECT_EQ(settings.Get("b"), &two);
    EXPECT_EQ(settings.Get("A"), nullptr);
}

TEST(GlobalSettings, ignoreANullKey) {
    TRkObject object;
    TRkGlobalSettings settings;
    settings.Set(nullptr, &object);
    EXPECT_EQ(settings.Get(nullptr), nullptr);
    EXPECT_EQ(settings.Get(""), nullptr);
}

TEST(GlobalSettings, returnTheDirectoriesUnchanged) {
    TRkGlobalSettings const settings("/a/b", "/c/d/");
    EXPECT_EQ(settings.MatrixDirectory().str(), "/a/b");
    EXPECT_EQ(settings.WorkingDirectory().str(), "/c/d/");
    EXPECT_TRUE(TRkGlobalSettings().MatrixDirectory().IsEmpty());
}

}
