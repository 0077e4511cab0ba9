// String lists: text files (with byte limits and non-text content), the
// binary form (with truncated and lying input), splitting, lookup, joining.
#include "foundation/FStringList.h"

#include <gtest/gtest.h>

#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/ScopedTempDir.h"

namespace vorn {
namespace {

std::string Str(const FString* s) { return s && s->text ? std::string(s->text) : std::string(); }
std::string Str(const FString& s) { return Str(&s); }

std::vector<std::string> Items(const FStringList& list) {
  std::vector<std::string> out;
  for (int i = 0; i < list.count; ++i) out.push_back(Str(list[i]));
  return out;
}

using Lines = std::vector<std::string>;

std::string Int32Bytes(std::int32_t v) { return std::string(reinterpret_cast<const char*>(&v), 4); }

class FStringListFileTest : public ::testing::Test {
 protected:
  std::string PathFor(const char* name) { return dir_.File(name); }
  std::string WriteFile(const char* name, const std::string& bytes) {
    const std::string path = PathFor(name);
    FILE* f = std::fopen(path.c_str(), "wb");
    EXPECT_NE(f, nullptr);
    if (f) {
      std::fwrite(bytes.data(), 1, bytes.size(), f);
      std::fclose(f);
    }
    return path;
  }
  static std::string ReadFile(const std::string& path) {
    std::string out;
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return out;
    int c;
    while ((c = std::fgetc(f)) != EOF) out.push_back(static_cast<char>(c));
    std::fclose(f);
    return out;
  }
  void SetUp() override { ASSERT_FALSE(dir_.path().empty()); }

