#pragma once

#include <functional>
#include <source_location>
#include <type_traits>

#include "lumo_def.h"

namespace lumo {

/// What a question to `Subject` answers, without its state.
template <class Question, class Subject>
using Answer = decltype(std::declval<std::invoke_result_t<const Question&, const Subject&>>().take());

/// Puts a question to a feature of a device: a method, or a function that takes the feature, with a
/// stated value as its result. A null feature is one that the device lacks. `operation` is who asks.
template <class Feature, class Question>
Answer<Question, Feature> askFeature(const Feature* feature, LumoReturn* status, const Question& question,
                                     std::source_location operation) {
  if (feature == nullptr) {
    logMissingFeature(operation);
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return {};
  }
  return consumeMv(std::invoke(question, *feature), status, operation);
}

}  // namespace lumo
