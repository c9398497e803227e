#include <cstdio>
#include <string>

#include "calls/operations.h"

// Prints what every reading of every device answers, a line each: "INDEX FUNCTION ANSWER".

namespace {

void printAll(unsigned index, const tolk_test::Subject& subject) {
  for (const tolk_test::Operation& reading : tolk_test::readings()) {
    const std::string answer = reading.ask(subject);
    std::printf("%u %.*s %s\n", index, static_cast<int>(reading.name.size()), reading.name.data(),
                answer.c_str());
  }
}

}  // namespace

int main() {
  LumoLibrary* library = nullptr;
  unsigned count = 0;
  if (lumoLibraryInit(&library) != LUMO_RETURN_SUCCESS ||
      lumoLibraryCountDevice(library, &count) != LUMO_RETURN_SUCCESS) {
    return 1;
  }
  for (unsigned index = 0; index < count; ++index) {
    LumoDevice* device = nullptr;
    LumoDevice* other = nullptr;
    lumoLibraryInitDeviceByIndex(library, index, &device);
    lumoLibraryInitDeviceByIndex(library, (index + 1) % count, &other);
    printAll(index, tolk_test::Subject::of(device, other));
  }
  return lumoLibraryShutDown(library);
}
