#pragma once

#include <concepts>
#include <functional>
#include <type_traits>
#include <utility>

namespace rusk {

/// A function held as a table entry: bound, or unbound and false. F is a signature or a std::function.
/// Calling an unbound one throws std::bad_function_call, so an entry is tested before it is called.
template <class F>
class Callable;

template <class Signature>
class Callable<std::function<Signature>> {
 public:
  Callable() = default;

  template <class Function>
  requires(!std::derived_from<std::remove_cvref_t<Function>, Callable> &&
           std::constructible_from<std::function<Signature>, Function>) Callable(Function&& function)
      : function_(std::forward<Function>(function)) {}

  explicit operator bool() const { return static_cast<bool>(function_); }

  template <class... Arguments>
  requires std::invocable < const std::function<Signature>
  &, Arguments... > decltype(auto) operator()(Arguments&&... arguments) const {
    return function_(std::forward<Arguments>(arguments)...);
  }

 private:
  std::function<Signature> function_;
};

template <class Result, class... Parameters>
class Callable<Result(Parameters...)> : public Callable<std::function<Result(Parameters...)>> {
 public:
  using Callable<std::function<Result(Parameters...)>>::Callable;
};

}  // namespace rusk
