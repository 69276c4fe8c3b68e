// Ed25519 signatures, as feeds and builds write them. Pure functions for any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorin {

// The 64 bytes of a signature, or the 32 of a public key, from base64; none for anything else.
std::optional<std::string> signatureFromText(std::string_view text);
std::optional<std::string> publicKeyFromText(std::string_view text);

// True if the holder of the key signed exactly these bytes.
bool isSigned(std::string_view bytes, std::string_view signature, std::string_view publicKey);

}  // namespace quorin
