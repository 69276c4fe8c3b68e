#include "host/calc/uno/OfficeFiles.h"

#include <array>
#include <cstdio>
#include <osl/file.hxx>
#include <rtl/digest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/Spreadsheet.h"
#include "host/calc/uno/Text.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

std::filesystem::path pipeFile(std::string_view name) {
  return "/tmp/OSL_PIPE_" + std::to_string(::getuid()) + "_" + std::string(name);
}

bool isOwnPipe(std::string_view name) {
  struct stat status {};
  if (::lstat(pipeFile(name).c_str(), &status) != 0) return false;
  if (S_ISSOCK(status.st_mode) && status.st_uid == ::getuid()) return true;
  throw SpreadsheetError(eventErrors::notRunning,
                         "What is in the place of LibreOffice's pipe is not this user's");
}

std::string newPipeName(std::string_view prefix) {
  constexpr std::size_t bytes = 16;
  std::array<unsigned char, bytes> chance{};
  for (;;) {
    if (::getentropy(chance.data(), chance.size()) != 0) {
      throw SpreadsheetError(eventErrors::notRunning, "There is no name for LibreOffice's pipe");
    }
    std::string name(prefix);
    for (const unsigned char byte : chance) {
      constexpr const char* digits = "0123456789abcdef";
      name += {digits[byte >> 4], digits[byte & 15]};
    }
    struct stat status {};
    if (::lstat(pipeFile(name).c_str(), &status) != 0) return name;
  }
}

std::string singleInstancePipe(std::string_view userInstallation) {
  const rtl::OUString url = toUno(userInstallation);
  std::array<sal_uInt8, RTL_DIGEST_LENGTH_MD5> digest{};
  rtl_digest_MD5(
      url.getStr(),
      static_cast<sal_uInt32>(url.getLength()) * static_cast<sal_uInt32>(sizeof(sal_Unicode)),
      digest.data(), RTL_DIGEST_LENGTH_MD5);
  std::string name = "SingleOfficeIPC_";
  for (const sal_uInt8 byte : digest) {
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%x", byte);  // the office does not pad them either
    name += digits.data();
  }
  return name;
}

std::string fileUrl(const std::filesystem::path& path) {
  rtl::OUString url;
  osl::FileBase::getFileURLFromSystemPath(toUno(path.string()), url);
  return toText(url);
}

std::filesystem::path pathOfUrl(std::string_view url) {
  rtl::OUString path;
  if (osl::FileBase::getSystemPathFromFileURL(toUno(url), path) != osl::FileBase::E_None) return {};
  return toText(path);
}

}  // namespace quorin::host::calc
