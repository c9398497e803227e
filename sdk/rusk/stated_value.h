#pragma once

#include <type_traits>
#include <utility>

namespace rusk {

/// A value, or the state that says why there is none. Every operation of the lower layers returns one
/// by value and the caller moves it upward; nothing is thrown for a failure.
///
/// A caller that gets a failing one returns its state unchanged in a stated value of its own type:
/// `if (!clock.ok()) return clock.state();`. Whoever reads the value without that test reads a zero or
/// an empty text. A default-constructed one is in DefaultState, so an operation that nobody implements
/// answers for itself.
template <class State, class Value, State DefaultState, State GoodState>
class [[nodiscard]] StatedValue {
  static_assert(std::is_enum_v<State> && sizeof(State) == 4, "states are 32-bit numbers on every border");
  static_assert(!std::is_same_v<State, Value>, "a state as value cannot be told from a failure");

 public:
  StatedValue() = default;
  StatedValue(State state) : state_(state) {}
  StatedValue(const Value& value) : state_(GoodState), value_(value) {}
  StatedValue(Value&& value) : state_(GoodState), value_(std::move(value)) {}

  StatedValue(const StatedValue&) = default;
  StatedValue(StatedValue&&) = default;
  StatedValue& operator=(const StatedValue&) = default;
  StatedValue& operator=(StatedValue&&) = default;
  virtual ~StatedValue() = default;

  State state() const { return state_; }
  bool ok() const { return state_ == GoodState; }

  const Value& value() const& { return value_; }
  /// By value, so that `for (auto& fan : queryFans().value())` does not walk a dead list.
  Value value() && { return std::move(value_); }

  /// Moves the value out; the state stays.
  Value take() { return std::move(value_); }

 private:
  State state_ = DefaultState;
  Value value_{};
};

}  // namespace rusk
