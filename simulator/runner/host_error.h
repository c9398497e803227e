// A host description, an option or the machine is not as it must be; what() is for the user.
#ifndef HOST_ERROR_H
#define HOST_ERROR_H

#include <stdexcept>

class HostError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The kernel does not let the chosen tier work; what() names what is missing.
class TierError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

#endif
