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
  using Function = std::function<Signature>;

  template <class Other>
  static constexpr bool kBinds =
      !std::derived_from<std::remove_cvref_t<Other>, Callable> && std::constructible_from<Function, Other>;

 public:
  Callable() = default;

  template <class Other, class = std::enable_if_t<kBinds<Other>>>
  Callable(Other&& function) : function_(std::forward<Other>(function)) {}

  explicit operator bool() const { return static_cast<bool>(function_); }

  template <class... Arguments>
  auto operator()(Arguments&&... arguments) const -> std::invoke_result_t<const Function&, Arguments...> {
    return function_(std::forward<Arguments>(arguments)...);
  }

 private:
  Function function_;
};

template <class Result, class... Parameters>
class Callable<Result(Parameters...)> : public Callable<std::function<Result(Parameters...)>> {
 public:
  using Callable<std::function<Result(Parameters...)>>::Callable;
};

}  // namespace rusk
