#include "host/calc/OfficeFiles.h"

#include <array>
#include <cstdio>
#include <osl/file.hxx>
#include <rtl/digest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/calc/Text.h"

namespace quorin::host::calc {

std::filesystem::path pipeFile(std::string_view name) {
  return "/tmp/OSL_PIPE_" + std::to_string(::getuid()) + "_" + std::string(name);
}

bool isOwnPipe(std::string_view name) {
  struct stat status {};
  return ::lstat(pipeFile(name).c_str(), &status) == 0 && S_ISSOCK(status.st_mode) &&
         status.st_uid == ::getuid();
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
