#include "rusk/log_cipher.h"

#include <mbedtls/aes.h>

namespace rusk {
namespace {

constexpr std::size_t kLengthBytes = 4;
constexpr std::size_t kBlockBytes = std::tuple_size_v<CipherBlock>;

/// The expanded key, made once: the first expansion fills tables that mbedTLS does not guard, and
/// enciphering only reads.
mbedtls_aes_context* expandedKey() {
  static mbedtls_aes_context* const context = [] {
    static mbedtls_aes_context storage;
    mbedtls_aes_init(&storage);
    mbedtls_aes_setkey_enc(&storage, kLogKey.data(), kLogKey.size() * 8);
    return &storage;
  }();
  return context;
}

}  // namespace

std::string encipherLine(const std::string& line) {
  const std::size_t length = (line.size() + kBlockBytes - 1) / kBlockBytes * kBlockBytes;

  std::string record;
  record.reserve(kLengthBytes + length + 1);
  for (std::size_t byte = 0; byte < kLengthBytes; ++byte) {
    record += static_cast<char>(length >> (8 * byte) & 0xFF);
  }
  record += line;
  record.resize(kLengthBytes + length + 1);

  CipherBlock vector = kLogVector;
  auto* text = reinterpret_cast<unsigned char*>(record.data() + kLengthBytes);
  mbedtls_aes_crypt_cbc(expandedKey(), MBEDTLS_AES_ENCRYPT, length, vector.data(), text, text);
  return record;
}

}  // namespace rusk