  kez_testing::ScopedTempDir dir_;
};

// A binary-form file opened for reading, removed on close.
FILE* BinaryWith(const std::string& bytes) {
  FILE* f = std::tmpfile();
  if (f == nullptr) return nullptr;
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::rewind(f);
  return f;
}

TEST_F(FStringListFileTest, LoadsLinesWithoutTrailingControlCharacters) {
  FStringList list;
  ASSERT_TRUE(list.LoadFromFile(WriteFile("crlf", "x\r\ny\n").c_str(), 0));
  EXPECT_EQ(Items(list), (Lines{"x", "y"}));
  ASSERT_TRUE(list.LoadFromFile(WriteFile("blank", "x\n\ny").c_str(), 0));
  EXPECT_EQ(Items(list), (Lines{"x", "", "y"}));
  EXPECT_EQ(list[1]->text, nullptr);
  ASSERT_TRUE(list.LoadFromFile(WriteFile("ctl", "\ta b\t \t\r\n\r\n\x01z\x7f").c_str(), 0));
  EXPECT_EQ(Items(list), (Lines{"\ta b\t ", "", "\x01z"}));
  ASSERT_TRUE(list.LoadFromFile(WriteFile("nl", "\n").c_str(), 0));
  EXPECT_EQ(Items(list), (Lines{""}));
  // Bytes above 127 are kept as they are.
  ASSERT_TRUE(list.LoadFromFile(WriteFile("utf8", "caf\xc3\xa9\n\xff").c_str(), 0));
  EXPECT_EQ(Items(list), (Lines{"caf\xc3\xa9", "\xff"}));
}

TEST_F(FStringListFileTest, MaxBytesCutsTheFile) {
  const std::string path = WriteFile("cut", "abc\ndef");
  FStringList list;
  ASSERT_TRUE(list.LoadFromFile(path.c_str(), 3));
  EXPECT_EQ(Items(list), (Lines{"abc"}));
  ASSERT_TRUE(list.LoadFromFile(path.c_str(), 5));
  EXPECT_EQ(Items(list), (Lines{"abc", "d"}));
  ASSERT_TRUE(list.LoadFromFile(path.c_str(), 1000));
  EXPECT_EQ(Items(list), (Lines{"abc", "def"}));
  ASSERT_TRUE(list.LoadFromFile(path.c_str(), 0));
  EXPECT_EQ(Items(list), (Lines{"abc", "def"}));
}

TEST_F(FStringListFileTest, EmptyAndMissingFiles) {
  FStringList list;
  list.SplitStr("old,contents", ",");
  ASSERT_TRUE(list.LoadFromFile(WriteFile("empty", "").c_str(), 0));
  EXPECT_EQ(list.count, 0);
  EXPECT_EQ(list.block, nullptr);

  list.SplitStr("old,contents", ",");
  EXPECT_FALSE(list.LoadFromFile(PathFor("missing").c_str(), 0));
  EXPECT_EQ(list.count, 0);  // cleared even though nothing was read
  EXPECT_FALSE(list.LoadFromFile(nullptr, 0));
  EXPECT_FALSE(list.LoadFromFile((dir_.File("no_such_dir") + "/x/y.txt").c_str(), 0));
  // A directory is no text file; whatever it answers, it holds no lines.
  list.LoadFromFile(dir_.path().c_str(), 0);
  EXPECT_EQ(list.count, 0);
}

TEST_F(FStringListFileTest, BinaryGarbageLoadsAsCleanLines) {
  std::mt19937 gen(7);
  std::string bytes;
  for (int i = 0; i < 20000; ++i) bytes.push_back(static_cast<char>(gen() & 0xff));
  bytes += std::string("\0\0\0\n", 4);
  bytes += std::string("ab\0cd\nef\0\n\0\n", 12);
  FStringList list;
  ASSERT_TRUE(list.LoadFromFile(WriteFile("garbage", bytes).c_str(), 0));
  ASSERT_GE(list.count, 3);
  // A NUL ends the text of its line.
  EXPECT_EQ(Str(list[list.count - 3]), "ab");
  EXPECT_EQ(Str(list[list.count - 2]), "ef");
  EXPECT_EQ(Str(list[list.count - 1]), "");
  int newlines = 0;
  for (char c : bytes) newlines += c == '\n';
  EXPECT_EQ(list.count, newlines);
  for (int i = 0; i < list.count; ++i) {
    const FString* s = list[i];
    if (s->text == nullptr) {
      EXPECT_EQ(s->bufferSize, 0);
      continue;
    }
    const int n = s->Length();
    ASSERT_GT(n, 0);
    EXPECT_LT(n, s->bufferSize);
    EXPECT_EQ(std::strchr(s->text, '\n'), nullptr);
    EXPECT_FALSE(std::iscntrl(static_cast<unsigned char>(s->text[n - 1])));
  }
}

TEST_F(FStringListFileTest, SavesLinesAndLoadsThemBack) {
  FStringList list;
  list.Add(new FString("first"));
  list.Add(new FString());
  list.Add(new FString("last"));
  const std::string path = PathFor("saved");
  ASSERT_TRUE(list.SaveToFile(path.c_str()));
  EXPECT_EQ(ReadFile(path), "first\n\nlast\n");
  FStringList back;
  ASSERT_TRUE(back.LoadFromFile(path.c_str(), 0));
  EXPECT_EQ(Items(back), (Lines{"first", "", "last"}));

  FStringList empty;
  ASSERT_TRUE(empty.SaveToFile(path.c_str()));
  EXPECT_EQ(ReadFile(path), "");
  EXPECT_FALSE(list.SaveToFile((dir_.File("no_such_dir") + "/x.txt").c_str()));
  EXPECT_FALSE(list.SaveToFile(static_cast<const char*>(nullptr)));
}

TEST(FStringListBinaryTest, WritesCountThenLengthsWithoutNul) {
  FStringList list;
  list.Add(new FString("ab"));
  list.Add(new FString());
  FILE* f = std::tmpfile();
  ASSERT_NE(f, nullptr);
  ASSERT_TRUE(list.SaveToFile(f));
  std::rewind(f);
  char bytes[64];
  const std::size_t n = std::fread(bytes, 1, sizeof bytes, f);
  EXPECT_EQ(std::string(bytes, n), Int32Bytes(2) + Int32Bytes(2) + "ab" + Int32Bytes(0));

  std::rewind(f);
  FStringList back;
  back.SplitStr("stale", ",");
  ASSERT_TRUE(back.LoadFromFile(f));
  EXPECT_EQ(Items(back), (Lines{"ab", ""}));
  std::fclose(f);
}

TEST(FStringListBinaryTest, RoundTripOfManyStrings) {
  FStringList list;
  for (int i = 0; i < 1000; ++i) list.Add(new FString(std::string(i % 50, 'a' + i % 26).c_str()));
  FILE* f = std::tmpfile();
  ASSERT_NE(f, nullptr);
  ASSERT_TRUE(list.SaveToFile(f));
  ASSERT_TRUE(FString("after").SaveToFile(f));  // forms embed in other files
  std::rewind(f);
  FStringList back;
  ASSERT_TRUE(back.LoadFromFile(f));
  EXPECT_EQ(Items(back), Items(list));
  EXPECT_EQ(Str(FString(f)), "after");
  std::fclose(f);
}

TEST(FStringListBinaryTest, RefusesBadCounts) {
  struct Case {
    std::string bytes;
    bool ok;
    Lines items;
  };
  const Case cases[] = {
      {"", false, {}},                                  // no count
      {std::string("\x01\x00", 2), false, {}},          // cut inside the count
      {Int32Bytes(-1), false, {}},                      // negative count
      {Int32Bytes(INT32_MIN), false, {}},
      {Int32Bytes(70000) + Int32Bytes(1) + "a", false, {}},  // too many strings
      {Int32Bytes(65537), false, {}},
      {Int32Bytes(0), true, {}},
      {Int32Bytes(65536), false, {}},  // accepted, then the file ends
      {Int32Bytes(3) + Int32Bytes(1) + "a", false, {"a"}},  // fewer strings than announced
  };
  for (const Case& c : cases) {
    FILE* f = BinaryWith(c.bytes);
    ASSERT_NE(f, nullptr);
    FStringList list;
    list.SplitStr("stale", ",");
    EXPECT_EQ(list.LoadFromFile(f), c.ok) << "input of " << c.bytes.size() << " bytes";
    EXPECT_EQ(Items(list), c.items);
    std::fclose(f);
  }
  FStringList list;
  EXPECT_FALSE(list.LoadFromFile(static_cast<FILE*>(nullptr)));
  EXPECT_FALSE(list.SaveToFile(static_cast<FILE*>(nullptr)));
}

TEST(FStringListBinaryTest, OddLengthsGiveEmptyStrings) {
  FILE* f = BinaryWith(Int32Bytes(4) + Int32Bytes(0) + Int32Bytes(-3) + Int32Bytes(INT32_MAX) +
                       Int32Bytes(2) + "ok");
  ASSERT_NE(f, nullptr);
  FStringList list;
  EXPECT_TRUE(list.LoadFromFile(f));
  EXPECT_EQ(Items(list), (Lines{"", "", "", "ok"}));
  std::fclose(f);
}

TEST(FStringListBinaryTest, LengthPastTheEndKeepsWhatArrived) {
  // A length that lies about the file (two billion bytes announced, three
  // present): the bytes that arrived form the last string, and the load fails.
  FILE* f = BinaryWith(Int32Bytes(2) + Int32Bytes(1) + "x" + Int32Bytes(2000000000) + "abc");
  ASSERT_NE(f, nullptr);
  FStringList list;
  EXPECT_FALSE(list.LoadFromFile(f));
  EXPECT_EQ(Items(list), (Lines{"x", "abc"}));
  std::fclose(f);

  // Bytes with NULs inside end at the first one.
  f = BinaryWith(Int32Bytes(1) + Int32Bytes(5) + std::string("a\0b\0c", 5));
  ASSERT_NE(f, nullptr);
  EXPECT_TRUE(list.LoadFromFile(f));
  EXPECT_EQ(Items(list), (Lines{"a"}));
  std::fclose(f);

  // The file ends between a string and the next length.
  f = BinaryWith(Int32Bytes(2) + Int32Bytes(2) + "ab" + std::string("\x02", 1));
  ASSERT_NE(f, nullptr);
  EXPECT_FALSE(list.LoadFromFile(f));
  EXPECT_EQ(Items(list), (Lines{"ab"}));
  std::fclose(f);
}

TEST(FStringListSplitTest, SplitReplacesTheContents) {
  FStringList list;
  list.SplitStr("a,b", ",");
  EXPECT_EQ(Items(list), (Lines{"a", "b"}));
  list.SplitStr("a,b,", ",");
  EXPECT_EQ(Items(list), (Lines{"a", "b", ""}));
  list.SplitStr(",,", ",");
  EXPECT_EQ(Items(list), (Lines{"", "", ""}));
  list.SplitStr("", ",");
  EXPECT_EQ(Items(list), (Lines{""}));
  list.SplitStr("a;b", ",");
  EXPECT_EQ(Items(list), (Lines{"a;b"}));
  list.SplitStr("a::b::::c", "::");
  EXPECT_EQ(Items(list), (Lines{"a", "b", "", "c"}));
  list.SplitStr("abc", nullptr);
  EXPECT_EQ(Items(list), (Lines{"abc"}));
  list.SplitStr("abc", "");  // an empty separator never occurs
  EXPECT_EQ(Items(list), (Lines{"abc"}));
}

TEST(FStringListSplitTest, BracketSplitAppendsAndSkipsBracketedSeparators) {
  FStringList list;
  list.SplitStr("a(b,c),d", ",", "()");
  EXPECT_EQ(Items(list), (Lines{"a(b,c)", "d"}));
  list.SplitStr("e,,f(g,(h,i),j),", ",", "()");  // appended, nested brackets
  EXPECT_EQ(Items(list), (Lines{"a(b,c)", "d", "e", "", "f(g,(h,i),j)", ""}));
  list.Clear();
  list.SplitStr("", ",", "()");
  EXPECT_EQ(Items(list), (Lines{""}));
  list.Clear();
  list.SplitStr("a; b;(c; d)", "; ", "()");
  EXPECT_EQ(Items(list), (Lines{"a", "b;(c; d)"}));
  list.Clear();
  list.SplitStr("a,b", ",", "");  // no brackets: a plain split
  EXPECT_EQ(Items(list), (Lines{"a", "b"}));
  list.Clear();
  list.SplitStr("a,b", "", "()");  // an empty separator splits nothing
  EXPECT_EQ(Items(list), (Lines{"a,b"}));
}

TEST(FStringListSplitTest, BracketSplitQuirksAreKept) {
  // Equal bracket characters: every one opens, so after the first nothing is
  // split any more, not even after the "closing" one.
  FStringList list;
  list.SplitStr("a,\"b,c\",d,e", ",", "\"\"");
  EXPECT_EQ(Items(list), (Lines{"a", "\"b,c\",d,e"}));
  // A closing character without an opening one makes the depth negative,
  // which also stops splitting; a later opening one brings it back to 0.
  list.Clear();
  list.SplitStr("a),b,(c,d", ",", "()");
  EXPECT_EQ(Items(list), (Lines{"a),b,(c", "d"}));
}

TEST(FStringListTest, ValuesFindsTheFirstExactKey) {
  FStringList list;
  list.Add(new FString("speedx=1"));
  list.Add(new FString());
  list.Add(new FString("speed=2"));
  list.Add(new FString("speed=3"));
  list.Add(new FString("empty="));
  list.Add(new FString("=anon"));
  EXPECT_EQ(Str(list.Values("speed")), "2");
  EXPECT_TRUE(list.Values("speedx") == "1");
  EXPECT_EQ(list.Values("empty").text, nullptr);
  EXPECT_EQ(list.Values("missing").text, nullptr);
  EXPECT_TRUE(list.Values("") == "anon");
  EXPECT_EQ(FStringList().Values("speed").text, nullptr);
}

TEST(FStringListTest, GetTextJoinsWithNewlines) {
  FStringList list;
  EXPECT_EQ(list.GetText().text, nullptr);
  list.Add(new FString());
  EXPECT_EQ(list.GetText().text, nullptr);
  list.Add(new FString());
  EXPECT_TRUE(list.GetText() == "\n");
  list.Clear();
  list.SplitStr("a,,bc", ",");
  EXPECT_TRUE(list.GetText() == "a\n\nbc");
  list.SplitStr("only", ",");
  EXPECT_TRUE(list.GetText() == "only");
}

}  // namespace
}  // namespace vorn
