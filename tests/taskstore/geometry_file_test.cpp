#include "taskstore/geometry_file.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "tests/reference/files.hpp"
#include "tests/support/ordinary_user.hpp"
#include "tests/support/peak_memory.hpp"
#include "tests/support/scratch_dir.hpp"

namespace vqvec {

// For the messages of failed comparisons.
void PrintTo(const GeomAtom& atom, std::ostream* stream) {
  *stream << atom.symbol << " " << atom.x << " " << atom.y << " " << atom.z;
}

namespace {

using std::string_literals::operator""s;

using Atoms = std::vector<GeomAtom>;

// The atoms that read_xyz_geometry() finds; their symbols are kept until the program ends.
Atoms atoms_of_file(const std::string& path) {
  static std::deque<Geometry> geometries;
  const Geometry& geometry = geometries.emplace_back(read_xyz_geometry(path));
  Atoms atoms;
  for (std::size_t i = 0; i < geometry.size(); ++i) {
    atoms.push_back(geometry[i]);
  }
  return atoms;
}

// Files that hold a geometry

const std::string long_symbol(40'000, 'X');

struct ReadCase {
  const char* name;
  std::string text;  // the bytes of the file
  Atoms expected;
};
const std::vector<ReadCase> read_cases = {
    {"OneAtom", "1\n\nH 0 0 0.74\n", {{"H", 0, 0, 0.74}}},
    {"NoFinalLineFeed", "1\n\nH 0 0 0.74", {{"H", 0, 0, 0.74}}},
    {"Water",
     "3\nwater\nO 0.0 0.0 0.1173\nH 0.0 0.7572 -0.4692\nH 0.0 -0.7572 -0.4692\n",
     {{"O", 0, 0, 0.1173}, {"H", 0, 0.7572, -0.4692}, {"H", 0, -0.7572, -0.4692}}},
    {"ExtendedXyz",
     "2\nLattice=\"5 0 0 0 5 0 0 0 5\" Properties=species:S:1:pos:R:3:q:R:1\n"
     "C 1.5 2.5 3.5 -0.25\nO -1 -2 -3 0.25\n",
     {{"C", 1.5, 2.5, 3.5}, {"O", -1, -2, -3}}},
    {"ExtendedXyzWithOtherColumnsFirstIsReadAsIfTheyWerePositions",
     "1\nProperties=species:S:1:q:R:1:pos:R:3\nC 9 1 2 3\n",
     {{"C", 9, 1, 2}}},
    {"CommentLineOfAnything", "1\n12\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CommentLineThatLooksLikeAnAtom", "1\nO 9 9 9\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CommentLineOfBytes", "1\n\0\xff\xfe\r\nH 1 2 3\n"s, {{"H", 1, 2, 3}}},
    {"LongCommentLine", "1\n" + std::string(40'000, '#') + "\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"FurtherColumnsAreIgnored", "1\n\nH 1 2 3 4 abc nan\n", {{"H", 1, 2, 3}}},
    {"TrailingJunkGluedOn", "1\n\nH 1 2 3abc\n", {{"H", 1, 2, 3}}},
    {"WhiteSpaceOfAllKinds", "1\n\n \t\v\fH\t1\v2\f3\r\n", {{"H", 1, 2, 3}}},
    {"CrLfLineEnds", "  1  \r\ncomment\r\nH 1 2 3\r\n", {{"H", 1, 2, 3}}},
    {"MoreLinesThanTheCount", "2\n\nH 1 2 3\nO 4 5 6\nC 7 8 9\n", {{"H", 1, 2, 3}, {"O", 4, 5, 6}}},
    {"NonsenseAfterTheFrame", "1\n\nH 1 2 3\nno atom at all\n", {{"H", 1, 2, 3}}},
    {"FirstFrameOfSeveral",
     "1\nframe 1\nH 1 2 3\n1\nframe 2\nO 4 5 6\n2\nframe 3\nC 7 8 9\nN 1 1 1\n",
     {{"H", 1, 2, 3}}},
    {"SymbolAsWritten", "2\n\nfe 1 2 3\n26 4 5 6\n", {{"fe", 1, 2, 3}, {"26", 4, 5, 6}}},
    {"SymbolOfAnyBytes",
     "1\n\n\xc3\xa9\0\xff 1 2 3\n"s,
     {{std::string_view("\xc3\xa9\0\xff", 4), 1, 2, 3}}},
    {"LongSymbol", "1\n\n" + long_symbol + " 1 2 3\n", {{long_symbol, 1, 2, 3}}},
    {"SymbolThatIsANumber", "1\n\n1.5 1 2 3\n", {{"1.5", 1, 2, 3}}},
    {"SymbolThatLooksLikeAComment", "1\n\n#H 1 2 3\n", {{"#H", 1, 2, 3}}},
    {"CoordinatesWithoutSpaces", "1\n\nH 1-2-3\n", {{"H", 1, -2, -3}}},
    {"CoordinatesWithoutSpacesByPoints", "1\n\nH 1.2.3.4\n", {{"H", 1.2, 0.3, 0.4}}},
    {"CoordinateWithTwoPoints", "1\n\nH 1.2.3 4\n", {{"H", 1.2, 0.3, 4}}},
    {"CoordinateWithAPointInItsExponent", "1\n\nH 1e5.5 2\n", {{"H", 1e5, 0.5, 2}}},
    {"Signs", "1\n\nH +1 -2 +.5\n", {{"H", 1, -2, 0.5}}},
    {"Points", "1\n\nH .5 5. -.5\n", {{"H", 0.5, 5, -0.5}}},
    {"Exponents", "1\n\nH 1e1 2E-1 3e+0\n", {{"H", 10, 0.2, 3}}},
    {"TooSmallIsZero", "1\n\nH 1e-400 -1e-400 0\n", {{"H", 0.0, -0.0, 0.0}}},
    {"FortranExponentOnlyInTheLastColumn", "1\n\nH 1 2 1D5\n", {{"H", 1, 2, 1}}},
    {"BrokenNumberAfterTheLastColumn", "1\n\nH 1 2 3 1e\n", {{"H", 1, 2, 3}}},
    {"CountAfterSpaces", " \t 1 \t\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountWithPlus", "+1\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountWithLeadingZeros", "0001\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountBeforeAWord", "1 atom\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountGluedToAWord", "1atom\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountBeforeAPoint", "1.9\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountBeforeAnExponent", "1e3\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountBeforeNul", "1\0\n\nH 1 2 3\n"s, {{"H", 1, 2, 3}}},
    {"CountAfterVerticalTab", "\v\f1\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountThatWrapsAroundToOne", "-18446744073709551615\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountAfterManySpaces", std::string(40'000, ' ') + "1 x\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountWithManyLeadingZeros", std::string(40'000, '0') + "1\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"CountBeforeALongWord", "1 " + std::string(40'000, 'x') + "\n\nH 1 2 3\n", {{"H", 1, 2, 3}}},
    {"LongAtomLineOfSpaces",
     "2\n\n" + std::string(40'000, ' ') + "H" + std::string(40'000, '\t') + "1-2" +
         std::string(40'000, '\v') + "3" + std::string(40'000, ' ') + "4\nO 4 5 6\n",
     {{"H", 1, -2, 3}, {"O", 4, 5, 6}}},
    {"LongJunkAfterTheColumns",
     "2\n\nH 1 2 3" + std::string(40'000, 'x') + "\nO 4 5 6 " + std::string(40'000, '7') + "\n",
     {{"H", 1, 2, 3}, {"O", 4, 5, 6}}},
    {"CoordinateOfManyDigits",
     "1\n\nH 1" + std::string(40'000, '0') + "e-40000 2 0." + std::string(40'000, '0') + "1\n",
     {{"H", 1, 2, 0}}},
};
class ReadGeometry : public testing::TestWithParam<ReadCase> {};

TEST_P(ReadGeometry, GivesTheSymbolsWhenPositionsAreOnlyChecked) {
  const ScratchDir dir;
  const Geometry atoms =
      read_xyz_geometry(dir.write("in.xyz", GetParam().text), Positions::checked);
  ASSERT_EQ(atoms.size(), GetParam().expected.size());
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    EXPECT_EQ(atoms.symbol(i), GetParam().expected[i].symbol);
  }
}

TEST_P(ReadGeometry, GivesTheAtomsInOrder) {
  const ScratchDir dir;
  EXPECT_EQ(atoms_of_file(dir.write("in.xyz", GetParam().text)), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Files, ReadGeometry, testing::ValuesIn(read_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ReadXyzGeometry, KeepsTheSignOfZero) {
  const ScratchDir dir;
  const Atoms atoms = atoms_of_file(dir.write("in.xyz", "1\n\nH -0 0 -1e-400\n"));
  ASSERT_EQ(atoms.size(), 1U);
  EXPECT_TRUE(std::signbit(atoms[0].x));
  EXPECT_FALSE(std::signbit(atoms[0].y));
  EXPECT_TRUE(std::signbit(atoms[0].z));
}

// Files that hold none

struct UnusableCase {
  const char* name;
  std::string text;
};
const std::vector<UnusableCase> unusable_cases = {
    {"EmptyFile", ""},
    {"OnlyALineFeed", "\n"},
    {"CountAlone", "1"},
    {"CountLineAlone", "1\n"},
    {"NoAtomLine", "1\ncomment"},
    {"NoAtomLineAfterTheComment", "1\ncomment\n"},
    {"EmptyCountLine", "\n\nH 1 2 3\n"},
    {"CountInTheSecondLine", "\n1\n\nH 1 2 3\n"},
    {"CountOfZero", "0\n\nH 1 2 3\n"},
    {"CountOfMinusZero", "-0\n\nH 1 2 3\n"},
    {"CountOfManyZeros", "00000000000000000000000000\n\nH 1 2 3\n"},
    {"CountIsAWord", "three\n\nH 1 2 3\n"},
    {"CountAfterAWord", "atoms 1\n\nH 1 2 3\n"},
    {"CountAfterByteOrderMark", "\xef\xbb\xbf\x31\n\nH 1 2 3\n"},
    {"CountAfterNul", "\0001\n\nH 1 2 3\n"s},
    {"CountOfASignOnly", "-\n\nH 1 2 3\n"},
    {"CountWithASpaceAfterItsSign", "+ 1\n\nH 1 2 3\n"},
    {"CountThatIsHexadecimalIsZero", "0x1\n\nH 1 2 3\n"},
    {"CountThatBeginsWithAPoint", ".1\n\nH 1 2 3\n"},
    {"CountThatIsNegative", "-1\n\nH 1 2 3\n"},
    {"LargestCount", "18446744073709551615\n\nH 1 2 3\n"},
    {"CountOutOfRange", "18446744073709551616\n\nH 1 2 3\n"},
    {"CountFarOutOfRange", "999999999999999999999999999999\n\nH 1 2 3\n"},
    {"CountOfATrillion", "1000000000000\n\nH 1 2 3\n"},
    {"OneAtomTooFew", "3\n\nH 1 2 3\nO 4 5 6\n"},
    {"OneAtomTooFewWithoutLineFeed", "3\n\nH 1 2 3\nO 4 5 6"},
    {"BlankAtomLine", "2\n\nH 1 2 3\n\nO 4 5 6\n"},
    {"AtomLineOfSpaces", "1\n\n \t \n"},
    {"AtomLineOfManySpaces", "1\n\n" + std::string(40'000, ' ') + "\nH 1 2 3\n"},
    {"SymbolOnly", "1\n\nH\n"},
    {"OneCoordinate", "1\n\nH 1\n"},
    {"TwoCoordinates", "1\n\nH 1 2\n"},
    {"CoordinateOnTheNextLine", "1\n\nH 1 2\n3\n"},
    {"NoSymbol", "1\n\n1 2 3\n"},
    {"WordAsCoordinate", "1\n\nC 0.0 abc 1.0\n"},
    {"WordAsFirstCoordinate", "1\n\nC x 0.0 1.0\n"},
    {"WordAsLastCoordinate", "1\n\nC 0.0 1.0 z\n"},
    {"BadLineAfterGoodOnes", "3\n\nH 1 2 3\nO 4 5 6\nC 7 8 x\n"},
    {"CoordinateNan", "1\n\nH nan 2 3\n"},
    {"CoordinateInfinity", "1\n\nH 1 inf 3\n"},
    {"CoordinateNegativeInfinity", "1\n\nH 1 2 -INF\n"},
    {"CoordinateTooLarge", "1\n\nH 1e999 2 3\n"},
    {"CoordinateTooLargeNegative", "1\n\nH 1 2 -1e999\n"},
    {"CoordinateWithBrokenExponent", "1\n\nH 1e 2 3\n"},
    {"CoordinateWithBrokenSignedExponent", "1\n\nH 1 2 3e+\n"},
    {"CoordinateHexadecimal", "1\n\nH 0x10 2 3\n"},
    {"CoordinateWithFortranExponent", "1\n\nH 1D5 2 3\n"},
    {"CoordinateWithComma", "1\n\nH 1,5 2 3\n"},
    {"CoordinatesPartedByCommas", "1\n\nH 1, 2, 3\n"},
    {"CoordinateWithTwoSigns", "1\n\nH --1 2 3\n"},
    {"CoordinateOfASignOnly", "1\n\nH - 1 2 3\n"},
    {"CoordinateAfterNul", "1\n\nH \0001 2 3\n"s},
    {"LongLineWithAWordAsCoordinate", "1\n\nH 1 " + std::string(40'000, 'x') + " 3 4\n"},
    {"LongLineWithTooFewColumns", "1\n\nH" + std::string(40'000, ' ') + "1 2\n"},
    {"CarriageReturnsOnly", "1\r\rH 1 2 3\r"},
};
class UnusableGeometry : public testing::TestWithParam<UnusableCase> {};

TEST_P(UnusableGeometry, IsNoGeometryAndNoFailure) {
  const ScratchDir dir;
  const std::string path = dir.write("in.xyz", GetParam().text);
  EXPECT_EQ(atoms_of_file(path), Atoms());
  EXPECT_TRUE(read_xyz_geometry(path, Positions::checked).empty());
}
INSTANTIATE_TEST_SUITE_P(Files, UnusableGeometry, testing::ValuesIn(unusable_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ReadXyzGeometry, GivesNothingForAMissingFile) {
  const ScratchDir dir;
  EXPECT_EQ(atoms_of_file(dir.path_of("none.xyz")), Atoms());
  EXPECT_EQ(atoms_of_file(""), Atoms());
}

TEST(ReadXyzGeometry, GivesNothingForADirectory) {
  const ScratchDir dir;
  EXPECT_EQ(atoms_of_file(dir.path().string()), Atoms());
}

TEST(ReadXyzGeometry, GivesNothingForAFileThatCannotBeOpened) {
  const ScratchDir dir;
  const std::string path = dir.write("in.xyz", "1\n\nH 1 2 3\n");
  std::filesystem::permissions(dir.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(path, std::filesystem::perms::none);
  const OrdinaryUser user;
  if (!user.is_one()) {
    GTEST_SKIP() << "no ordinary user";
  }
  EXPECT_EQ(atoms_of_file(path), Atoms());
}

TEST(ReadXyzGeometry, TakesANameOutsideAscii) {
  const ScratchDir dir;
  EXPECT_EQ(atoms_of_file(dir.write("水 é.xyz", "1\n\nH 1 2 3\n")), (Atoms{{"H", 1, 2, 3}}));
}

// Large files

// Writes pieces of one byte each as often as said, between texts, without having them in memory.
class LargeFile {
 public:
  explicit LargeFile(const std::string& path) : path_(path), file_(path, std::ios::binary) {}

  LargeFile& add(const std::string& text) {
    file_ << text;
    return *this;
  }
  LargeFile& add(std::size_t megabytes, char byte) {
    const std::string block(1'000'000, byte);
    for (; megabytes > 0; --megabytes) {
      file_ << block;
    }
    return *this;
  }
  std::string close() {
    file_.close();
    EXPECT_TRUE(file_.good());
    return path_;
  }

 private:
  std::string path_;
  std::ofstream file_;
};

TEST(LargeGeometryFile, OfTwentyGigabytesIsReadOnlyAsFarAsItsFirstFrame) {
  const ScratchDir dir;
  const std::string path = dir.write("in.xyz", "1\n\nH 1 2 3\n");
  std::filesystem::resize_file(path, 20'000'000'000U);
  EXPECT_EQ(atoms_of_file(path), (Atoms{{"H", 1, 2, 3}}));
}

TEST(LargeGeometryFile, MayHaveAHugeCommentLine) {
  const ScratchDir dir;
  const std::string path = dir.write("in.xyz", "1\n");
  std::filesystem::resize_file(path, 300'000'000U);  // a hole of NULs
  std::ofstream(path, std::ios::binary | std::ios::app) << "\nH 1 2 3\n";
  const long before = peak_kilobytes();
  EXPECT_EQ(atoms_of_file(path), (Atoms{{"H", 1, 2, 3}}));
  EXPECT_LT(peak_kilobytes() - before, 20'000);
}

// A line that does not end is kept only up to a limit, also while its memory grows. The address
// sanitizer keeps freed memory for a while.
#ifdef __SANITIZE_ADDRESS__
constexpr long most_kilobytes_of_a_line = 600'000;
#else
constexpr long most_kilobytes_of_a_line = 230'000;
#endif

TEST(LargeGeometryFile, MayHaveSpacesOfAHundredMegabytesInALine) {
  const ScratchDir dir;
  const std::string path = LargeFile(dir.path_of("in.xyz"))
                               .add("2\n\nH")
                               .add(50, ' ')
                               .add("1 2 3")
                               .add(50, '\t')
                               .add("\nO 4 5 6\n")
                               .close();
  const long before = peak_kilobytes();
  EXPECT_EQ(atoms_of_file(path), (Atoms{{"H", 1, 2, 3}, {"O", 4, 5, 6}}));
  EXPECT_LT(peak_kilobytes() - before, most_kilobytes_of_a_line);
}

TEST(LargeGeometryFile, MayHaveJunkBeyondTheLimitAfterTheColumns) {
  const ScratchDir dir;
  const std::string path = LargeFile(dir.path_of("in.xyz"))
                               .add("2 ")
                               .add(50, 'x')
                               .add("\n\nH 1 2 3 ")
                               .add(140, 'x')
                               .add("\nO 4 5 6\n")
                               .close();
  const long before = peak_kilobytes();
  EXPECT_EQ(atoms_of_file(path), (Atoms{{"H", 1, 2, 3}, {"O", 4, 5, 6}}));
  EXPECT_LT(peak_kilobytes() - before, most_kilobytes_of_a_line);
}

struct EndlessCase {
  const char* name;
  std::string beginning;
  char byte;  // then 140 MB of these
  std::string end;
};
const std::vector<EndlessCase> endless_cases = {
    {"Symbol", "1\n\nH", 'H', " 1 2 3\n"},
    {"LastNumber", "1\n\nH 1 2 3.", '0', "\n"},
};
class EndlessLine : public testing::TestWithParam<EndlessCase> {};

// A number that the limit may have cut is not read as a shorter one.
TEST_P(EndlessLine, MakesTheFileUnusable) {
  const ScratchDir dir;
  const std::string path = LargeFile(dir.path_of("in.xyz"))
                               .add(GetParam().beginning)
                               .add(140, GetParam().byte)
                               .add(GetParam().end)
                               .close();
  const long before = peak_kilobytes();
  EXPECT_EQ(atoms_of_file(path), Atoms());
  EXPECT_LT(peak_kilobytes() - before, most_kilobytes_of_a_line);
}
INSTANTIATE_TEST_SUITE_P(Lines, EndlessLine, testing::ValuesIn(endless_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// The limit falls between the two digits.
TEST(LargeGeometryFile, IsUnusableIfItsCountMayBeCut) {
  const ScratchDir dir;
  const std::string path = LargeFile(dir.path_of("in.xyz"))
                               .add(134, '0')
                               .add(std::string(217'727, '0') + "12\n\nH 1 2 3\n")
                               .close();
  EXPECT_EQ(atoms_of_file(path), Atoms());
}

TEST(LargeGeometryFile, MayHaveAHundredThousandAtoms) {
  std::string text = "100000\n\n";
  for (int i = 0; i < 100'000; ++i) {
    text += "C " + std::to_string(i) + " 0.5 -" + std::to_string(i) + ".25\n";
  }
  const ScratchDir dir;
  const Geometry atoms = read_xyz_geometry(dir.write("in.xyz", text));
  ASSERT_EQ(atoms.size(), 100'000U);
  for (int i = 0; i < 100'000; ++i) {
    const auto place = static_cast<std::size_t>(i);
    ASSERT_EQ(atoms[place], (GeomAtom{"C", static_cast<double>(i), 0.5, -(i + 0.25)}));
  }
}

// Symbols of any length

struct SymbolCase {
  const char* name;
  std::string text;
};
const std::vector<SymbolCase> symbol_cases = {
    {"Empty", ""},
    {"OneLetter", "H"},
    {"TwoLetters", "Cl"},
    {"SixBytes", "abcdef"},
    {"SevenBytes", "abcdefg"},
    {"EightBytes", "abcdefgh"},
    {"NineBytes", "abcdefghi"},
    {"FourThousandBytes", std::string(4'000, 'x')},
    {"Nul", "\0"s},
    {"NulAtTheEnd", "H\0"s},
    {"SevenNuls", std::string(7, '\0')},
    {"EightNuls", std::string(8, '\0')},
    {"NulsInALongText", "abc\0defgh\0"s},
    {"SevenOfByteEight", std::string(7, '\b')},
    {"BytesAbove127", "\xff\xfe"},
    {"LongBytesAbove127", std::string(12, '\xff')},
};
class SymbolText : public testing::TestWithParam<SymbolCase> {};

TEST_P(SymbolText, IsKept) {
  std::string original = GetParam().text;
  Geometry geometry;
  geometry.push_back({"before", 1, 2, 3});
  geometry.push_back({original, 4, 5, 6});
  geometry.push_back({"long symbol after it", 7, 8, 9});
  original.assign(original.size(), '?');
  EXPECT_EQ(geometry[0], (GeomAtom{"before", 1, 2, 3}));
  EXPECT_EQ(geometry[1], (GeomAtom{GetParam().text, 4, 5, 6}));
  EXPECT_EQ(geometry[2], (GeomAtom{"long symbol after it", 7, 8, 9}));
}

TEST_P(SymbolText, IsKeptWhenTheGeometryIsMovedOrCopied) {
  Geometry geometry;
  geometry.push_back({GetParam().text, 1, 2, 3});
  Geometry copy = geometry;
  geometry.push_back({"another", 4, 5, 6});
  const Geometry moved = std::move(geometry);
  EXPECT_EQ(copy.symbol(0), GetParam().text);
  EXPECT_EQ(moved.symbol(0), GetParam().text);
  copy.push_back({"yet another", 4, 5, 6});
  EXPECT_EQ(copy.symbol(0), GetParam().text);
  EXPECT_EQ(copy.symbol(1), "yet another");
}
INSTANTIATE_TEST_SUITE_P(Texts, SymbolText, testing::ValuesIn(symbol_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(Geometry, KeepsManyLongSymbolsApart) {
  Geometry geometry;
  for (int i = 0; i < 5'000; ++i) {
    geometry.push_back({"long-symbol-" + std::to_string(i % 2'000), 0, 0, 0});
  }
  ASSERT_EQ(geometry.size(), 5'000U);
  for (std::size_t i = 0; i < geometry.size(); ++i) {
    ASSERT_EQ(geometry.symbol(i), "long-symbol-" + std::to_string(i % 2'000));
  }
}

// Against streams

// Distinguishes 0.0 from -0.0.
using AtomBits = std::tuple<std::string, std::uint64_t, std::uint64_t, std::uint64_t>;

template <typename Atom>
std::vector<AtomBits> bits_of(const std::vector<Atom>& atoms) {
  std::vector<AtomBits> bits;
  for (const Atom& atom : atoms) {
    bits.emplace_back(atom.symbol, std::bit_cast<std::uint64_t>(atom.x),
                      std::bit_cast<std::uint64_t>(atom.y), std::bit_cast<std::uint64_t>(atom.z));
  }
  return bits;
}

template <typename Texts>
const char* one_of(const Texts& texts, std::mt19937_64& random) {
  return texts[random() % std::size(texts)];
}

std::string random_atom_line(std::mt19937_64& random, bool is_plain) {
  static const char* const symbols[] = {"H", "C", "Cl", "Fe", "LongSymbol", "1", "-1", "\xc3\xa9"};
  static const char* const plain_gaps[] = {" ", "  ", "\t", "     ", " \v", "\f "};
  static const char* const odd_gaps[] = {" ", "", "", "\r", "x", ",", " e"};
  static const char* const plain_numbers[] = {"0",
                                              "-0",
                                              "1.25",
                                              "-3.5e-2",
                                              "+7",
                                              ".5",
                                              "-12.",
                                              "1E3",
                                              "1e-400",
                                              "0.1",
                                              "2.2250738585072014e-308"};
  static const char* const odd_numbers[] = {"1e",  "nan",   "-inf", "0x1p3", "1e999", "1D5",
                                            "1-2", "1.2.3", "-",    "+-1",   "1e5.5", "x"};
  std::string line = one_of(symbols, random);
  for (int field = 0; field < 3; ++field) {
    const bool is_odd = !is_plain && random() % 4 == 0;
    line += is_odd ? one_of(odd_gaps, random) : one_of(plain_gaps, random);
    line += is_odd ? one_of(odd_numbers, random) : one_of(plain_numbers, random);
  }
  if (random() % 3 == 0) {
    line += " 0.5 junk";
  }
  if (random() % 50 == 0) {
    line.append(random() % 50'000, ' ');
  }
  return line;
}

std::string random_geometry_file(std::mt19937_64& random) {
  static const char* const odd_counts[] = {
      "", "x", "-1", "0", "+2", " 2 ", "2x", "0x10", "1e1", "1.5\r", "\v2", "99999999999999999999"};
  const bool is_plain = random() % 2 == 0;
  const std::size_t lines = random() % 6;
  const std::size_t claimed =
      is_plain ? lines : lines + random() % 3 - std::min<std::size_t>(lines, 1);
  std::string text =
      is_plain || random() % 3 > 0 ? std::to_string(claimed) : one_of(odd_counts, random);
  text += "\ncomment\n";
  const char* const line_end = random() % 4 == 0 ? "\r\n" : "\n";
  for (std::size_t i = 0; i < lines; ++i) {
    text += random_atom_line(random, is_plain) + line_end;
  }
  if (random() % 4 == 0) {
    text.resize(text.size() - std::min<std::size_t>(text.size(), random() % 8));
  }
  return text;
}

TEST(RandomGeometryFiles, AreReadAsStreamsReadThemBitForBit) {
  std::mt19937_64 random(3141592);
  const ScratchDir dir;
  std::size_t usable = 0;
  for (int i = 0; i < 6'000; ++i) {
    const std::string text = random_geometry_file(random);
    const std::vector<reference::Atom> expected = reference::read_xyz_text(text);
    ASSERT_EQ(bits_of(atoms_of_file(dir.write("in.xyz", text))), bits_of(expected))
        << "file [" << text << "]";
    ASSERT_EQ(read_xyz_geometry(dir.path_of("in.xyz"), Positions::checked).size(), expected.size());
    usable += expected.empty() ? 0U : 1U;
  }
  EXPECT_GT(usable, 1'500U);  // the files are worth the comparison
  EXPECT_LT(usable, 4'500U);
}

TEST(RandomGeometryFiles, OfAnyBytesAreReadAsStreamsReadThem) {
  std::mt19937_64 random(2718281);
  const ScratchDir dir;
  for (int i = 0; i < 3'000; ++i) {
    std::string text = "2\n\n";
    for (auto length = random() % 60; length > 0; --length) {
      text += random() % 8 == 0 ? static_cast<char>(random() % 256) : "\nH  012.-"[random() % 9];
    }
    ASSERT_EQ(bits_of(atoms_of_file(dir.write("in.xyz", text))),
              bits_of(reference::read_xyz_text(text)))
        << "file [" << text << "]";
  }
}

}  // namespace
}  // namespace vqvec
