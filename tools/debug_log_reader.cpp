#include "debug_log_reader.h"

#include <cstdint>

#include "rusk/log_cipher.h"

namespace {

constexpr std::size_t kLengthBytes = 4;
constexpr std::string_view kRecordEnd("\0\n", 2);
constexpr std::size_t kBlockBytes = std::tuple_size_v<rusk::CipherBlock>;

/// Bytes of the record at the front of `log`, its line end included; nothing if there is no whole one.
std::optional<std::size_t> recordBytes(std::string_view log) {
  if (log.size() < kLengthBytes + kRecordEnd.size()) return std::nullopt;
  std::size_t length = 0;
  for (std::size_t byte = 0; byte < kLengthBytes; ++byte) {
    length |= static_cast<std::size_t>(static_cast<std::uint8_t>(log[byte])) << (8 * byte);
  }
  if (length % kBlockBytes != 0 || length > log.size() - kLengthBytes - kRecordEnd.size())
    return std::nullopt;
  if (log.substr(kLengthBytes + length, kRecordEnd.size()) != kRecordEnd) return std::nullopt;
  return kLengthBytes + length + kRecordEnd.size();
}

/// Where the first whole record behind a damaged one starts, or the log's end. Any offset may be it: a
/// record that was cut off has no end of its own, and the next run appended right behind it.
std::size_t nextRecord(std::string_view log, std::size_t damaged) {
  std::size_t offset = damaged + 1;
  while (offset < log.size() && !recordBytes(log.substr(offset))) ++offset;
  return offset;
}

}  // namespace

DebugLogReader::DebugLogReader(std::string_view log) : log_(log) {
  mbedtls_aes_init(&key_);
  mbedtls_aes_setkey_dec(&key_, rusk::kLogKey.data(), rusk::kLogKey.size() * 8);
}

DebugLogReader::~DebugLogReader() {
  mbedtls_aes_free(&key_);
}

std::optional<DebugLogPiece> DebugLogReader::next() {
  if (offset_ >= log_.size()) return std::nullopt;
  DebugLogPiece piece;
  piece.offset = offset_;
  if (const auto bytes = recordBytes(log_.substr(offset_))) {
    piece.bytes = *bytes;
    piece.line = decipher(log_.substr(offset_ + kLengthBytes, *bytes - kLengthBytes - kRecordEnd.size()));
  } else {
    piece.bytes = nextRecord(log_, offset_) - offset_;
  }
  offset_ += piece.bytes;
  return piece;
}

/// The line in a cipher text of whole blocks, without the zeros that filled its last block.
std::string DebugLogReader::decipher(std::string_view cipherText) {
  std::string text(cipherText.size(), '\0');
  rusk::CipherBlock vector = rusk::kLogVector;
  mbedtls_aes_crypt_cbc(&key_, MBEDTLS_AES_DECRYPT, text.size(), vector.data(),
                        reinterpret_cast<const unsigned char*>(cipherText.data()),
                        reinterpret_cast<unsigned char*>(text.data()));
  for (std::size_t fill = 1; fill < kBlockBytes && text.ends_with('\0'); ++fill) text.pop_back();
  return text;
}
