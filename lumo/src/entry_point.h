#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "handles.h"
#include "lumo_def.h"

/// The shapes of entry points. Each checks its arguments, resolves the handle, runs one operation of
/// the object and writes the result, which a failure leaves untouched.
///
/// An operation is a method, or a function that takes the object, and takes a LumoReturn* besides.
namespace lumo {

template <class Object>
std::shared_ptr<Object> lockObject(const std::shared_ptr<Object>& object) {
  return object;
}

template <class Object>
std::shared_ptr<Object> lockObject(const std::weak_ptr<Object>& object) {
  return object.lock();
}

/// Runs what may find no memory, which the caller is told by a code as everything else.
template <class Call>
LumoReturn withoutThrowing(Call&& call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return LUMO_RETURN_INSUFFICIENT_MEMORY;
  }
}

/// Runs an operation on the object behind a handle and hands its result to `write`. Throws std::bad_alloc.
template <class Cell, class Operation, class Write>
LumoReturn tryObject(const Cell* handle, Operation&& operation, Write&& write) {
  const auto object = lockObject(handle->object);
  if (object == nullptr) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  LumoReturn status = LUMO_RETURN_SUCCESS;
  auto result = std::invoke(operation, *object, &status);
  return status == LUMO_RETURN_SUCCESS ? write(std::move(result)) : status;
}

/// The same, and throws nothing.
template <class Cell, class Operation, class Write>
LumoReturn callObject(const Cell* handle, Operation&& operation, Write&& write) {
  return withoutThrowing([&] { return tryObject(handle, operation, write); });
}

/// An operation with arguments of the caller's, in front of the code.
template <class Operation, class... Arguments>
auto with(Operation operation, Arguments... arguments) {
  return
      [=](auto& object, LumoReturn* status) { return std::invoke(operation, object, arguments..., status); };
}

/// An operation with a further object behind the first one.
template <class Cell, class Operation>
auto withPeer(const Cell* peer, Operation operation) {
  return [=](auto& object, LumoReturn* status) {
    const auto other = lockObject(peer->object);
    using Result = std::invoke_result_t<const Operation&, decltype(object), decltype(*other), LumoReturn*>;
    if (other == nullptr) {
      *status = LUMO_RETURN_UNKNOWN_ERROR;
      return Result{};
    }
    return std::invoke(operation, object, *other, status);
  };
}

/// An operation whose result goes out as a plain number.
template <class Number, class Operation>
auto asNumber(Operation operation) {
  return [=](auto& object, LumoReturn* status) {
    return static_cast<Number>(std::invoke(operation, object, status));
  };
}

