#include <cubes/text/TRkAutoListT.h>

#include <gtest/gtest.h>

#include <string>

namespace {

// An item that counts its existing objects.
struct Item {
    Item(int place, std::string text) : order(place), label(std::move(text)) { ++alive; }
    Item(Item const& other) : order(other.order), label(other.label) { ++alive; }
    Item& operator=(Item const&) = delete;
    ~Item() { --alive; }

    int order;
    std::string label;
    static inline int alive = 0;
};

using List = TRkAutoListT<Item>;

List listOf(std::initializer_list<std::pair<int, char const*>> items) {
    List list;
    for (auto const& [order, label] : items) list.Add(new Item(order, label));
    return list;
}

std::string labels(List const& list) {
    std::string text;
    for (int i = 0; i < list.Count(); ++i) text += list[i]->label;
    return text;
}

int byOrder(Item* first, Item* second) {
    return first->order - second->order;
}

void fill(List byValue) {
    byValue.Add(new Item(1, "x"));
    for (int i = 0; i < byValue.Count(); ++i) byValue[i]->label += "!";
}

}

TEST(TRkAutoListT, ownsItsItemsUntilItsLastHandleIsDestroyed) {
    {
        List second;
        {
            List const first = listOf({{1, "a"}, {2, "b"}});
            second = first;
        }
        EXPECT_EQ(2, Item::alive);
        EXPECT_EQ("ab", labels(second));
    }
    EXPECT_EQ(0, Item::alive);
}

TEST(TRkAutoListT, isFilledAndChangedThroughACopy) {
    List const list = listOf({{2, "a"}});
    fill(list);
    EXPECT_EQ("a!x!", labels(list));
}

TEST(TRkAutoListT, showsDeletionsAndClearingToAllHandles) {
    List first = listOf({{1, "a"}, {2, "b"}, {3, "c"}});
    List const second = first;
    first.Delete(1);
    EXPECT_EQ("ac", labels(second));
    EXPECT_EQ(2, Item::alive);
    first.Clear();
    EXPECT_EQ(0, second.Count());
    EXPECT_EQ(0, Item::alive);
}

TEST(TRkAutoListT, sortsForAllHandlesAndKeepsEqualItemsInOrder) {
    List first = listOf({{2, "a"}, {1, "b"}, {2, "c"}, {1, "d"}, {0, "e"}});
    List const second = first;
    first.Sort(byOrder);
    EXPECT_EQ("ebdac", labels(second));
}

TEST(TRkAutoListT, clonesIntoASeparateList) {
    List const list = listOf({{1, "a"}, {2, "b"}});
    List clone = list.Clone();
    clone[0]->label = "z";
    clone.Delete(1);
    EXPECT_EQ("ab", labels(list));
    EXPECT_EQ("z", labels(clone));
}

TEST(TRkAutoListT, isEmptyWhenConstructed) {
    List list;
    EXPECT_EQ(0, list.Count());
    list.Clear();
    list.Sort(byOrder);
    EXPECT_EQ(0, list.Clone().Count());
}
