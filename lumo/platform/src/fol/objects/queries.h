#pragma once

#include <algorithm>
#include <initializer_list>
#include <type_traits>

#include "core_model.h"

/// The two shapes that most questions of the device model have.
namespace kelp {

/// Runs a command on a device of one of some types; state 6, without asking, on any other.
template <class Cmd>
Stated<typename Cmd::Result> execFor(std::initializer_list<DevType> types, const CoreModel& model,
                                     const Cmd& cmd) {
  if (std::ranges::find(types, model.getCuid().type) == types.end()) {
    return KelpReturn::kNotSupported;
  }
  return model.exec(cmd);
}

template <class T>
struct StatedOf {
  using Type = Stated<T>;
};
template <class T>
struct StatedOf<Stated<T>> {
  using Type = Stated<T>;
};

/// One field of a record; the record's state where there is none.
template <class Record, class Field>
typename StatedOf<Field>::Type fieldOf(const Stated<Record>& record, Field Record::*field) {
  if (!record.ok()) {
    return record.state();
  }
  return record.value().*field;
}

}  // namespace kelp
