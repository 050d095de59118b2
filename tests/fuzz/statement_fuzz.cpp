// Any text as a statement: the same fields, or the same message, as by the plain rules.
#include "dsl/statement.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/statement.hpp"

namespace vqvec {
namespace {

template <typename Statement>
std::string describe(const Statement& statement) {
  std::string text = statement.target + "|" + statement.expression + "|";
  for (const std::string& check : statement.checks) {
    text += check + ",";
  }
  return text + "|" + statement.sum_text + "|" + statement.out_path + "|" + statement.chg_path +
         "|" + statement.format + "|" + statement.geom_path;
}

}  // namespace
}  // namespace vqvec

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vqvec::text_of(data, size);
  vqvec::require_equal(
      vqvec::outcome_of([&] { return vqvec::describe(vqvec::parse_dsl_statement(text)); }),
      vqvec::outcome_of([&] { return vqvec::describe(vqvec::reference::parse_statement(text)); }),
      "parse_dsl_statement");
  return 0;
}
