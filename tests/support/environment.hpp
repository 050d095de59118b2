// The environment variables that end up in the snapshot.
#ifndef VQVEC_TESTS_SUPPORT_ENVIRONMENT_HPP
#define VQVEC_TESTS_SUPPORT_ENVIRONMENT_HPP

#include <cstdlib>
#include <optional>
#include <string>

namespace vqvec {

// Gives a variable a value, or takes it away, until the end of the scope.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const std::optional<std::string>& value) : name_(name) {
    const char* const before = std::getenv(name);
    if (before != nullptr) {
      before_ = before;
    }
    set(value);
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { set(before_); }

 private:
  void set(const std::optional<std::string>& value) {
    if (value) {
      setenv(name_, value->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> before_;
};

// The three variables; std::nullopt: not set.
struct TaskVariables {
  std::optional<std::string> task_name;
  std::optional<std::string> input_name;
  std::optional<std::string> struc_id;
};

class TaskEnvironment {
 public:
  explicit TaskEnvironment(const TaskVariables& variables)
      : task_name_("VORQUIL_TASKNAME", variables.task_name),
        input_name_("VORQUIL_INPUTNAME", variables.input_name),
        struc_id_("VORQUIL_STRUCID", variables.struc_id) {}

 private:
  EnvironmentVariable task_name_;
  EnvironmentVariable input_name_;
  EnvironmentVariable struc_id_;
};

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_ENVIRONMENT_HPP