/// An operation without a result.
template <class Cell, class Operation>
LumoReturn runOperation(const Cell* handle, Operation&& operation) {
  if (handle == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return withoutThrowing([&] {
    const auto object = lockObject(handle->object);
    if (object == nullptr) {
      return LUMO_RETURN_UNKNOWN_ERROR;
    }
    LumoReturn status = LUMO_RETURN_SUCCESS;
    std::invoke(operation, *object, &status);
    return status;
  });
}

/// One value.
template <class Cell, class Value, class Operation>
LumoReturn getValue(const Cell* handle, Value* value, Operation&& operation) {
  if (handle == nullptr || value == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return callObject(handle, operation, [value](auto&& result) {
    *value = result;
    return LUMO_RETURN_SUCCESS;
  });
}

/// Two values, as a pair of what each output takes.
template <class Cell, class First, class Second, class Operation>
LumoReturn getPair(const Cell* handle, First* first, Second* second, Operation&& operation) {
  if (handle == nullptr || first == nullptr || second == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return callObject(handle, operation, [=](const std::pair<First, Second>& result) {
    *first = result.first;
    *second = result.second;
    return LUMO_RETURN_SUCCESS;
  });
}

/// A text, with its terminator. `whenEmpty` is the code of an empty one.
template <class Cell, class Operation>
LumoReturn getText(const Cell* handle, char* buffer, long long size, Operation&& operation,
                   LumoReturn whenEmpty = LUMO_RETURN_SUCCESS) {
  if (handle == nullptr || buffer == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return callObject(handle, operation, [=](const std::string& text) {
    if (text.empty() && whenEmpty != LUMO_RETURN_SUCCESS) {
      return whenEmpty;
    }
    if (size <= static_cast<long long>(text.size())) {
      return LUMO_RETURN_INSUFFICIENT_SIZE;
    }
    std::memset(buffer, 0, static_cast<std::size_t>(size));
    std::memcpy(buffer, text.data(), text.size());
    return LUMO_RETURN_SUCCESS;
  });
}

/// The length of a list.
template <class Cell, class Operation>
LumoReturn getCount(const Cell* handle, unsigned* count, Operation&& operation) {
  if (handle == nullptr || count == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return callObject(handle, operation, [count](const auto& list) {
    *count = static_cast<unsigned>(list.size());
    return LUMO_RETURN_SUCCESS;
  });
}

/// A list, as a whole or not at all.
template <class Cell, class Record, class Operation>
LumoReturn getList(const Cell* handle, Record* records, unsigned capacity, Operation&& operation) {
  if (handle == nullptr || records == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return callObject(handle, operation, [=](const std::vector<Record>& list) {
    if (list.size() > capacity) {
      return LUMO_RETURN_INSUFFICIENT_SIZE;
    }
    std::memset(records, 0, capacity * sizeof(Record));
    if (!list.empty()) {
      std::memcpy(records, list.data(), list.size() * sizeof(Record));
    }
    return LUMO_RETURN_SUCCESS;
  });
}

/// Texts behind one another, each in `width` bytes. `whenTooMany` is the code of more texts than `count`.
template <class Cell, class Operation>
LumoReturn getTexts(const Cell* handle, char* buffer, unsigned width, unsigned count, LumoReturn whenTooMany,
                    Operation&& operation) {
  if (handle == nullptr || buffer == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  if (width == 0 || count == 0) {
    return LUMO_RETURN_INSUFFICIENT_SIZE;
  }
  return callObject(handle, operation, [=](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      if (text.size() >= width) {
        return LUMO_RETURN_INSUFFICIENT_SIZE;
      }
    }
    if (texts.size() > count) {
      return whenTooMany;
    }
    std::memset(buffer, 0, std::size_t{width} * count);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      std::memcpy(buffer + i * width, texts[i].data(), texts[i].size());
    }
    return LUMO_RETURN_SUCCESS;
  });
}

/// A handle of another object: `operation` finds the object, null when there is none, which gives
/// `whenNull`. Throws std::bad_alloc.
template <class Object, class Cell>
LumoReturn giveHandle(const std::shared_ptr<Object>& object, Cell** handle, LumoReturn whenNull) {
  if (object == nullptr) {
    return whenNull;
  }
  *handle = HandleRegistry<Object, Cell>::instance().getOrCreate(object);
  return LUMO_RETURN_SUCCESS;
}

/// An operation that finds objects, as one that gives their handles, all or none.
template <class Cell, class Operation>
auto asHandles(Operation operation) {
  return [=](auto& object, LumoReturn* status) -> std::vector<Cell*> {
    const auto found = std::invoke(operation, object, status);
    std::vector<Cell*> handles(found.size());
    for (std::size_t i = 0; i < found.size() && *status == LUMO_RETURN_SUCCESS; ++i) {
      *status = giveHandle(found[i], &handles[i], LUMO_RETURN_NOT_FOUND);
    }
    return handles;
  };
}

template <class Cell, class OtherCell, class Operation>
LumoReturn getHandle(const Cell* handle, OtherCell** other, LumoReturn whenNull, Operation&& operation) {
  if (handle == nullptr || other == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  try {
    return tryObject(handle, operation,
                     [=](const auto& object) { return giveHandle(object, other, whenNull); });
  } catch (const std::bad_alloc&) {
    *other = nullptr;
    return LUMO_RETURN_INSUFFICIENT_MEMORY;
  }
}

/// The release calls of old, which free nothing.
template <class Cell>
LumoReturn ignoreRelease(const Cell* handle, const char* function) {
  if (handle == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return withoutThrowing([function] {
    logDeprecated(function);
    return LUMO_RETURN_SUCCESS;
  });
}

}  // namespace lumo
