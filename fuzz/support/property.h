#pragma once

#include <cstdio>
#include <cstdlib>

namespace tolk_fuzz {

/// Ends the run when something that holds for every input does not; the fuzzer then keeps the input.
inline void expect(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "broken property: %s\n", property);
  std::abort();
}

}  // namespace tolk_fuzz
