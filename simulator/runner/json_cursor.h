// A place in a host description: the value there, and file and key path to name it by.
//
// All getters throw HostError when the value is not of the form that they are for; the message names
// file, key path, what was expected and what was found.
#ifndef JSON_CURSOR_H
#define JSON_CURSOR_H

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class JsonCursor {
 public:
  JsonCursor(const nlohmann::json& value, std::string file, std::string path = {});

  const nlohmann::json& value() const { return *place; }
  const std::string& file() const { return fileName; }
  const std::string& path() const { return keyPath; }

  /// The member of an object; nothing when it is absent.
  std::optional<JsonCursor> find(std::string_view key) const;
  JsonCursor require(std::string_view key) const;

  /// Members and elements, in order. The value must be an object or an array.
  std::vector<std::pair<std::string, JsonCursor>> members() const;
  std::vector<JsonCursor> elements() const;

  /// Any other key is an error, with a hint at the nearest of these.
  void allowKeys(const std::vector<std::string_view>& keys) const;

  std::string text() const;
  bool flag() const;
  uint64_t whole(uint64_t lowest, uint64_t highest) const;

  /// A time in seconds since the epoch: so many, or UTC as "2025-11-20 17:40:12".
  int64_t moment() const;

  /// A whole number, or text: "0x" and digits, or a number and one of KiB, MiB, GiB.
  uint64_t number() const;

  [[noreturn]] void fail(const std::string& expected) const;
  /// The same place with words of one's own.
  [[noreturn]] void failWith(const std::string& what) const;

 private:
  std::string where() const;

  const nlohmann::json* place;
  std::string fileName;
  std::string keyPath;
};

/// The number of a text as `number()` takes it; nothing when it is none.
std::optional<uint64_t> numberFromText(std::string_view text);

#endif
