// The superuser may run the tests, and ignores permissions.
#ifndef VQVEC_TESTS_SUPPORT_ORDINARY_USER_HPP
#define VQVEC_TESTS_SUPPORT_ORDINARY_USER_HPP

#include <unistd.h>

namespace vqvec {

// Makes the superuser an ordinary one until the end of the scope.
class OrdinaryUser {
 public:
  OrdinaryUser() : before_(geteuid()) {
    constexpr uid_t nobody = 65'534;
    is_one_ = before_ != 0 || seteuid(nobody) == 0;
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() { is_back_ = seteuid(before_) == 0; }

  // False where the system has no such user to offer.
  bool is_one() const { return is_one_; }

 private:
  uid_t before_;
  bool is_one_ = false;
  bool is_back_ = false;
};

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_ORDINARY_USER_HPP
