#include "app/linux/updates/PackageFile.h"

#include <gio/gio.h>
#include <sstream>
#include <system_error>

#include "app/linux/GLibHandles.h"
#include "kit/support/FileSystem.h"

namespace quorin::PackageFile {

namespace {

constexpr unsigned fileMode = 0600;

}  // namespace

std::optional<PackageIdentity> identity(const std::filesystem::path& file) {
  const char* const words[] = {"dpkg-deb", "--show",
                               "--showformat=${Package} ${Version} ${Architecture}\n", file.c_str(),
                               nullptr};
  const GObjectPtr<GSubprocess> process(
      g_subprocess_newv(words,
                        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                                      G_SUBPROCESS_FLAGS_STDERR_SILENCE),
                        nullptr));
  if (!process) return std::nullopt;
  char* output = nullptr;
  const bool heard =
      g_subprocess_communicate_utf8(process.get(), nullptr, nullptr, &output, nullptr, nullptr);
  const GTextPtr owned(output);
  if (!heard || !g_subprocess_get_successful(process.get())) return std::nullopt;
  PackageIdentity found;
  std::istringstream fields(output);
  if (!(fields >> found.name >> found.version >> found.architecture)) return std::nullopt;
  return found;
}

std::filesystem::path save(const std::filesystem::path& folder, const std::string& name,
                           std::string_view bytes) {
  std::filesystem::remove_all(folder);
  FileSystem& files = FileSystem::real();
  files.makeFolders(folder);
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
  const std::filesystem::path path = folder / name;
  const std::unique_ptr<WritableFile> file = files.create(path, fileMode);
  file->append(bytes);
  file->sync();
  file->close();
  return path;
}

void discard(const std::filesystem::path& folder) {
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

}  // namespace quorin::PackageFile
