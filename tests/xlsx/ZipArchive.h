// ZipArchive: the files of a zip file, whole. For tests.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>
#include <zip.h>

namespace quorin::xlsx {

class ZipArchive {
 public:
  explicit ZipArchive(const std::filesystem::path& file)
      : zip_(zip_open(file.c_str(), ZIP_RDONLY, nullptr)) {
    if (!zip_) throw std::runtime_error(file.string() + " is no zip file");
  }

  std::vector<std::string> names() const {
    std::vector<std::string> names;
    const zip_int64_t count = zip_get_num_entries(zip_.get(), 0);
    for (zip_int64_t i = 0; i < count; ++i) {
      names.emplace_back(zip_get_name(zip_.get(), static_cast<zip_uint64_t>(i), 0));
    }
    return names;
  }

  // None when there is no such file inside.
  std::optional<std::string> file(const std::string& name) const {
    zip_stat_t status;
    if (zip_stat(zip_.get(), name.c_str(), 0, &status) != 0) return std::nullopt;
    const std::unique_ptr<zip_file_t, Closer> opened(zip_fopen(zip_.get(), name.c_str(), 0));
    std::string text(status.size, '\0');
    if (!opened ||
        zip_fread(opened.get(), text.data(), text.size()) != static_cast<zip_int64_t>(text.size()))
      throw std::runtime_error(name + " cannot be unpacked");
    return text;
  }

 private:
  struct Closer {
    void operator()(zip_t* zip) const { zip_discard(zip); }
    void operator()(zip_file_t* file) const { zip_fclose(file); }
  };
  std::unique_ptr<zip_t, Closer> zip_;
};

}  // namespace quorin::xlsx
