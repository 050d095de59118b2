#include "dsl/reference.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/failure.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

// Property names

struct NameCase {
  const char* name;
  std::string text;
  std::string expected;
};
const std::vector<NameCase> name_cases = {
    {"Plain", "charge", "charge"},
    {"SpacesAround", " \t\r\ncharge\n\r\t ", "charge"},
    {"AtomsBracketPrefix", " atoms[].charge ", "charge"},
    {"AtomsPrefix", "atoms.charge", "charge"},
    {"BothPrefixesInTheirOrder", "atoms[].atoms.charge", "charge"},
    {"BothPrefixesInOtherOrder", "atoms.atoms[].charge", "atoms[].charge"},
    {"AtomsPrefixOnce", "atoms.atoms.charge", "atoms.charge"},
    {"AtomsBracketPrefixOnce", "atoms[].atoms[].charge", "atoms[].charge"},
    {"BracketPrefixTwiceThenAtoms", "atoms[].atoms[].atoms.q", "atoms[].atoms.q"},
    {"PrefixesAreCaseSensitive", "Atoms.charge", "Atoms.charge"},
    {"PrefixWithoutItsDot", "atoms[]charge", "atoms[]charge"},
    {"WordAtoms", "atoms", "atoms"},
    {"WordAtomsWithBrackets", "atoms[]", "atoms[]"},
    {"PrefixAfterDots", ".atoms.charge", "atoms.charge"},
    {"DotsAfterPrefix", "atoms...charge", "charge"},
    {"DotsBetweenPrefixes", "atoms[]..atoms.q", "atoms.q"},
    {"OuterDots", ".charge.", "charge"},
    {"ManyOuterDots", "..q..", "q"},
    {"InnerDotsStay", ".a..b.c.", "a..b.c"},
    {"AtomNumberStays", "atoms.1.q", "1.q"},
    {"ColonSlashStarBracket", "a:b/c*d?[0]{1}", "a:b/c*d?[0]{1}"},
    {"QuotesAndBackslash", "'a\"\\", "'a\"\\"},
    {"ParenthesesAndComma", "a(b),c", "a(b),c"},
    {"Minus", "--sum", "--sum"},
    {"Utf8", "\xe7\x94\xb5\xe8\x8d\xb7", "\xe7\x94\xb5\xe8\x8d\xb7"},
    {"BytesThatAreSpacesElsewhere", "a\xa0\x85\xff", "a\xa0\x85\xff"},
    {"NulIsAllowed", "a\0b"s, "a\0b"s},
    {"MegabyteOfLeadingDots", std::string(1 << 20, '.') + "q", "q"},
    {"MegabyteOfTrailingDots", "q" + std::string(1 << 20, '.'), "q"},
    {"MegabyteOfInnerDots", "a" + std::string(1 << 20, '.') + "b",
     "a" + std::string(1 << 20, '.') + "b"},
    {"AHundredThousandSpacesAround", std::string(100'000, ' ') + "q" + std::string(100'000, '\t'),
     "q"},
};
class PropertyName : public testing::TestWithParam<NameCase> {};

