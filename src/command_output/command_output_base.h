#pragma once

#include <iostream>

#include "step.h"

namespace tolk {

/// Base of the renderers: a step that prints what a command gathered and ends the run. A renderer owns
/// copies of what it prints.
class CommandOutputBase : public Step {};

/// Columns of standard output are left-aligned while this lives, and right-aligned afterwards.
class LeftAlignment {
 public:
  LeftAlignment() { std::cout << std::left; }
  ~LeftAlignment() { std::cout << std::right; }
  LeftAlignment(const LeftAlignment&) = delete;
  LeftAlignment& operator=(const LeftAlignment&) = delete;
};

}  // namespace tolk
