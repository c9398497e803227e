#pragma once

#include <source_location>

#include "kelp_return.h"
#include "lumo.h"

namespace lumo {

/// The code that leaves the library for a state of the platform. The only such table.
LumoReturn statusOf(kelp::KelpReturn state);

/// Writes the log line of a failed value. `file` and `line` name the place that asked for it.
void logFailedValue(kelp::KelpReturn state, const char* file, unsigned line);

/// Writes the log line of a feature that the device lacks, in the name of the operation that wanted it.
void logMissingFeature(std::source_location operation);

/// Writes the log line of an entry point that does nothing any more.
void logDeprecated(const char* function);

/// Takes the value out of a stated value and stores its state as a code, success included. The value
/// of a failed one is the default of its type; its failure is logged.
template <class T>
T consumeMv(kelp::Stated<T>&& mv, LumoReturn* status, const char* file, unsigned line) {
  if (!mv.ok()) {
    logFailedValue(mv.state(), file, line);
  }
  *status = statusOf(mv.state());
  return mv.take();
}

/// The same, named after the caller.
template <class T>
T consumeMv(kelp::Stated<T>&& mv, LumoReturn* status,
            std::source_location where = std::source_location::current()) {
  return consumeMv(std::move(mv), status, where.file_name(), where.line());
}

}  // namespace lumo
