#include "dsl/statement.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/failure.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;
using Settings = std::vector<std::string>;

// What the options have set, in a fixed order; nothing for a field that still has its default.
Settings settings_of(const DslStatement& statement) {
  Settings settings;
  for (const std::string& mode : statement.checks) {
    settings.push_back("check=" + mode);
  }
  const auto add = [&](const std::string& name, const std::string& value, const char* untouched) {
    if (value != untouched) {
      settings.push_back(name + "=" + value);
    }
  };
  add("sum", statement.sum_text, "");
  add("out", statement.out_path, "");
  add("chg", statement.chg_path, "");
  add("format", statement.format, "extxyz");
  add("geom", statement.geom_path, "");
  return settings;
}

TEST(DslStatement, HasTheseDefaults) {
  const DslStatement statement;
  EXPECT_EQ(statement.target, "");
  EXPECT_EQ(statement.expression, "");
  EXPECT_EQ(statement.checks, std::vector<std::string>());
  EXPECT_EQ(statement.sum_text, "");
  EXPECT_EQ(statement.out_path, "");
  EXPECT_EQ(statement.chg_path, "");
  EXPECT_EQ(statement.format, "extxyz");
  EXPECT_EQ(statement.geom_path, "");
}

// Target and expression

struct SplitCase {
  const char* name;
  std::string text;
  std::string target;
  std::string expression;
  Settings settings = {};
};
const std::vector<SplitCase> split_cases = {
    {"Plain", "q = a:x", "q", "a:x"},
    {"NoSpaces", "q=a:x", "q", "a:x"},
    {"SpacesAround", " \t\r\n q \t=\r\n a:x \t", "q", "a:x"},
    {"CallWithOptions",
     "q = mean(a:x, b:x) --check same_atoms --sum 0",
     "q",
     "mean(a:x, b:x)",
     {"check=same_atoms", "sum=0"}},
    {"AtomsBracketTarget", "atoms[].q = a:x", "q", "a:x"},
    {"AtomsTarget", "atoms.q = a:x", "q", "a:x"},
    {"DotsAroundTarget", "..q.. = a:x", "q", "a:x"},
    {"MegabyteOfDotsBeforeTarget", std::string(1 << 20, '.') + "q = a:x", "q", "a:x"},
    {"Utf8", "\xe7\x94\xb5 = \xe4\xbb\xbb:x", "\xe7\x94\xb5", "\xe4\xbb\xbb:x"},
    {"NulInBoth", "q\0r = a\0:x"s, "q\0r"s, "a\0:x"s},
    // Which '=' splits
    {"FirstEqualsSplits", "q = a:x=b", "q", "a:x=b"},
    {"TwoEquals", "q == a:x", "q", "= a:x"},
    {"StrayClosingParenthesisInTarget", ")q = a:x", ")q", "a:x"},
    {"BalancedParenthesesInTarget", "q(1) = a:x", "q(1)", "a:x"},
    {"BackslashInTargetIsPlain", "q\\= a:x", "q\\", "a:x"},
    {"QuotesInTargetStay", "'q' = a:x", "'q'", "a:x"},
    {"EscapedQuoteInTarget", R"("q\"" = a:x)", R"("q\"")", "a:x"},
    // Where the options begin
    {"SeveralSpacesBeforeOptions", "q = a:x   --sum=1", "q", "a:x", {"sum=1"}},
    {"TabBeforeOptions", "q = a:x\t--sum 1", "q", "a:x", {"sum=1"}},
    {"LineFeedBeforeOptions", "q = a:x\n--sum 1", "q", "a:x", {"sum=1"}},
    {"CarriageReturnBeforeOptions", "q = a:x\r--sum 1", "q", "a:x", {"sum=1"}},
    {"VerticalTabBeforeOptions", "q = a:x\v--sum 1", "q", "a:x", {"sum=1"}},
    {"FormFeedBeforeOptions", "q = a:x\f --sum 1", "q", "a:x", {"sum=1"}},
    {"VerticalTabIsNotTrimmedFromExpression", "q = \va:x\v", "q", "\va:x\v"},
    {"VerticalTabAlone", "q = \v", "q", "\v"},
    {"SpaceThenVerticalTabBeforeOptions", "q = a:x \v --sum 1", "q", "a:x", {"sum=1"}},
    {"DashesInParenthesesStay", "q = f(a:x --b)", "q", "f(a:x --b)"},
    {"DashesInSingleQuotesStay", "q = 'x --y'", "q", "'x --y'"},
    {"DashesInDoubleQuotesStay", "q = \"x --y\"", "q", "\"x --y\""},
    {"QuotedDashesAfterSpaceStay", "q = a:x '--sum 1'", "q", "a:x '--sum 1'"},
    {"DashesInQuotesAfterEscape", R"(q = "x\" --y" --sum 1)", "q", R"("x\" --y")", {"sum=1"}},
    {"DashesGluedToWordStay", "q = a:x--sum 1", "q", "a:x--sum 1"},
    {"DashesDirectlyAfterEquals", "q =--sum 1", "q", "--sum 1"},
    {"DashesAfterClosingParenthesisStay", "q = f(a:x)--sum 1", "q", "f(a:x)--sum 1"},
    {"DashesAfterClosingQuoteStay", "q = 'a:x'--sum 1", "q", "'a:x'--sum 1"},
    {"OneDashStays", "q = a:x -b", "q", "a:x -b"},
    {"DashAtTheEndStays", "q = a:x -", "q", "a:x -"},
    {"DashSpaceDashStays", "q = a:x - -b", "q", "a:x - -b"},
    {"OneDashThenOptions", "q = a:x - b --sum 1", "q", "a:x - b", {"sum=1"}},
    {"FirstDashesOnly", "q = a:x --sum --x --geom t", "q", "a:x", {"sum=--x", "geom=t"}},
    {"SpacesInExpression", "q = a : x  y", "q", "a : x  y"},
    {"StrayClosingParenthesisIsIgnored", "q = a:x) --sum 1", "q", "a:x)", {"sum=1"}},
    {"OpenParenthesisHidesOptions", "q = f(a:x --sum 1", "q", "f(a:x --sum 1"},
    {"OpenQuoteHidesOptions", "q = \"a:x --sum 1", "q", "\"a:x --sum 1"},
    {"BackslashBeforeQuoteOutsideHidesNothing", "q = \\'a --sum 1", "q", "\\'a --sum 1"},
    {"DepthOfTargetDoesNotCarryOver", "q) = a:x --sum 1", "q)", "a:x", {"sum=1"}},
    {"EqualsInOptions", "q = a:x --sum=1=2", "q", "a:x", {"sum=1=2"}},
    {"AHundredThousandSpacesInExpression", "q = a" + std::string(100'000, ' ') + ":x", "q",
     "a" + std::string(100'000, ' ') + ":x"},
    {"AHundredThousandSpacesBeforeOptions",
     "q = a:x" + std::string(100'000, ' ') + "--sum 1",
     "q",
     "a:x",
     {"sum=1"}},
    {"AHundredThousandSpacesAtTheEnd", "q = a:x" + std::string(100'000, ' '), "q", "a:x"},
};
class SplitStatement : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitStatement, GivesTargetExpressionAndOptions) {
  const auto& [name, text, target, expression, settings] = GetParam();
  const DslStatement statement = parse_dsl_statement(text);
  EXPECT_EQ(statement.target, target);
  EXPECT_EQ(statement.expression, expression);
  EXPECT_EQ(settings_of(statement), settings);
}
INSTANTIATE_TEST_SUITE_P(Texts, SplitStatement, testing::ValuesIn(split_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Options, after "q = a:x "

struct OptionsCase {
  const char* name;
  std::string options;
  Settings settings;
};
const std::vector<OptionsCase> options_cases = {
    {"Check", "--check same_atoms", {"check=same_atoms"}},
    {"CheckEquals", "--check=same_atoms", {"check=same_atoms"}},
    {"CheckInAnyCase", "--check SAME_Atoms", {"check=same_atoms"}},
    {"CheckIsTrimmed", "--check ' Same_Atoms '", {"check=same_atoms"}},
    {"CheckIsTrimmedOfAllSpaces", "--check=' \t\r\nsame_atoms\n'", {"check=same_atoms"}},
    {"ChecksAreKept",
     "--check same_atoms --sum 1 --check=Same_atoms",
     {"check=same_atoms", "check=same_atoms", "sum=1"}},
    {"Sum", "--sum 1", {"sum=1"}},
    {"SumEquals", "--sum=1", {"sum=1"}},
    {"Renorm", "--renorm @scrf.charge", {"sum=@scrf.charge"}},
    {"RenormEquals", "--renorm=2", {"sum=2"}},
    {"Renormalize", "--renormalize 2", {"sum=2"}},
    {"LastSumWins", "--sum 1 --renorm=2 --renormalize 3", {"sum=3"}},
    {"LastSumWinsInOtherOrder", "--renormalize 3 --renorm 2 --sum=1", {"sum=1"}},
    {"EmptySum", "--sum ''", {}},
    {"EmptySumEquals", "--sum=", {}},
    {"EmptySumReplacesEarlierOne", "--sum 1 --renorm=", {}},
    {"SumIsNotTrimmed", "--sum ' 1 '", {"sum= 1 "}},
    {"SumEqualsIsNotTrimmed", "--sum=' 1 '", {"sum= 1 "}},
    {"SumKeepsItsCase", "--sum SUM(A:q)", {"sum=SUM(A:q)"}},
    {"SumTakesTheNextOption", "--sum --out", {"sum=--out"}},
    {"SumQuoted", "--sum \"sum(a:q, b:q)\"", {"sum=sum(a:q, b:q)"}},
    {"Out", "--out o.xyz", {"out=o.xyz"}},
    {"OutEquals", "--out=o.xyz", {"out=o.xyz"}},
    {"Extxyz", "--extxyz o.xyz", {"out=o.xyz"}},
    {"ExtxyzEquals", "--extxyz=o.xyz", {"out=o.xyz"}},
    {"LastOutWins", "--out o1 --out o2", {"out=o2"}},
    {"LastOutWinsAcrossNames", "--out o1 --extxyz=o2 --extxyz o3 --out=o4", {"out=o4"}},
    {"EmptyOutReplacesEarlierOne", "--out o1 --extxyz ''", {}},
    {"OutQuoted", "--out 'my file.xyz'", {"out=my file.xyz"}},
    {"OutEscaped", "--out my\\ file.xyz", {"out=my file.xyz"}},
    {"OutKeepsEverythingAfterEquals", "--out==a=b", {"out==a=b"}},
    {"OutIsNotTrimmed", "--out ' o '", {"out= o "}},
    {"OutEqualsIsNotTrimmed", "--sum 1 '--out= o.xyz '", {"sum=1", "out= o.xyz "}},
    {"OutOfASpace", "--out ' '", {"out= "}},
    {"OutEqualsOfASpace", "--out=' '", {"out= "}},
    {"Utf8Out", "--out \xe7\x94\xb5.xyz", {"out=\xe7\x94\xb5.xyz"}},
    {"Chg", "--chg c.chg", {"chg=c.chg"}},
    {"ChgEquals", "--chg=c.chg", {"chg=c.chg"}},
    {"ChgIsNotTrimmed", "--chg ' c '", {"chg= c "}},
    {"ChgEqualsIsNotTrimmed", "--chg=' c '", {"chg= c "}},
    {"LastChgWins", "--chg a --chg=b", {"chg=b"}},
    {"FormatIsLowerCased", "--format XYZ", {"format=xyz"}},
    {"FormatEqualsIsLowerCased", "--format=Xyz", {"format=xyz"}},
    {"EmptyFormat", "--format=", {"format="}},
    {"FormatIsNotTrimmed", "--format ' extxyz'", {"format= extxyz"}},
    {"FormatEqualsIsNotTrimmed", "--format=' extxyz'", {"format= extxyz"}},
    {"LastFormatWins", "--format xyz --format=EXTXYZ", {}},
    {"ExtxyzFormatInAnyCaseWithOut", "--format EXTXYZ --out o.xyz", {"out=o.xyz"}},
    {"OtherFormatWithChg", "--format xyz --chg c", {"chg=c", "format=xyz"}},
    {"OtherFormatWithEmptyOut", "--format xyz --out=", {"format=xyz"}},
    {"OtherFormatReplacedBeforeOut", "--format xyz --format extxyz --out o", {"out=o"}},
    {"Geom", "--geom scrf", {"geom=scrf"}},
    {"GeomEquals", "--geom=../scrf", {"geom=../scrf"}},
    {"GeomIsNotTrimmed", "--geom ' First '", {"geom= First "}},
    {"GeomEqualsIsNotTrimmed", "--geom=' First '", {"geom= First "}},
    {"LastGeomWins", "--geom=a --geom b", {"geom=b"}},
    {"EmptyGeom", "--geom ''", {}},
    {"All",
     "--geom g --format extxyz --chg c --out o --sum 1 --check same_atoms",
     {"check=same_atoms", "sum=1", "out=o", "chg=c", "geom=g"}},
    {"QuotedName", "--'sum' 1", {"sum=1"}},
    {"NameInQuotedPieces", "--s\"um=\"'1 2'", {"sum=1 2"}},
    {"EscapedQuoteInValue", R"(--geom "a\"b")", {"geom=a\"b"}},
    {"OpenQuoteRunsToTheEnd", "--geom 'a --sum 1", {"geom=a --sum 1"}},
    {"WhiteSpaceOfAllKindsSeparates", "--sum\v1\f--geom\tg", {"sum=1", "geom=g"}},
    {"VerticalTabAtTheEnd", "--sum 1\v", {"sum=1"}},
    {"BackslashAtTheEnd", "--geom a\\", {"geom=a\\"}},
    {"NulInValue", "--geom a\0b"s, {"geom=a\0b"s}},
    {"AHundredThousandSpaces", "--sum" + std::string(100'000, ' ') + "1", {"sum=1"}},
};
class StatementOptions : public testing::TestWithParam<OptionsCase> {};

TEST_P(StatementOptions, SetTheseFields) {
  const DslStatement statement = parse_dsl_statement("q = a:x " + GetParam().options);
  EXPECT_EQ(settings_of(statement), GetParam().settings);
  EXPECT_EQ(statement.target, "q");
  EXPECT_EQ(statement.expression, "a:x");
}
INSTANTIATE_TEST_SUITE_P(Texts, StatementOptions, testing::ValuesIn(options_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Failures

struct FailureCase {
  const char* name;
  std::string text;
  std::string message;
};
const std::string syntax = "atomvec syntax requires '<target> = <expr>': ";
const std::string unsafe = "atomvec property contains an unsafe character: ";
const std::string no_target = "atomvec target property cannot be empty";
const std::string no_expression = "atomvec expression cannot be empty: ";
const std::string unknown_option = "unknown atomvec option: ";
const std::string format_message = "atomvec currently supports only --format extxyz";
const std::string unknown_check = "unknown atomvec --check mode: ";

const std::vector<FailureCase> failure_cases = {
    {"Empty", "", syntax},
    {"SpacesOnly", " \t", syntax + " \t"},
    {"NoEquals", "q a:x", syntax + "q a:x"},
    {"EqualsInParentheses", "f(a=b)", syntax + "f(a=b)"},
    {"EqualsInSingleQuotes", "'q = a:x'", syntax + "'q = a:x'"},
    {"EqualsInDoubleQuotes", "\"q = a:x\"", syntax + "\"q = a:x\""},
    {"EqualsInOpenQuote", "q' = a:x", syntax + "q' = a:x"},
    {"EqualsAfterBackslashAndQuote", "q\\\" = a:x", syntax + "q\\\" = a:x"},
    {"EqualsAfterEscapedQuote", R"("q\" = a:x)", syntax + R"("q\" = a:x)"},
    {"EqualsInOpenParenthesis", "(q = a:x", syntax + "(q = a:x"},
    {"EqualsAfterStrayThenOpen", ")( = a:x", syntax + ")( = a:x"},
    {"WholeStatementIsNamed", " \tq a:x --sum 1\n", syntax + " \tq a:x --sum 1\n"},
    {"EqualsOnlyInQuotedOption", "a:x --sum '1=2'", syntax + "a:x --sum '1=2'"},

    {"NothingBeforeEquals", "= a:x", no_target},
    {"SpacesBeforeEquals", " \t= a:x", no_target},
    {"DotsBeforeEquals", "... = a:x", no_target},
    {"PrefixBeforeEquals", "atoms[]. = a:x", no_target},
    {"SpaceInTarget", "a b = a:x", unsafe + "a b"},
    {"NormalisedTargetIsNamed", " atoms.a b. = a:x", unsafe + "a b"},
    {"VerticalTabInTarget", "\vq = a:x", unsafe + "\vq"},
    {"EqualsInParenthesesOfTarget", "q(=) = a:x", unsafe + "q(=)"},
    {"EqualsInQuotesOfTarget", "'q=' = a:x", unsafe + "'q='"},
    {"OptionOnlyEqualsMakesATarget", "a:x --sum=1", unsafe + "a:x --sum"},
    {"TargetIsCheckedBeforeExpression", "a b =", unsafe + "a b"},
    {"TargetIsCheckedBeforeOptions", ". = a:x --bad", no_target},

    {"NothingAfterEquals", "q =", no_expression + "q ="},
    {"SpacesAfterEquals", " q = \t\n", no_expression + " q = \t\n"},
    {"OnlyOptions", "q = --sum 1", no_expression + "q = --sum 1"},
    {"OnlyOptionsAfterVerticalTab", "q =\v--sum 1", no_expression + "q =\v--sum 1"},
    {"ExpressionIsCheckedBeforeOptions", "q = --bad", no_expression + "q = --bad"},
    {"AHundredThousandSpaces", "q =" + std::string(100'000, ' '),
     no_expression + "q =" + std::string(100'000, ' ')},

    {"CheckWithoutValue", "q = a:x --check", "--check requires a value"},
    {"SumWithoutValue", "q = a:x --sum", "--sum requires a value"},
    {"RenormWithoutValue", "q = a:x --renorm", "--renorm requires a value"},
    {"RenormalizeWithoutValue", "q = a:x --renormalize  ", "--renormalize requires a value"},
    {"OutWithoutValue", "q = a:x --out", "--out requires a value"},
    {"ExtxyzWithoutValue", "q = a:x --extxyz", "--extxyz requires a value"},
    {"ChgWithoutValue", "q = a:x --sum 1 --chg", "--chg requires a value"},
    {"FormatWithoutValue", "q = a:x --format", "--format requires a value"},
    {"GeomWithoutValue", "q = a:x --geom", "--geom requires a value"},

    {"RenormalizeEquals", "q = a:x --renormalize=2", unknown_option + "--renormalize=2"},
    {"UnknownOption", "q = a:x --foo", unknown_option + "--foo"},
    {"UnknownOptionWithValue", "q = a:x --foo=1 2", unknown_option + "--foo=1"},
    {"OptionInOtherCase", "q = a:x --Sum 1", unknown_option + "--Sum"},
    {"OptionWithMore", "q = a:x --summ 1", unknown_option + "--summ"},
    {"OptionCutShort", "q = a:x --chec same_atoms", unknown_option + "--chec"},
    {"DashesOnly", "q = a:x --", unknown_option + "--"},
    {"ThreeDashes", "q = a:x ---sum 1", unknown_option + "---sum"},
    {"StrayValueWord", "q = a:x --sum 1 2", unknown_option + "2"},
    {"SpaceAfterEquals", "q = a:x --out= o.xyz", unknown_option + "o.xyz"},
    {"StrayEmptyWord", "q = a:x --sum 1 ''", unknown_option},
    {"StrayQuotedWord", "q = a:x --sum 1 'b c'", unknown_option + "b c"},
    {"OneDash", "q = a:x --sum 1 -out o", unknown_option + "-out"},
    {"OptionsOfTheCommand", "q = a:x --values-out v", unknown_option + "--values-out"},
    {"QuotedOptionAndValue", "q = a:x --geom g '--sum 1'", unknown_option + "--sum 1"},
    {"FirstBadWordIsNamed", "q = a:x --one --two", unknown_option + "--one"},

    {"OtherFormatWithOut", "q = a:x --out o.xyz --format XYZ", format_message},
    {"OtherFormatWithExtxyz", "q = a:x --format=xyz --extxyz=o", format_message},
    {"EmptyFormatWithOut", "q = a:x --format= --out o", format_message},
    {"UntrimmedFormatWithOut", "q = a:x --format 'extxyz ' --out o", format_message},
    {"FormatIsCheckedAfterUnknownOptions", "q = a:x --out o --format xyz --foo",
     unknown_option + "--foo"},
    {"FormatIsCheckedAfterMissingValues", "q = a:x --out o --format xyz --geom",
     "--geom requires a value"},

    {"UnknownCheck", "q = a:x --check Other", unknown_check + "other"},
    {"NormalisedCheckIsNamed", "q = a:x --check=' \tSame Atoms\n'", unknown_check + "same atoms"},
    {"EmptyCheck", "q = a:x --check=", unknown_check},
    {"BlankCheck", "q = a:x --check ' '", unknown_check},
    {"CheckTakesTheNextOption", "q = a:x --check --sum", unknown_check + "--sum"},
    {"CheckWithVerticalTab", "q = a:x --check 'same_atoms\v'", unknown_check + "same_atoms\v"},
    {"FirstUnknownCheckIsNamed", "q = a:x --check same_atoms --check B --check C",
     unknown_check + "b"},
    {"CheckModeIsCheckedAfterFormat", "q = a:x --check bad --out o --format xyz", format_message},
    {"CheckModeIsCheckedAfterUnknownOptions", "q = a:x --check bad --foo",
     unknown_option + "--foo"},
};
class BadStatement : public testing::TestWithParam<FailureCase> {};

TEST_P(BadStatement, Fails) {
  EXPECT_EQ(failure_of([] { parse_dsl_statement(GetParam().text); }), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(Texts, BadStatement, testing::ValuesIn(failure_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// What a statement may name

struct NamedCase {
  const char* name;
  std::string statement;
  std::string property;
  bool may_be_named;
};
const std::vector<NamedCase> named_cases = {
    {"Reference", "q = a:charge", "charge", true},
    {"WithAPrefix", "q = a:atoms[].charge", "charge", true},
    {"SecondReference", "q = mean(a:p, b:charge)", "charge", true},
    {"InQuotes", "q = mean('a:charge', \"b:p\")", "charge", true},
    {"KeyOfAScalar", "q = scale(a:p, @a.atoms.3.charge)", "charge", true},
    {"KeyOfAWeight", "q = wmean(a*:p, atoms.3.charge)", "charge", true},
    {"InTheSum", "q = a:p --sum @a.atoms.3.charge", "charge", true},
    {"InTheSumInPieces", "q = a:p --sum '@a.atoms.3.ch'arge", "charge", true},
    {"WithoutItsBackslashes", "q = mean(\"a:ch\\arge\")", "charge", true},
    {"SumWithoutItsBackslashes", "q = a:p --sum 'sum(\"a:ch\\arge\")'", "charge", true},
    {"PartOfAName", "q = a:charge", "char", true},
    {"EmptyProperty", "q = a:charge", "", true},
    {"OtherProperty", "q = a:charge", "spin", false},
    {"LongerName", "q = a:charge", "charge.resp", false},
    {"OtherCase", "q = a:charge", "Charge", false},
    {"OnlyTheTarget", "charge = a:p", "charge", false},
    {"OnlyAFile", "q = a:p --out charge.xyz --chg charge.chg --geom charge", "charge", false},
    {"AcrossTheSum", "q = a:char --sum ge", "charge", false},
};
class NamedProperty : public testing::TestWithParam<NamedCase> {};

TEST_P(NamedProperty, StandsInTheExpressionOrTheSum) {
  EXPECT_EQ(may_name(parse_dsl_statement(GetParam().statement), GetParam().property),
            GetParam().may_be_named);
}
INSTANTIATE_TEST_SUITE_P(Statements, NamedProperty, testing::ValuesIn(named_cases),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace vqvec
