// Release: what the makers of Quorin publish, made by a test: packages, signatures by a key of the
// test's own, and feeds.
#pragma once

#include <map>
#include <string>

namespace quorin {

class Release {
 public:
  Release();  // with a new key

  const std::string& publicKey() const { return publicKey_; }  // in base64
  std::string sign(const std::string& bytes) const;            // in base64

  // The text with a signature over all of it at its end.
  std::string signedFeed(const std::string& text) const;

  // A feed with one item, signed as a whole. Attributes of its enclosure can be given other values,
  // or left out where they are given as empty.
  std::string feed(const std::string& version, const std::string& url, const std::string& package,
                   const std::map<std::string, std::string>& changes = {}) const;

  // The bytes of a Debian package without files.
  static std::string package(const std::string& name, const std::string& version,
                             const std::string& architecture);

  std::string date;  // of feeds; now, unless a test says otherwise

 private:
  std::string publicKey_, secretKey_;
};

}  // namespace quorin
