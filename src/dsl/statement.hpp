// The statement of a run, `<target> = <expr> [options]`, parsed but not evaluated.
#ifndef VQVEC_DSL_STATEMENT_HPP
#define VQVEC_DSL_STATEMENT_HPP

#include <string>
#include <string_view>
#include <vector>

namespace vqvec {

struct DslStatement {
  std::string target;               // normalised property name, never empty
  std::string expression;           // trimmed, never empty
  std::vector<std::string> checks;  // every --check, in order; only "same_atoms", duplicates kept
  std::string sum_text;             // scalar expression as written; empty: no renormalisation
  std::string out_path;             // extended-XYZ file; empty: none
  std::string chg_path;             // charge file; empty: none
  std::string format = "extxyz";    // lower-cased; only looked at when there is an out_path
  std::string geom_path;  // task text (not a path) of the geometry; empty: first task used

  bool writes_geometry() const { return !out_path.empty() || !chg_path.empty(); }
};

// The text is the statement as the user typed it. Each kind of error has its own message; the
// target is checked before anything to the right of the '='.
DslStatement parse_dsl_statement(std::string_view text);

// False if the statement cannot ask for this property, whatever its tasks are called.
bool may_name(const DslStatement& statement, std::string_view property);

}  // namespace vqvec

#endif  // VQVEC_DSL_STATEMENT_HPP
