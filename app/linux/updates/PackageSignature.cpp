#include "app/linux/updates/PackageSignature.h"

#include <sodium.h>

#include "kit/platform/Fatal.h"

namespace quorin {

namespace {

const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

std::optional<std::string> decoded(std::string_view text, std::size_t expected) {
  std::string bytes(expected, '\0');
  std::size_t length = 0;
  const char* end = nullptr;
  if (sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                        text.size(), " \t\r\n", &length, &end,
                        sodium_base64_VARIANT_ORIGINAL) != 0 ||
      length != expected || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return bytes;
}

}  // namespace

std::optional<std::string> signatureFromText(std::string_view text) {
  return decoded(text, crypto_sign_BYTES);
}

std::optional<std::string> publicKeyFromText(std::string_view text) {
  return decoded(text, crypto_sign_PUBLICKEYBYTES);
}

bool isSigned(std::string_view bytes, std::string_view signature, std::string_view publicKey) {
  if (signature.size() != crypto_sign_BYTES || publicKey.size() != crypto_sign_PUBLICKEYBYTES) {
    return false;
  }
  if (sodium_init() < 0) fatal("libsodium cannot be used on this machine");
  return crypto_sign_verify_detached(bytesOf(signature), bytesOf(bytes), bytes.size(),
                                     bytesOf(publicKey)) == 0;
}

}  // namespace quorin
