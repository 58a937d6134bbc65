// The three array templates: counts, capacities, ownership and order.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "base/arrays.h"
#include "base/cstring.h"

using namespace tov;

namespace {

/// Counts the living, and tells equal keys apart by their tag.
struct Item {
    explicit Item(int k, int t = 0) : key(k), tag(t) { ++living; }
    Item(Item const& other) : key(other.key), tag(other.tag) { ++living; }
    ~Item() { --living; }
    Item& operator=(Item const&) = default;
    bool operator==(Item const& other) const { return key == other.key; }
    bool operator<(Item const& other) const { return key < other.key; }

    int key;
    int tag;
    static inline int living = 0;
};

}  // namespace

TEST(ValueArray, HoldsUpperPlusOneSlotsAndGrowsByTheStep) {
    MY_TArrayAsVector<int> a(2, 4);
    EXPECT_EQ(3, a.limit());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(i + 1, a.Add(10 * i));
    EXPECT_EQ(3, a.limit());
    EXPECT_EQ(4, a.Add(30));
    EXPECT_EQ(7, a.limit());
    EXPECT_EQ(4, a.GetItemsInContainer());
    EXPECT_EQ(30, a[3]);
    MY_TArrayAsVector<int> stuck(-1, 0);
    EXPECT_EQ(1, stuck.Add(5));
    EXPECT_EQ(2, stuck.Add(6));
}

TEST(ValueArray, AddsItsOwnElementWhileItGrows) {
    MY_TArrayAsVector<my_string> a(0, 1);
    a.Add(my_string("a text that is longer than any small buffer"));
    a.Add(a[0]);
    EXPECT_EQ(a[0], a[1]);
}

TEST(ValueArray, FindsOrGivesTheLargestInt) {
    MY_TArrayAsVector<int> a(10, 10);
    a.Add(4);
    a.Add(7);
    a.Add(7);
    EXPECT_EQ(1, a.Find(7));
    EXPECT_EQ(2147483647, a.Find(0)) << "free slots don't count";
    EXPECT_TRUE(a.HasMember(4));
    EXPECT_FALSE(a.HasMember(5));
}

TEST(ValueArray, RemoveItemClosesTheGapAndIgnoresWhatIsNotThere) {
    MY_TArrayAsVector<int> a(5, 5);
    for (int x : {1, 2, 3}) a.Add(x);
    a.RemoveItem(a.Find(99));
    a.RemoveItem(-1);
    a.RemoveItem(3);
    EXPECT_EQ(3, a.GetItemsInContainer());
    a.RemoveItem(0);
    EXPECT_EQ(2, a.GetItemsInContainer());
    EXPECT_EQ(2, a[0]);
    EXPECT_EQ(3, a[1]);
}

TEST(ValueArray, FlushResizeAndReallocate) {
    MY_TArrayAsVector<int> a(5, 5);
    for (int x : {1, 2, 3}) a.Add(x);
    a.Resize(20);
    EXPECT_EQ(20, a.limit());
    EXPECT_EQ(3, a.GetItemsInContainer());
    EXPECT_EQ(2, a[1]);
    a.Flush();
    EXPECT_EQ(0, a.GetItemsInContainer());
    EXPECT_TRUE(a.IsEmpty());
    EXPECT_EQ(20, a.limit());
    a.Add(9);
    a.Reallocate(4);
    EXPECT_EQ(0, a.GetItemsInContainer());
    EXPECT_EQ(4, a.limit());
    EXPECT_EQ(0, a[0]);
    a.Add(1);
    a.Resize(0);
    EXPECT_EQ(0, a.GetItemsInContainer());
}

TEST(ValueArray, AccessDoesNotCountAndStaysInside) {
    MY_TArrayAsVector<int> a(10, 10);
    a.Add(1);
    a[5] = 50;
    EXPECT_EQ(1, a.GetItemsInContainer());
    EXPECT_EQ(50, a[5]);
    a[1000] = 3;
    EXPECT_EQ(0, a[1000]);
    EXPECT_EQ(0, a[-1]);
}

TEST(ValueArray, CopiesAndSorts) {
    MY_TArrayAsVector<int> a(2, 2);
    for (int x : {3, 1, 2, 1}) a.Add(x);
    MY_TArrayAsVector<int> b(0, 1);
    b = a;
    b.quickSortArray();
    EXPECT_EQ((std::vector<int>{1, 1, 2, 3}), std::vector<int>(b.begin(), b.end()));
    EXPECT_EQ(3, a[0]);
    a.heapsort();
    EXPECT_EQ(3, a[3]);
    EXPECT_EQ(4U, a.view().size());
}

TEST(PointerArray, DeletesWhatItOwns) {
    {
        MY_TIArrayAsVector<Item> a(1, 3);
        EXPECT_EQ(1, a.Add(new Item(1)));
        EXPECT_EQ(2, a.Add(new Item(2)));
        EXPECT_EQ(3, a.Add(new Item(3)));
        EXPECT_EQ(5, a.limit());
        EXPECT_EQ(3, Item::living);
        a.Detach(1);
        EXPECT_EQ(2, Item::living);
        EXPECT_EQ(3, a[1]->key);
        a.Flush();
        EXPECT_EQ(0, Item::living);
        EXPECT_TRUE(a.IsEmpty());
        a.Add(new Item(4));
        a.Reallocate(7);
        EXPECT_EQ(0, Item::living);
        EXPECT_EQ(7, a.limit());
        a.Add(new Item(5));
    }
    EXPECT_EQ(0, Item::living);
}

