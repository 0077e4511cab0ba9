// Growth, cheap head removal, shrinking, sorting and ownership of the lists.
#include "foundation/FList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "foundation/FString.h"

namespace vorn {
namespace {

FListT<int> Filled(int n) {
  FListT<int> list;
  for (int i = 0; i < n; ++i) list.Add(i);
  return list;
}

// An object that counts how many of its kind are alive.
struct Counted {
  static int alive;
  int value;
  explicit Counted(int v = 0) : value(v) { ++alive; }
  Counted(const Counted& o) : value(o.value) { ++alive; }
  virtual ~Counted() { --alive; }
};
int Counted::alive = 0;

TEST(FListTest, GrowsTo256ThenDoubles) {
  FListT<int> list;
  EXPECT_EQ(list.block, nullptr);
  list.Add(7);
  EXPECT_EQ(list.capacity, 256);
  for (int i = 1; i < 256; ++i) list.Add(i);
  EXPECT_EQ(list.capacity, 256);
  list.Add(256);  // the 257th append
  EXPECT_EQ(list.capacity, 512);
  EXPECT_EQ(list.count, 257);
  EXPECT_EQ(list[0], 7);
  for (int i = 1; i <= 256; ++i) ASSERT_EQ(list[i], i);
  for (int i = 257; i <= 1024; ++i) list.Add(i);
  EXPECT_EQ(list.capacity, 2048);
  EXPECT_EQ(list.block, list.data);
  list.Clear();
  EXPECT_EQ(list.block, nullptr);
  EXPECT_EQ(list.capacity, 0);
  list.Add(3);
  EXPECT_EQ(list.capacity, 256);
}

TEST(FListTest, RemovingTheHeadMovesNothing) {
  FListT<int> list = Filled(10);
  int* block = list.block;
  int* second = &list[1];
  list.Delete(0);
  EXPECT_EQ(list.block, block);
  EXPECT_EQ(list.data, block + 1);
  EXPECT_EQ(list.capacity, 255);
  EXPECT_EQ(list.count, 9);
  EXPECT_EQ(&list[0], second);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(list[i], i + 1);
  // Growth after head removals starts the new block at its first slot.
  for (int i = 0; i < 300; ++i) list.Add(100 + i);
  EXPECT_EQ(list.capacity, 510);
  EXPECT_EQ(list.data, list.block);
  EXPECT_EQ(list[0], 1);
  EXPECT_EQ(list[9], 100);
}

TEST(FListTest, RemovingTheHeadAtCapacityOneShiftsInstead) {
  FListT<int> list = Filled(256);
  for (int i = 0; i < 255; ++i) list.Delete(0);
  ASSERT_EQ(list.capacity, 1);
  ASSERT_EQ(list.count, 1);
  EXPECT_EQ(list[0], 255);
  int* data = list.data;
  list.Delete(0);
  EXPECT_EQ(list.data, data);  // did not advance past the block
  EXPECT_EQ(list.capacity, 1);
  EXPECT_EQ(list.count, 0);
  list.Add(1);  // the last slot is reused
  EXPECT_EQ(list.capacity, 1);
  list.Add(2);  // then the list doubles from 1
  EXPECT_EQ(list.capacity, 2);
  EXPECT_EQ(list[0], 1);
  EXPECT_EQ(list[1], 2);
}

TEST(FListTest, ShrinksOnlyLongListsAtHalf) {
  // 513 elements in 1024 slots: removing one from the end halves the block.
  FListT<int> list = Filled(513);
  ASSERT_EQ(list.capacity, 1024);
  list.Delete(512);
  EXPECT_EQ(list.capacity, 512);
  EXPECT_EQ(list.count, 512);
  for (int i = 0; i < 512; ++i) ASSERT_EQ(list[i], i);

  // The same from the middle.
  FListT<int> middle = Filled(513);
  middle.Delete(100);
  EXPECT_EQ(middle.capacity, 512);
  EXPECT_EQ(middle[99], 99);
  EXPECT_EQ(middle[100], 101);
  EXPECT_EQ(middle[511], 512);

  // Removing the head shrinks the capacity by one first, so 512 elements in
  // 1023 slots are more than half and the block stays.
  FListT<int> head = Filled(513);
  head.Delete(0);
  EXPECT_EQ(head.capacity, 1023);
  EXPECT_EQ(head.count, 512);

  // A list of 512 slots is never halved by removals from the middle or end.
  FListT<int> small = Filled(300);
  ASSERT_EQ(small.capacity, 512);
  while (small.count > 1) small.Delete(small.count / 2);
  small.Delete(0);
  EXPECT_EQ(small.capacity, 511);
  EXPECT_EQ(small.count, 0);
}

TEST(FListTest, ShrinkingAfterHeadRemovalsKeepsTheLiveElements) {
  FListT<int> list = Filled(1500);  // 2048 slots
  for (int i = 0; i < 10; ++i) list.Delete(0);
  ASSERT_EQ(list.capacity, 2038);
  // Remove from the end until the count reaches half of the slots.
  while (list.capacity == 2038) list.Delete(list.count - 1);
  EXPECT_EQ(list.capacity, 1019);
  EXPECT_EQ(list.count, 1019);
  EXPECT_EQ(list.data, list.block);
  for (int i = 0; i < list.count; ++i) ASSERT_EQ(list[i], i + 10);
}

TEST(FListTest, SortOrdersAndFlags) {
  FListT<int> one = Filled(1);
  one.Sort();
  EXPECT_EQ(one.sorted, 0);  // nothing to sort

  FListT<int> two;
  two.Add(5);
  two.Add(-3);
  two.Sort();
  EXPECT_EQ(two[0], -3);
  EXPECT_EQ(two[1], 5);
  EXPECT_EQ(two.sorted, 1);
  two.Add(1);
  EXPECT_EQ(two.sorted, 0);

  FListT<int> same;
  for (int i = 0; i < 50; ++i) same.Add(4);
  same.Sort();
  EXPECT_EQ(same.count, 50);
  for (int i = 0; i < 50; ++i) ASSERT_EQ(same[i], 4);
}

TEST(FListTest, QuickSortMatchesAReferenceSort) {
  std::mt19937 gen(12345);
  for (int n = 0; n < 300; n += (n < 20 ? 1 : 37)) {
    for (int range : {2, 5, 1000, 1 << 30}) {
      std::uniform_int_distribution<int> dist(-range, range);
      FListT<int> list;
      std::vector<int> expected;
      for (int i = 0; i < n; ++i) {
        const int v = dist(gen);
        list.Add(v);
        expected.push_back(v);
      }
      std::sort(expected.begin(), expected.end());
      list.Sort();
      for (int i = 0; i < n; ++i) {
        ASSERT_EQ(list[i], expected[i]) << "n=" << n << " range=" << range;
      }
    }
  }
  // Already sorted and reversed input.
  FListT<int> up = Filled(1000);
  up.Sort();
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(up[i], i);
  FListT<int> down;
  for (int i = 999; i >= 0; --i) down.Add(i);
  down.Sort();
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(down[i], i);
}

TEST(FListTest, QuickSortOnASubrange) {
  FListT<int> list;
  for (int v : {9, 4, 3, 2, 1, 0}) list.Add(v);
  list.QuickSort(1, 4);
  const int expected[] = {9, 1, 2, 3, 4, 0};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(list[i], expected[i]);
}

TEST(FListTest, StringElementsSurviveGrowthAndRemoval) {
  FListT<FString> list;
  for (int i = 0; i < 600; ++i) list.Add(FString(i));
  EXPECT_EQ(list.capacity, 1024);
  for (int i = 0; i < 600; ++i) ASSERT_EQ(list[i].AsInt(), i);
  list.Delete(0);
  list.Delete(10);
  EXPECT_TRUE(list[0] == "1");
  EXPECT_TRUE(list[10] == "12");
  // A copy owns its own texts.
  FListT<FString> copy(list);
  copy[0] = "changed";
  EXPECT_TRUE(list[0] == "1");
  EXPECT_NE(copy[1].text, list[1].text);
  while (list.count > 0) list.Delete(list.count - 1);
}

TEST(FListTest, PointerListOwnsItsElements) {
  Counted::alive = 0;
  {
    FListP<Counted> list;
    for (int i = 0; i < 300; ++i) list.Add(new Counted(i));
    EXPECT_EQ(Counted::alive, 300);
    list.Delete(0);
    list.Delete(5);
    EXPECT_EQ(Counted::alive, 298);
    EXPECT_EQ(list[0]->value, 1);
    EXPECT_EQ(list[5]->value, 7);
    Counted* taken = list.Take(0);
    EXPECT_EQ(list.count, 297);
    delete taken;
    EXPECT_EQ(Counted::alive, 297);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(FListTest, PointerListInsertStoresCopies) {
  Counted::alive = 0;
  FListP<Counted> list;
  Counted a(1);
  Counted* first = list.Insert(0, a);  // empty list: appended
  EXPECT_NE(first, &a);
  list.Insert(5, Counted(3));  // past the end: appended
  list.Insert(1, Counted(2));  // between
  list.Insert(0, Counted(0));  // front
  ASSERT_EQ(list.count, 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(list[i]->value, i);
  EXPECT_EQ(list[1], first);
  EXPECT_EQ(Counted::alive, 5);  // four copies and `a`
  list.Clear();
  EXPECT_EQ(Counted::alive, 1);
  EXPECT_EQ(list.block, nullptr);

  // Inserting into a full list grows it first.
  for (int i = 0; i < 256; ++i) list.Add(new Counted(i));
  list.Insert(10, Counted(-1));
  EXPECT_EQ(list.capacity, 512);
  EXPECT_EQ(list[10]->value, -1);
  EXPECT_EQ(list[11]->value, 10);
  EXPECT_EQ(list[256]->value, 255);
}

TEST(FListTest, ListOfPointerCellsFreesOnlyTheCells) {
  Counted::alive = 0;
  Counted* object = new Counted(42);
  {
    FListP<Counted*> cells;
    cells.Add(new Counted*(object));
    EXPECT_EQ(*cells[0], object);
  }
  // The cell is gone, the object it pointed to is not.
  EXPECT_EQ(Counted::alive, 1);
  EXPECT_EQ(object->value, 42);
  delete object;
}

}  // namespace
}  // namespace vorn
