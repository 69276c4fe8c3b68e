#include "tests/app/linux/updates/Release.h"

#include <fstream>
#include <iterator>
#include <sodium.h>
#include <stdexcept>

#include "kit/support/ISO.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/fakes/ui/ChildProcess.h"

namespace quorin {

namespace {

std::string base64(const unsigned char* bytes, std::size_t count) {
  std::string text(sodium_base64_encoded_len(count, sodium_base64_VARIANT_ORIGINAL), '\0');
  sodium_bin2base64(text.data(), text.size(), bytes, count, sodium_base64_VARIANT_ORIGINAL);
  text.pop_back();  // the zero at its end
  return text;
}

}  // namespace

Release::Release() : date(ISO::string(ISO::fromClock(std::chrono::system_clock::now()))) {
  if (sodium_init() < 0) throw std::runtime_error("libsodium cannot be used");
  unsigned char open[crypto_sign_PUBLICKEYBYTES], secret[crypto_sign_SECRETKEYBYTES];
  crypto_sign_keypair(open, secret);
  publicKey_ = base64(open, sizeof open);
  secretKey_.assign(std::begin(secret), std::end(secret));
}

std::string Release::sign(const std::string& bytes) const {
  unsigned char signature[crypto_sign_BYTES];
  crypto_sign_detached(signature, nullptr, reinterpret_cast<const unsigned char*>(bytes.data()),
                       bytes.size(), reinterpret_cast<const unsigned char*>(secretKey_.data()));
  return base64(signature, sizeof signature);
}

std::string Release::signedFeed(const std::string& text) const {
  return text + "<!-- signature: " + sign(text) + " -->\n";
}

std::string Release::feed(const std::string& version, const std::string& url,
                          const std::string& package,
                          const std::map<std::string, std::string>& changes) const {
  std::map<std::string, std::string> attributes{{"url", url},
                                                {"length", std::to_string(package.size())},
                                                {"sparkle:os", "linux-amd64"},
                                                {"sparkle:edSignature", sign(package)}};
  for (const auto& [name, value] : changes) attributes[name] = value;
  std::string enclosure;
  for (const auto& [name, value] : attributes) {
    if (!value.empty()) enclosure.append(" ").append(name).append("=\"" + value + "\"");
  }
  return signedFeed(
      "<rss version=\"2.0\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
      "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><dc:date>" +
      date +
      "</dc:date><item>"
      "<sparkle:version>" +
      version +
      "</sparkle:version><description sparkle:descriptionFormat=\"plain-text\">What is new"
      "</description><enclosure" +
      enclosure + "/></item></channel></rss>\n");
}

std::string Release::package(const std::string& name, const std::string& version,
                             const std::string& architecture) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "root/DEBIAN");
  std::ofstream(folder / "root/DEBIAN/control")
      << "Package: " << name << "\nVersion: " << version << "\nArchitecture: " << architecture
      << "\nMaintainer: A test <test@localhost>\nDescription: nothing in it\n";
  const std::string file = folder / "made.deb";
  ui::ChildProcess::run({"dpkg-deb", "--root-owner-group", "--build", folder / "root", file});
  std::ifstream made(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(made), {}};
}

}  // namespace quorin
