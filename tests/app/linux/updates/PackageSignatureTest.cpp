#include <gtest/gtest.h>

#include "app/linux/updates/PackageSignature.h"

namespace quorin {
namespace {

// The third of the examples in RFC 8032, 7.1.
constexpr const char* key = "/FHNjmIYoaONpH7QAjDwWAgW7RO6MwOsXeuRFUiQgCU=";
constexpr const char* signature =
    "YpHWV97sJAJIJ+acOr4BowzlSKKEdDpEXjaA19taw6wY/5tTjRbykK5n92CYTcZZSnwV6XFu0o3AJ77O6h7ECg==";
constexpr std::string_view bytes = "\xaf\x82";

bool holds(std::string_view message, const std::string& signer, const std::string& sealed) {
  return isSigned(message, signatureFromText(sealed).value(), publicKeyFromText(signer).value());
}

TEST(PackageSignature, HoldsForWhatWasSigned) {
  EXPECT_TRUE(holds(bytes, key, signature));
}

TEST(PackageSignature, HoldsForNothingElse) {
  EXPECT_FALSE(holds("\xaf\x83", key, signature));
  EXPECT_FALSE(holds("", key, signature));
  EXPECT_FALSE(holds("\xaf\x82\x01", key, signature));
  std::string other = signature;
  other[5] = 'A';
  EXPECT_FALSE(holds(bytes, key, other));
  std::string stranger = key;
  stranger[9] = 'A';
  EXPECT_FALSE(holds(bytes, stranger, signature));
  EXPECT_FALSE(isSigned(bytes, "", ""));
}

TEST(PackageSignature, IsReadFromBase64OfItsLength) {
  EXPECT_TRUE(signatureFromText(std::string("\n  ") + signature + "\n"));
  for (const std::string& text :
       {std::string(), std::string("AAAA"), std::string(key), std::string(signature).substr(1),
        std::string(signature) + "AAAA", std::string(signature) + "!", std::string(88, '?')}) {
    EXPECT_FALSE(signatureFromText(text)) << text;
  }
  EXPECT_FALSE(publicKeyFromText(signature));
  EXPECT_FALSE(publicKeyFromText(""));
}

}  // namespace
}  // namespace quorin
