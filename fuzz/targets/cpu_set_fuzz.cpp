#include <cstdio>
#include <vector>

#include "affinity_text.h"
#include "support/drained_log.h"
#include "support/fuzz_input.h"

// The kernel's spellings of a set of CPUs: the number of words to fill, then the text.

namespace {

using tolk_fuzz::expect;
using Reader = LumoReturn (*)(const std::string& text, unsigned count, unsigned long long* out);

constexpr unsigned long long kUntouched = 0xA5A5A5A5A5A5A5A5;

/// The words of a set, none for a text that is refused.
std::vector<unsigned long long> wordsOf(Reader read, const std::string& text, unsigned count) {
  std::vector<unsigned long long> words(count, kUntouched);
  const LumoReturn status = read(text, count, words.data());
  if (status == LUMO_RETURN_SUCCESS) return words;
  expect(status == LUMO_RETURN_UNKNOWN_ERROR || status == LUMO_RETURN_INSUFFICIENT_SIZE,
         "a text that is refused has one of two codes");
  expect(words == std::vector<unsigned long long>(count, kUntouched),
         "a text that is refused writes nothing");
  return {};
}

std::string printMask(const std::vector<unsigned long long>& words) {
  std::string text;
  for (const unsigned long long word : words) {
    char halves[24];
    std::snprintf(halves, sizeof halves, "%s%08llx,%08llx", text.empty() ? "" : ",", word & 0xFFFFFFFF,
                  word >> 32);
    text += halves;
  }
  return text;
}

std::string printList(const std::vector<unsigned long long>& words) {
  std::string text;
  for (std::size_t number = 0; number < words.size() * 64; ++number) {
    if ((words[number / 64] >> number % 64 & 1) != 0) {
      text += (text.empty() ? "" : ",") + std::to_string(number);
    }
  }
  return text;
}

void tryReader(Reader read, std::string (*print)(const std::vector<unsigned long long>&),
               const std::string& text, unsigned count) {
  const auto words = wordsOf(read, text, count);
  if (words.empty() || print(words).empty()) return;
  expect(wordsOf(read, print(words), count) == words, "a set that is printed reads the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::DrainedLog log;
  tolk_fuzz::FuzzInput input(data, size);
  const unsigned count = input.take<std::uint8_t>() % 20U;
  const std::string text = input.takeText();
  tryReader(lumo::cpuAffinityBitmaskToUnsignedLong, printMask, text, count);
  tryReader(lumo::affinityStringToUnsignedLong, printList, text, count);
  return 0;
}
