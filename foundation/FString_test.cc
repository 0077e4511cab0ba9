// Strings: buffers, formatting, comparison, search, splitting, parsing and
// the binary form, including bad and hostile binary input.
#include "foundation/FString.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace vorn {
namespace {

std::string Str(const FString& s) { return s.text ? std::string(s.text) : std::string(); }

// A temporary file holding `bytes`, positioned at its start.
FILE* FileWith(const std::string& bytes) {
  FILE* f = std::tmpfile();
  if (f == nullptr) return nullptr;
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::rewind(f);
  return f;
}

std::string Int32Bytes(std::int32_t v) { return std::string(reinterpret_cast<const char*>(&v), 4); }

std::string FileBytes(FILE* f) {
  std::string out;
  std::rewind(f);
  int c;
  while ((c = std::fgetc(f)) != EOF) out.push_back(static_cast<char>(c));
  return out;
}

TEST(FStringTest, EmptyStringHasNoBuffer) {
  for (const FString& s : {FString(), FString(""), FString(static_cast<const char*>(nullptr))}) {
    EXPECT_EQ(s.PChar(), nullptr);
    EXPECT_EQ(s.Length(), 0);
    EXPECT_EQ(s.bufferSize, 0);
  }
  FString s("abc");
  s = "";
  EXPECT_EQ(s.text, nullptr);
  EXPECT_EQ(s.bufferSize, 0);
}

TEST(FStringTest, BuffersAreAtLeast16BytesAndReusedWhenTheTextFits) {
  FString s("a");
  EXPECT_EQ(s.bufferSize, 16);
  s = std::string(31, 'x').c_str();
  ASSERT_EQ(s.bufferSize, 32);
  char* buffer = s.text;
  s = std::string(20, 'y').c_str();  // fits: same buffer, rest zeroed
  EXPECT_EQ(s.text, buffer);
  EXPECT_EQ(s.bufferSize, 32);
  EXPECT_EQ(Str(s), std::string(20, 'y'));
  for (int i = 20; i < 32; ++i) EXPECT_EQ(s.text[i], '\0');
  s = std::string(31, 'z').c_str();  // 31 < 32 still fits
  EXPECT_EQ(s.text, buffer);
  s = std::string(40, 'w').c_str();  // reallocated to length + 1
  EXPECT_EQ(s.bufferSize, 41);
  EXPECT_EQ(Str(s), std::string(40, 'w'));
}

TEST(FStringTest, CopiesNeverShareBuffers) {
  FString a("hello");
  FString b(a);
  EXPECT_NE(a.text, b.text);
  FString c;
  c = a;
  EXPECT_NE(a.text, c.text);
  c = c;  // self-assignment keeps the text
  EXPECT_EQ(Str(c), "hello");
  b = "world";
  EXPECT_EQ(Str(a), "hello");
  FString moved(std::move(b));
  EXPECT_EQ(Str(moved), "world");
  EXPECT_EQ(b.text, nullptr);
}

TEST(FStringTest, NumberForms) {
  EXPECT_EQ(Str(FString(true)), "1");
  EXPECT_EQ(Str(FString(false)), "0");
  EXPECT_EQ(Str(FString(-42)), "-42");
  EXPECT_EQ(Str(FString(INT_MIN)), "-2147483648");
  EXPECT_EQ(Str(FString(4294967295u)), "4294967295");
  EXPECT_EQ(Str(FString(255, 4)), "00ff");
  EXPECT_EQ(Str(FString(255, 8)), "000000ff");
  EXPECT_EQ(Str(FString(0x12345, 2)), "12345");  // never cut
  EXPECT_EQ(Str(FString(-1, 0)), "ffffffff");
  EXPECT_EQ(Str(FString(1.0f / 3)), "0.3333333433");
  EXPECT_EQ(Str(FString(0.1)), "0.1");
  EXPECT_EQ(Str(FString(1.0 / 3)), "0.3333333333333333");
  EXPECT_EQ(Str(FString(1e300)), "1e+300");
  // A width that would print more than the scratch buffer is cut, not overrun.
  FString wide(1, 1000);
  EXPECT_EQ(wide.Length(), 255);
}

TEST(FStringTest, AppendAndConcatenate) {
  FString s;
  s += "abc";
  EXPECT_EQ(Str(s), "abc");
  EXPECT_EQ(s.bufferSize, 16);
  char* buffer = s.text;
  s += "def";  // fits
  EXPECT_EQ(s.text, buffer);
  s += static_cast<const char*>(nullptr);
  s += FString();
  EXPECT_EQ(Str(s), "abcdef");
  s += "0123456789";  // 16 characters need 17 bytes
  EXPECT_EQ(s.bufferSize, 17);
  EXPECT_EQ(Str(s), "abcdef0123456789");
  s += s;  // appending itself
  EXPECT_EQ(Str(s), "abcdef0123456789abcdef0123456789");
  FString t("ab");
  t += t;  // in place, from its own buffer
  EXPECT_EQ(Str(t), "abab");

  FString x("x");
  EXPECT_EQ(Str(x + "y" + FString("z")), "xyz");
  EXPECT_EQ(Str(FString() + "y"), "y");
  EXPECT_EQ(Str(x + static_cast<const char*>(nullptr)), "x");
  EXPECT_EQ(Str(x), "x");
}

TEST(FStringTest, ComparesBytewiseWithPrefixesFirst) {
  EXPECT_TRUE(FString("abc") == "abc");
  EXPECT_TRUE(FString("abc") == FString("abc"));
  EXPECT_TRUE(FString() == "");
  EXPECT_TRUE(FString() == static_cast<const char*>(nullptr));
  EXPECT_TRUE(FString("ab") < FString("abc"));
  EXPECT_TRUE(FString("abc") > "ab");
  EXPECT_TRUE(FString() < "a");
  EXPECT_TRUE(FString("b") > FString("abc"));
  EXPECT_TRUE(FString("abc") != "abd");
  EXPECT_FALSE(FString("abc") != FString("abc"));
  // Bytes above 127 order after ASCII.
  EXPECT_TRUE(FString("\xc3\xa9") > "z");
  EXPECT_EQ(FString::CmpStr(nullptr, nullptr), 0);
  EXPECT_GT(FString::CmpStr("a", nullptr), 0);
}

TEST(FStringTest, PosIsOneBasedAndZeroWhenAbsent) {
  EXPECT_EQ(FString("abc").Pos("b"), 2);
  EXPECT_EQ(FString("abc").Pos("a"), 1);
  EXPECT_EQ(FString("abcbc").Pos(FString("bc")), 2);
  EXPECT_EQ(FString("abc").Pos("d"), 0);
  EXPECT_EQ(FString().Pos("b"), 0);
  EXPECT_EQ(FString("abc").Pos(""), 0);
  EXPECT_EQ(FString("abc").Pos(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(FString("abc").Pos(FString()), 0);
}

TEST(FStringTest, SubString) {
  const FString s("abc");
  EXPECT_EQ(Str(s.SubString(0, 2)), "a");  // a start before 1 eats into count
  EXPECT_EQ(Str(s.SubString(1, 2)), "ab");
  EXPECT_EQ(Str(s.SubString(2, 10)), "bc");
  EXPECT_EQ(Str(s.SubString(3, 1)), "c");
  EXPECT_EQ(s.SubString(4, 1).text, nullptr);
  EXPECT_EQ(s.SubString(1, 0).text, nullptr);
  EXPECT_EQ(s.SubString(2, -1).text, nullptr);
  EXPECT_EQ(s.SubString(-1, 2).text, nullptr);
  EXPECT_EQ(Str(s.SubString(-1, 4)), "ab");
  EXPECT_EQ(FString().SubString(1, 5).text, nullptr);
  EXPECT_EQ(Str(s.SubString(INT_MIN, INT_MAX)), "");
  EXPECT_EQ(Str(s.SubString(1, INT_MAX)), "abc");
  EXPECT_EQ(s.SubString(INT_MAX, INT_MAX).text, nullptr);
}

// Repeated splitting as the line parsers do it.
std::vector<std::string> SplitAll(FString s, const char* sep) {
  std::vector<std::string> pieces;
  while (s.Length() > 0) pieces.push_back(Str(s.SplitBy(sep)));
  return pieces;
}

TEST(FStringTest, SplitByTakesThePieceBeforeTheSeparator) {
  EXPECT_EQ(SplitAll("a,b,,c", ","), (std::vector<std::string>{"a", "b", "", "c"}));
  EXPECT_EQ(SplitAll("a,b,", ","), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(SplitAll(",a", ","), (std::vector<std::string>{"", "a"}));
  EXPECT_EQ(SplitAll("k=>v=>w", "=>"), (std::vector<std::string>{"k", "v", "w"}));

  FString s("abc");
  EXPECT_EQ(Str(s.SplitBy(";")), "abc");  // no separator: all of it
  EXPECT_EQ(s.text, nullptr);
  s = "abc";
  EXPECT_EQ(Str(s.SplitBy(static_cast<const char*>(nullptr))), "abc");
  EXPECT_EQ(s.text, nullptr);
  s = "abc";
  EXPECT_EQ(Str(s.SplitBy("")), "abc");  // an empty separator never occurs
  EXPECT_EQ(s.text, nullptr);
  s = "x;y";
  EXPECT_EQ(Str(s.SplitBy(FString(";"))), "x");
  EXPECT_EQ(Str(s), "y");
  FString empty;
  EXPECT_EQ(empty.SplitBy(",").text, nullptr);

  // The rest is kept in the string's own buffer.
  FString big(std::string(40, 'a').append(",rest").c_str());
  char* buffer = big.text;
  big.SplitBy(",");
  EXPECT_EQ(big.text, buffer);
  EXPECT_EQ(Str(big), "rest");
}

TEST(FStringTest, ReplaceStrDropsATrailingSeparator) {
  EXPECT_EQ(Str(FString("a,b,c").ReplaceStr(",", ";")), "a;b;c");
  EXPECT_EQ(Str(FString("a,b,").ReplaceStr(",", ";")), "a;b");  // kept on purpose
  EXPECT_EQ(Str(FString(",a").ReplaceStr(",", ";")), ";a");
  EXPECT_EQ(Str(FString("a,,b").ReplaceStr(",", "")), "ab");
  EXPECT_EQ(Str(FString("aXXbXXc").ReplaceStr("XX", "--+")), "a--+b--+c");
  EXPECT_EQ(Str(FString("abc").ReplaceStr("", "+")), "abc");
  EXPECT_EQ(Str(FString("abc").ReplaceStr(static_cast<const char*>(nullptr), "+")), "abc");
  EXPECT_EQ(Str(FString("a b").ReplaceStr(FString(" "), FString())), "ab");
  EXPECT_EQ(FString().ReplaceStr(",", ";").text, nullptr);
  const FString original("1,2");
  original.ReplaceStr(",", ".");
  EXPECT_EQ(Str(original), "1,2");
}

// The replacement is defined by repeated splitting; check it against that
// loop on many small strings.
TEST(FStringTest, ReplaceStrAgreesWithRepeatedSplitting) {
  std::mt19937 gen(3);
  const char alphabet[] = "a,;";
  const char* froms[] = {",", ",,", ";,", "a", "a,a"};
  const char* tos[] = {"", "-", "a", ",,"};
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    const int n = static_cast<int>(gen() % 12);
    for (int i = 0; i < n; ++i) text.push_back(alphabet[gen() % 3]);
    const char* from = froms[gen() % 5];
    const char* to = tos[gen() % 4];
    FString w(text.c_str());
    FString expected;
    for (;;) {
      expected += FString::SplitStrBy(w, from);
      if (w.Length() == 0) break;
      expected += to;
    }
    const FString got = FString(text.c_str()).ReplaceStr(from, to);
    ASSERT_EQ(Str(got), Str(expected)) << "'" << text << "' '" << from << "' -> '" << to << "'";
    ASSERT_EQ(got.text == nullptr, got.bufferSize == 0);
    if (got.text) {
      ASSERT_GE(got.bufferSize, 16);
    }
  }
}

TEST(FStringTest, ParsesNumbers) {
  EXPECT_EQ(FString("0x10").AsInt(), 16);
  EXPECT_EQ(FString("10").AsInt(), 10);
  EXPECT_EQ(FString("1fx").AsInt(), 31);  // any 'x' means hexadecimal
  EXPECT_EQ(FString("-7").AsInt(), -7);
  EXPECT_EQ(FString(" 12abc").AsInt(), 12);
  EXPECT_EQ(FString("abc").AsInt(), 0);
  EXPECT_EQ(FString("x").AsInt(), 0);
  EXPECT_EQ(FString().AsInt(), 0);
  EXPECT_EQ(FString("0xffffffff").AsInt(), -1);
  EXPECT_EQ(FString::StrInt(nullptr), 0);

  EXPECT_EQ(FString("4294967295").AsUnsignedInt(), 4294967295u);
  EXPECT_EQ(FString("0xff").AsUnsignedInt(), 255u);
  EXPECT_EQ(FString("zz").AsUnsignedInt(), 0u);
  EXPECT_EQ(FString().AsUnsignedInt(), 0u);

  EXPECT_EQ(FString("2.5").AsFloat(), 2.5);
  EXPECT_EQ(FString("-1e-3").AsFloat(), -1e-3);
  EXPECT_EQ(FString("0.1").AsFloat(), 0.1);
  EXPECT_EQ(FString("abc").AsFloat(), 0.0);
  EXPECT_EQ(FString().AsFloat(), 0.0);
  EXPECT_EQ(FString::StrFloat("7"), 7.0);
}

TEST(FStringTest, ExtractFileNameSplitsAtBackslashesOnly) {
  EXPECT_EQ(Str(FString::FExtractFileName("a\\b\\c.txt")), "c.txt");
  EXPECT_EQ(Str(FString::FExtractFileName("a/b")), "a/b");
  EXPECT_EQ(Str(FString::FExtractFileName("c.txt")), "c.txt");
  EXPECT_EQ(FString::FExtractFileName("dir\\").text, nullptr);
  EXPECT_EQ(FString::FExtractFileName("").text, nullptr);
  EXPECT_EQ(FString::FExtractFileName(nullptr).text, nullptr);
}

TEST(FStringTest, BinaryFormRoundTrip) {
  FILE* f = std::tmpfile();
  ASSERT_NE(f, nullptr);
  EXPECT_TRUE(FString("ab").SaveToFile(f));
  EXPECT_TRUE(FString().SaveToFile(f));
  const std::string longest(65534, 'q');
  EXPECT_TRUE(FString(longest.c_str()).SaveToFile(f));
  EXPECT_TRUE(FString((longest + "q").c_str()).SaveToFile(f));  // written, never read
  EXPECT_EQ(FileBytes(f).substr(0, 12), Int32Bytes(3) + std::string("ab\0", 3) + Int32Bytes(1) +
                                             std::string(1, '\0'));
  std::rewind(f);
  EXPECT_EQ(Str(FString(f)), "ab");
  EXPECT_EQ(FString(f).text, nullptr);
  EXPECT_EQ(Str(FString(f)), longest);
  EXPECT_EQ(FString(f).text, nullptr);  // count 65536 is refused
  std::fclose(f);
}

TEST(FStringTest, BadBinaryFormsGiveTheEmptyString) {
  const std::string cases[] = {
      "",                                         // nothing at all
      std::string("\x03\x00", 2),                 // cut inside the count
      Int32Bytes(0),                              // count below 1
      Int32Bytes(-5) + "abc",                     // negative count
      Int32Bytes(70000) + std::string(70000, 'a'),  // count above 65535
      Int32Bytes(10) + "abc",                     // length past the end
      Int32Bytes(INT32_MAX) + "abc",
  };
  for (const std::string& bytes : cases) {
    FILE* f = FileWith(bytes);
    ASSERT_NE(f, nullptr);
    FString s(f);
    EXPECT_EQ(s.text, nullptr) << "input of " << bytes.size() << " bytes";
    EXPECT_EQ(s.bufferSize, 0);
    std::fclose(f);
  }
  EXPECT_EQ(FString(static_cast<FILE*>(nullptr)).text, nullptr);
  EXPECT_FALSE(FString("a").SaveToFile(nullptr));
}

TEST(FStringTest, BinaryFormEndsAtTheFirstNul) {
  FILE* f = FileWith(Int32Bytes(3) + "abc" + Int32Bytes(5) + std::string("ab\0cd", 5) +
                     Int32Bytes(2) + std::string("\0z", 2));
  ASSERT_NE(f, nullptr);
  EXPECT_EQ(Str(FString(f)), "abc");  // no NUL stored: still terminated
  EXPECT_EQ(Str(FString(f)), "ab");
  EXPECT_EQ(FString(f).text, nullptr);
  std::fclose(f);
}

TEST(FStringTest, BareTextHelpers) {
  char* text = nullptr;
  int size = FString::GetStrBuf(text, 4);
  EXPECT_EQ(size, 16);
  EXPECT_EQ(text[0], '\0');
  size = FString::GetStrBuf(text, 100);  // replaces the old buffer
  size = FString::HexStr(text, size, 10, 3);
  EXPECT_STREQ(text, "00a");
  EXPECT_EQ(size, 100);
  size = FString::LetStr(text, size, nullptr);
  EXPECT_EQ(size, 0);
  EXPECT_EQ(text, nullptr);
  size = FString::AddStr(text, size, "x");  // appending to nothing assigns
  EXPECT_EQ(size, 16);
  EXPECT_EQ(FString::FreeStr(text), 0);
  EXPECT_EQ(text, nullptr);
}

}  // namespace
}  // namespace vorn