TEST(PointerArray, BorrowsWhenItDoesNotOwn) {
    Item one(1);
    Item two(2);
    {
        MY_TIArrayAsVector<Item> a(1, 1);
        a.owns(0);
        a.Add(&one);
        a.Add(&two);
        a.Detach(0);
        EXPECT_EQ(&two, a[0]);
        EXPECT_EQ(1, a.GetItemsInContainer());
        a.Flush();
        a.Add(new Item(3));
        a.Destroy(0);
        EXPECT_EQ(0, a.GetItemsInContainer());
        a.Add(&one);
    }
    EXPECT_EQ(2, Item::living);
}

TEST(PointerArray, DetachOfWhatFindDidNotFindChangesNothing) {
    MY_TIArrayAsVector<Item> a(10, 10);
    a.Add(new Item(1));
    a.Add(new Item(2));
    EXPECT_EQ(1, a.Find(Item(2)));
    EXPECT_EQ(2147483647, a.Find(Item(3)));
    a.Detach(a.Find(Item(3)));
    EXPECT_EQ(2, a.GetItemsInContainer());
    Item const same_key(2, 9);
    EXPECT_EQ(1, a.Find(&same_key)) << "by value, not by address";
    EXPECT_EQ(2147483647, a.Find(static_cast<Item const*>(nullptr)));
}

TEST(PointerArray, AccessBehindTheCountExtendsTheArray) {
    MY_TIArrayAsVector<Item> a(10, 10);
    EXPECT_EQ(11, a.limit());
    for (int i = 0; i < 3; ++i) a.Add(new Item(i));
    EXPECT_EQ(nullptr, a[5]);
    EXPECT_EQ(6, a.GetItemsInContainer());
    EXPECT_EQ(nullptr, std::as_const(a)[8]);
    EXPECT_EQ(6, a.GetItemsInContainer()) << "const access doesn't";
    a[8] = new Item(8);
    EXPECT_EQ(9, a.GetItemsInContainer());
    EXPECT_EQ(nullptr, a[11]) << "the fallback slot";
    Item stray(1);
    a[11] = &stray;
    EXPECT_EQ(nullptr, a[11]);
    EXPECT_EQ(nullptr, a[-1]);
    EXPECT_EQ(9, a.GetItemsInContainer());
    EXPECT_EQ(8, a.Find(Item(8))) << "empty slots are passed over";
}

TEST(PointerArray, CopyOfAnOwnerOwnsCopies) {
    MY_TIArrayAsVector<Item> a(3, 3);
    a.Add(new Item(1));
    a[2] = new Item(3);
    MY_TIArrayAsVector<Item> b(0, 1);
    b.Add(new Item(9));
    b = a;
    EXPECT_EQ(4, Item::living);
    EXPECT_NE(a[0], b[0]);
    EXPECT_EQ(1, b[0]->key);
    EXPECT_EQ(nullptr, std::as_const(b)[1]);
    b = *&b;
    EXPECT_EQ(4, Item::living);
    MY_TIArrayAsVector<Item> c(a);
    EXPECT_EQ(6, Item::living);
    MY_TIArrayAsVector<Item> d(std::move(c));
    EXPECT_EQ(3, d.GetItemsInContainer());
    d = std::move(b);
    EXPECT_EQ(4, Item::living);
}

TEST(PointerArray, CopyOfABorrowerBorrows) {
    Item one(1);
    MY_TIArrayAsVector<Item> a(3, 3);
    a.owns(0);
    a.Add(&one);
    MY_TIArrayAsVector<Item> b(a);
    EXPECT_EQ(0, b.owns());
    EXPECT_EQ(&one, b[0]);
    EXPECT_EQ(1, Item::living);
}

TEST(PointerArray, SortsByValueAndKeepsEqualElementsInOrder) {
    MY_TIArrayAsVector<Item> a(6, 3);
    int const keys[] = {3, 1, 2, 1, 3};
    for (int i = 0; i < 5; ++i) a.Add(new Item(keys[i], i));
    EXPECT_EQ(nullptr, a[5]);
    a.quickSortArray();
    std::string order;
    for (int i = 0; i < 5; ++i) order += std::to_string(a[i]->key) + std::to_string(a[i]->tag) + " ";
    EXPECT_EQ("11 13 22 30 34 ", order);
    EXPECT_EQ(nullptr, a[5]) << "an empty slot goes last";
    EXPECT_EQ(a[0], a.getIterator()[0]);
    EXPECT_EQ(6U, a.view().size());
}

TEST(SortedArray, InsertsBehindEqualElementsAndReturnsTheIndex) {
    MY_TISArrayAsVector<Item> a(2, 2);
    EXPECT_EQ(0, a.Add(new Item(5, 0)));
    EXPECT_EQ(0, a.Add(new Item(2, 1)));
    EXPECT_EQ(2, a.Add(new Item(5, 2)));
    EXPECT_EQ(1, a.Add(new Item(2, 3)));
    EXPECT_EQ(2, a.Add(new Item(3, 4)));
    std::string order;
    for (Item const* item : a) order += std::to_string(item->key) + std::to_string(item->tag) + " ";
    EXPECT_EQ("21 23 34 50 52 ", order);
    EXPECT_EQ(5, a.GetItemsInContainer());
    EXPECT_FALSE(a.IsEmpty());
    EXPECT_EQ(5, Item::living);
    a.Flush();
    EXPECT_EQ(0, Item::living);
}

TEST(SortedArray, BorrowsWhenToldNotToOwn) {
    Item one(1);
    {
        MY_TISArrayAsVector<Item> a(2, 2);
        a.owns(0);
        a.Add(&one);
        EXPECT_EQ(&one, a[0]);
    }
    EXPECT_EQ(1, Item::living);
}
