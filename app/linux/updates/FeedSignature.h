// The signature over a feed as a whole. Pure functions for any thread.
//
// A signed feed ends, to the last byte, with a comment that holds the Ed25519 signature over all
// that stands before the comment, in base64:
//
//   <!-- signature: … -->
//
// and the end of that line. XML passes a comment over, so that the Mac reads the same feed.
#pragma once

#include <string_view>
#include <variant>

#include "app/linux/updates/UpdateFailure.h"

namespace quorin {

// The part of the text that the holder of the key signed, which is all but the comment. A view of
// the text. A failure when the text does not end with a signature, or with another one.
std::variant<std::string_view, UpdateFailure> signedFeed(std::string_view text,
                                                         std::string_view publicKey);

}  // namespace quorin
