#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "event.h"
#include "lumo.h"

namespace lumo {

class Device;
class Gpu;
class Library;
class Memory;
class System;
class Vpu;

}  // namespace lumo

// The cells that the caller's handles point to. A library handle keeps the library alive and an event holds
// its object; the others keep nothing alive and survive their object as a dead link.
struct LumoLibrary {
  std::shared_ptr<lumo::Library> object;
};
struct LumoSystem {
  std::weak_ptr<lumo::System> object;
};
struct LumoDevice {
  std::weak_ptr<lumo::Device> object;
};
struct LumoGpu {
  std::weak_ptr<lumo::Gpu> object;
};
struct LumoMemory {
  std::weak_ptr<lumo::Memory> object;
};
struct LumoVpu {
  std::weak_ptr<lumo::Vpu> object;
};
struct LumoEvent {
  lumo::Event object;
};

namespace lumo {

/// All handles of one type: one cell per object, so that asking twice gives the same handle.
///
/// One per process and type. The mutex is held for map operations alone. Cells are freed together,
/// when the last library handle is given back; until then their addresses stay valid.
template <class Object, class Cell>
class HandleRegistry {
 public:
  static HandleRegistry& instance() {
    // Never destroyed: a caller may give the library back while the process ends.
    static HandleRegistry& registry = *new HandleRegistry;
    return registry;
  }

  /// The object's cell, made on first use. Throws std::bad_alloc.
  Cell* getOrCreate(const std::shared_ptr<Object>& object) {
    const std::lock_guard lock(mutex_);
    std::unique_ptr<Cell>& cell = cells_[object.get()];
    if (cell == nullptr) {
      cell = std::make_unique<Cell>(Cell{object});
    }
    return cell.get();
  }

  void freeAll() {
    const std::lock_guard lock(mutex_);
    cells_.clear();
  }

 private:
  std::mutex mutex_;
  std::unordered_map<const Object*, std::unique_ptr<Cell>> cells_;
};

/// Frees every handle but those of the library itself.
void freeAllHandles();

}  // namespace lumo
