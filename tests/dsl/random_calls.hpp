// Texts that look like calls, to compare the fast readers with the plain rules.
#ifndef VQVEC_TESTS_DSL_RANDOM_CALLS_HPP
#define VQVEC_TESTS_DSL_RANDOM_CALLS_HPP

#include <random>
#include <string>
#include <vector>

namespace vqvec {

// Texts in which calls, quotes and escapes meet in every way.
inline std::string random_call_text(std::mt19937_64& random) {
  static const std::string bytes = "a,_(')\" \\:";
  static const std::vector<std::string> pieces = {
      "f(",  "g (", "a_1(", "(",   ")",  ")", ")",  ",",  ", ", "a:q", "'a,b'",
      "'('", "\"",  "'",    "\\'", "\\", " ", "\t", "\v", "Z(", ") )"};
  std::string text;
  if (random() % 2 == 0) {
    for (auto length = random() % 14; length > 0; --length) {
      text += bytes[random() % bytes.size()];
    }
  } else {
    for (auto length = random() % 14; length > 0; --length) {
      text += pieces[random() % pieces.size()];
    }
  }
  return text;
}

// Calls within calls, some of them damaged.
inline std::string random_expression(std::mt19937_64& random, int levels) {
  static const std::vector<std::string> leaves = {"a:q", "",       " ",     "'a,b'", "\"\\\")\"",
                                                  "\v",  "'\\')'", "@a.b",  "2",     "'('",
                                                  "a:(", "g(b)c",  "(a,b)", "\\",    "\t a"};
  static const std::vector<std::string> openings = {"f(", "Mean (", " g(", "(", "a:b(", "a_1\t("};
  static const std::string bytes = "a,_(')\" \\:";
  if (levels == 0 || random() % 3 == 0) {
    return leaves[random() % leaves.size()];
  }
  std::string text = openings[random() % openings.size()];
  for (auto arguments = random() % 4; arguments > 0; --arguments) {
    text += random_expression(random, levels - 1) + (arguments > 1 || random() % 4 == 0 ? "," : "");
  }
  text += random() % 4 == 0 ? ") " : ")";
  if (random() % 16 == 0) {
    text[random() % text.size()] = bytes[random() % bytes.size()];
  }
  return text;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_DSL_RANDOM_CALLS_HPP
