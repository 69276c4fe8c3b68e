#include "app/linux/ZipArchiver.h"

#include <memory>
#include <string>
#include <system_error>
#include <zip.h>

namespace quorin {

namespace fs = std::filesystem;

namespace {

constexpr int unreadable = -1;

// What is not closed is thrown away.
struct Discard {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, Discard>;

bool addFolder(zip_t* archive, const std::string& name) {
  return zip_dir_add(archive, name.c_str(), ZIP_FL_ENC_UTF_8) >= 0;
}

bool addFile(zip_t* archive, const fs::path& path, const std::string& name) {
  constexpr zip_int64_t toItsEnd = 0;
  zip_source_t* const source = zip_source_file(archive, path.c_str(), 0, toItsEnd);
  if (!source) return false;
  if (zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8) >= 0) return true;
  zip_source_free(source);
  return false;
}

int statusOf(zip_t* archive) {
  const int status = zip_error_code_zip(zip_get_error(archive));
  return status == ZIP_ER_OK ? unreadable : status;
}

}  // namespace

// Names in the archive begin with the folder's own. The files are read when it is closed.
int ZipArchiver::zip(const fs::path& folder, const fs::path& file) {
  int status = ZIP_ER_OK;
  Archive archive(zip_open(file.c_str(), ZIP_CREATE | ZIP_EXCL, &status));
  if (!archive) return status;
  const fs::path base = folder.parent_path();
  if (!addFolder(archive.get(), folder.filename().string())) return statusOf(archive.get());
  std::error_code failed;
  for (fs::recursive_directory_iterator entry(folder, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    const std::string name = entry->path().lexically_relative(base).generic_string();
    const fs::file_status kind = entry->symlink_status();
    if ((fs::is_directory(kind) && !addFolder(archive.get(), name)) ||
        (fs::is_regular_file(kind) && !addFile(archive.get(), entry->path(), name))) {
      return statusOf(archive.get());
    }
  }
  if (failed) return unreadable;
  if (zip_close(archive.get()) != 0) return statusOf(archive.get());
  static_cast<void>(archive.release());
  return 0;
}

}  // namespace quorin
