#include "app/atom_command.hpp"

#include <cstddef>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/console.hpp"
#include "dsl/option_words.hpp"
#include "dsl/statement.hpp"
#include "eval/scalar_expression.hpp"
#include "eval/vector_expression.hpp"
#include "eval/vector_functions.hpp"
#include "output/geometry_outputs.hpp"
#include "output/kv_outputs.hpp"
#include "output/same_atoms_check.hpp"
#include "output/text_file.hpp"

namespace vqvec {
namespace {

constexpr std::string_view help_request = "__HELP__";

struct AtomCommandOptions {
  std::string dsl;                             // the statement, or help_request
  std::string values_out = ".vorq.values.kv";  // appended to; empty: not written
  std::string record_kv;                       // appended to; empty: not written
  std::string snapshot_kv;                     // replaced; empty: not written
};

std::string join_with_separator(const std::vector<std::string>& list, std::string_view separator) {
  std::string joined;
  for (const std::string& item : list) {
    joined.append(&item == &list.front() ? "" : separator).append(item);
  }
  return joined;
}

// Other words form the statement, unless --dsl gives one: then they are dropped.
AtomCommandOptions scan_options(const std::vector<std::string>& arguments) {
  AtomCommandOptions options;
  std::vector<std::string> loose_words;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    if (word == "--dsl") {
      options.dsl = take_option_value(arguments, i, word);
    } else if (word == "--values-out") {
      options.values_out = take_option_value(arguments, i, word);
    } else if (word == "--record-kv") {
      options.record_kv = take_option_value(arguments, i, word);
    } else if (word == "--snapshot-kv") {
      options.snapshot_kv = take_option_value(arguments, i, word);
    } else if (word == "-h" || word == "--help") {
      options.dsl = help_request;
      return options;
    } else {
      loose_words.push_back(word);
    }
  }
  if (options.dsl.empty()) {
    options.dsl = join_with_separator(loose_words, " ");
  }
  return options;
}

AtomVector evaluate_statement(const DslStatement& statement, EvalContext& context) {
  AtomVector result = evaluate_vector_expression(statement.expression, context);
  if (statement.sum_text.empty()) {
    return result;
  }
  const double total = evaluate_scalar_expression(statement.sum_text, context);
  return renormalize_to_sum(std::move(result), total);
}

// A repeated check has the same result. There is only one kind of check.
void run_checks(const DslStatement& statement, const AtomVector& result, EvalContext& context) {
  if (!statement.checks.empty()) {
    check_same_atoms(context, result.size());
  }
}

void write_kv_outputs(const AtomCommandOptions& options, const std::string& target,
                      const AtomVector& result) {
  const std::string values = values_text(target, result);
  append_text_file(options.values_out, values);
  append_text_file(options.record_kv, values);
  write_text_file(options.snapshot_kv, snapshot_text(result.size()));
}

void report(const DslStatement& statement, std::size_t atom_count) {
  std::cout << "atomvec wrote " << atom_count << " atom values for '" << statement.target << "'";
  if (!statement.out_path.empty()) {
    std::cout << " and extxyz " << statement.out_path;
  }
  if (!statement.chg_path.empty()) {
    std::cout << " and chg " << statement.chg_path;
  }
  write_line_end_and_flush(std::cout);
}

// Makes room for the text of the files, unless that is small.
void drop_values_for(const AtomVector& result, EvalContext& context) {
  constexpr std::size_t many_atoms = 10'000;
  if (result.size() > many_atoms) {
    context.drop_values();
  }
}

void run_statement(const AtomCommandOptions& options) {
  const DslStatement statement = parse_dsl_statement(options.dsl);
  // Not taken apart at the end: with thousands of tasks, that would take 4 % of the run. Nothing
  // may use it later, since its views of the statement are not valid then.
  static auto* const kept_context = new std::optional<EvalContext>;
  EvalContext& context = kept_context->emplace(needs_of(statement));
  const AtomVector result = evaluate_statement(statement, context);
  run_checks(statement, result, context);
  drop_values_for(result, context);
  write_kv_outputs(options, statement.target, result);
  if (statement.writes_geometry()) {
    write_geometry_outputs(statement, result, context);
  }
  report(statement, result.size());
}

}  // namespace

int run_atom_command(int argc, char** argv) {
  const AtomCommandOptions options = scan_options({argv + 2, argv + argc});
  if (options.dsl.empty() || options.dsl == help_request) {
    print_usage(argv[0]);
    return options.dsl.empty() ? 1 : 0;
  }
  run_statement(options);
  return 0;
}

}  // namespace vqvec
