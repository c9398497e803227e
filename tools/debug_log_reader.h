#pragma once

#include <mbedtls/aes.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// A part of a debug log: a record, or bytes that are none.
struct DebugLogPiece {
  std::size_t offset = 0;
  std::size_t bytes = 0;
  std::optional<std::string> line;  ///< none for a damaged part
};

/// Takes a debug log apart, record by record. The log stays with the caller; together the pieces are all of
/// it.
///
/// A log comes from a stranger's disk: cut off, overwritten in the middle, or no log at all. No length
/// in it is believed before the bytes that it spans and the two that end the record are there.
class DebugLogReader {
 public:
  explicit DebugLogReader(std::string_view log);
  ~DebugLogReader();
  DebugLogReader(const DebugLogReader&) = delete;
  DebugLogReader& operator=(const DebugLogReader&) = delete;

  /// Nothing at the log's end.
  std::optional<DebugLogPiece> next();

 private:
  std::string decipher(std::string_view cipherText);

  std::string_view log_;
  std::size_t offset_ = 0;
  mbedtls_aes_context key_;
};