TEST_P(PropertyName, IsNormalised) {
  EXPECT_EQ(normalize_property_name(GetParam().text), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, PropertyName, testing::ValuesIn(name_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(PropertyNameLiteral, IsTaken) {
  EXPECT_EQ(normalize_property_name(" atoms.q "), "q");
}

struct FailureCase {
  const char* name;
  std::string text;
  std::string message;
};
constexpr const char* empty_name = "atomvec target property cannot be empty";
const std::string unsafe = "atomvec property contains an unsafe character: ";

const std::vector<FailureCase> name_failures = {
    {"Empty", "", empty_name},
    {"SpacesOnly", " \t\r\n", empty_name},
    {"OneDot", ".", empty_name},
    {"DotsOnly", "...", empty_name},
    {"MegabyteOfDots", std::string(1 << 20, '.'), empty_name},
    {"AtomsPrefixOnly", "atoms.", empty_name},
    {"AtomsBracketPrefixOnly", "atoms[].", empty_name},
    {"BothPrefixesOnly", "atoms[].atoms.", empty_name},
    {"PrefixAndDotsOnly", " atoms[]... ", empty_name},
    {"Space", "a b", unsafe + "a b"},
    {"Equals", "a=b", unsafe + "a=b"},
    {"EqualsAlone", "=", unsafe + "="},
    {"Tab", "a\tb", unsafe + "a\tb"},
    {"LineFeed", "a\nb", unsafe + "a\nb"},
    {"CarriageReturn", "a\rb", unsafe + "a\rb"},
    {"VerticalTab", "a\vb", unsafe + "a\vb"},
    {"FormFeed", "a\fb", unsafe + "a\fb"},
    {"VerticalTabIsNotTrimmed", "\va", unsafe + "\va"},
    {"FormFeedIsNotTrimmed", " a\f ", unsafe + "a\f"},
    {"VerticalTabAlone", "\v", unsafe + "\v"},
    {"NameAsNormalisedSoFar", " atoms[].atoms..a b.. ", unsafe + "a b"},
    {"SpaceAfterPrefixIsNotTrimmed", "atoms. q", unsafe + " q"},
    {"SpaceAfterDotIsNotTrimmed", ". q", unsafe + " q"},
    {"SpaceBeforeDotIsNotTrimmed", "q .", unsafe + "q "},
    {"LastByteUnsafe", "atoms.q=", unsafe + "q="},
};
class BadPropertyName : public testing::TestWithParam<FailureCase> {};

TEST_P(BadPropertyName, Fails) {
  const std::string& text = GetParam().text;
  EXPECT_EQ(failure_of([&] { normalize_property_name(text); }), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(Texts, BadPropertyName, testing::ValuesIn(name_failures),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(PropertyNameBytes, RefusesExactlySevenOfAll) {
  for (int value = 0; value < 256; ++value) {
    const std::string text = "a"s + static_cast<char>(value) + "b";
    const bool is_unsafe = "= \t\n\v\f\r"s.find(static_cast<char>(value)) != std::string::npos;
    EXPECT_EQ(failure_of([&] { normalize_property_name(text); }),
              is_unsafe ? unsafe + text : "(no failure)")
        << "byte " << value;
  }
}

// References

struct ReferenceCase {
  const char* name;
  std::string text;
  std::string task;
  std::string property;
};
const std::vector<ReferenceCase> reference_cases = {
    {"Colon", "run1:charge", "run1", "charge"},
    {"AtomsMark", "run1.atoms[].charge", "run1", "charge"},
    {"SpacesEverywhere", " run1 : atoms.charge ", "run1", "charge"},
    {"SpacesAroundAtomsMark", "\t run1 .atoms[]. charge \n", "run1", "charge"},
    {"BracketPrefixAfterColon", "t:atoms[].q", "t", "q"},
    {"AtomsPrefixAfterColon", "t:atoms.q", "t", "q"},
    {"BothPrefixesAfterColon", "t:atoms[].atoms.q", "t", "q"},
    {"AtomsPrefixAfterAtomsMark", "t.atoms[].atoms.q", "t", "q"},
    {"DotsAroundProperty", "t:..q..", "t", "q"},
    {"EmptyTask", ":q", "", "q"},
    {"BlankTask", " \t:q", "", "q"},
    {"EmptyTaskBeforeAtomsMark", ".atoms[].q", "", "q"},
    {"DriveLetter", "C:/x:q", "C", "/x:q"},
    {"FirstColonSplits", "a:b:c", "a", "b:c"},
    {"AtomsMarkBeforeColon", "t.atoms[].a:b", "t", "a:b"},
    {"AtomsMarkWinsOverEarlierColon", "t:x.atoms[].q", "t:x", "q"},
    {"FirstAtomsMarkSplits", "t.atoms[].a.atoms[].q", "t", "a.atoms[].q"},
    {"MarkWithoutItsFirstDot", "atoms[].a:q", "atoms[].a", "q"},
    {"MarkInOtherCase", "t.Atoms[].a:q", "t.Atoms[].a", "q"},
    {"PathWithDots", "../calc/run.1:q", "../calc/run.1", "q"},
    {"Glob", "scan/step_??.atoms[].charge", "scan/step_??", "charge"},
    {"WildcardInProperty", "run1:q*", "run1", "q*"},
    {"VerticalTabInTask", "\va:q", "\va", "q"},
    {"SpaceInTask", "my task:q", "my task", "q"},
    {"QuotesStay", "'a:q'", "'a", "q'"},
    {"ParenthesesStay", "neg(a:q)", "neg(a", "q)"},
    {"Utf8", "\xe4\xbb\xbb:\xe7\x94\xb5", "\xe4\xbb\xbb", "\xe7\x94\xb5"},
    {"NulInBoth", "a\0b:c\0d"s, "a\0b"s, "c\0d"s},
    {"AHundredThousandSpaces",
     "a" + std::string(100'000, ' ') + ":" + std::string(100'000, ' ') + "q", "a", "q"},
    {"MegabyteOfDots", "a:" + std::string(1 << 20, '.') + "q", "a", "q"},
};
class Reference : public testing::TestWithParam<ReferenceCase> {};

TEST_P(Reference, IsSplitIntoTaskAndProperty) {
  const auto& [name, text, task, property] = GetParam();
  EXPECT_EQ(parse_atom_vec_ref(text), (AtomVecRef{task, property}));
}
INSTANTIATE_TEST_SUITE_P(Texts, Reference, testing::ValuesIn(reference_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ReferenceLiteral, IsTaken) {
  EXPECT_EQ(parse_atom_vec_ref(" a:q "), (AtomVecRef{"a", "q"}));
}

constexpr const char* empty_reference = "empty atom vector reference";
const std::string must_use = "atom vector reference must use task:prop or task.atoms[].prop: ";

const std::vector<FailureCase> reference_failures = {
    {"Empty", "", empty_reference},
    {"SpacesOnly", " \t\r\n", empty_reference},
    {"NoColon", "run1.charge", must_use + "run1.charge"},
    {"TextAsPassedIn", " \trun1 \n", must_use + " \trun1 \n"},
    {"VerticalTabOnly", "\v", must_use + "\v"},
    {"AtomsMarkCutShort", "t.atoms[]", must_use + "t.atoms[]"},
    {"NothingAfterColon", "a:", empty_name},
    {"SpacesAfterColon", "a: \t", empty_name},
    {"DotsAfterColon", "a:..", empty_name},
    {"PrefixAfterColon", "a:atoms[].", empty_name},
    {"NothingAfterAtomsMark", "t.atoms[].", empty_name},
    {"DotsAfterAtomsMark", "t.atoms[]...", empty_name},
    {"ColonAlone", ":", empty_name},
    {"AtomsMarkIsNotGivenUpForColon", "a:b.atoms[].", empty_name},
    {"SpaceInProperty", "a:b c", unsafe + "b c"},
    {"EqualsInProperty", "a:atoms.b=c", unsafe + "b=c"},
    {"VerticalTabInProperty", "a:\vq", unsafe + "\vq"},
};
class BadReference : public testing::TestWithParam<FailureCase> {};

TEST_P(BadReference, Fails) {
  const std::string& text = GetParam().text;
  EXPECT_EQ(failure_of([&] { parse_atom_vec_ref(text); }), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(Texts, BadReference, testing::ValuesIn(reference_failures),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace vqvec
