#pragma once

#include <memory>
#include <mutex>

namespace lumo {

class Library;

/// The library of this process. The mutex is held while a handle of it is made or given back.
struct Process {
  std::mutex mutex;
  std::weak_ptr<Library> library;
};

Process& process();

/// The library that runs, null when none does.
std::shared_ptr<Library> currentLibrary();

}  // namespace lumo
