// FaultyFileSystem: the real file system, counting its steps, in which one step fails or the
// process is killed there. A failing or killed write leaves half of its data behind, as a full disk
// does.
#pragma once

#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kit/support/FileSystem.h"

namespace quorin {

class FaultyFileSystem : public FileSystem {
 public:
  // Steps are counted from 0. ENOSPC, EACCES, EIO ...
  void failAt(std::size_t step, int number) {
    fault_ = [step, number](std::size_t at, const std::string& name,
                            const std::filesystem::path& path) {
      if (at == step) throw FileError(number, name, path);
    };
  }
  // Every step of one kind fails: "read", "create" ...
  void failEvery(const std::string& kind, int number) {
    fault_ = [kind, number](std::size_t, const std::string& name,
                            const std::filesystem::path& path) {
      if (name == kind) throw FileError(number, name, path);
    };
  }
  void killAt(std::size_t step) {
    fault_ = [step](std::size_t at, const std::string&, const std::filesystem::path&) {
      if (at == step) std::raise(SIGKILL);
    };
  }

  // Every step is told, before it is taken.
  void tellAll(std::function<void(const std::string& name, const std::filesystem::path&)> hear) {
    fault_ = [hear = std::move(hear)](std::size_t, const std::string& name,
                                      const std::filesystem::path& path) { hear(name, path); };
  }

  // The names of the steps so far.
  const std::vector<std::string>& steps() const { return steps_; }

  std::optional<FileStatus> status(const std::filesystem::path& path) override {
    step("status", path);
    return real().status(path);
  }
  std::string read(const std::filesystem::path& path, std::uint64_t offset,
                   std::size_t count) override {
    step("read", path);
    return real().read(path, offset, count);
  }
  void makeFolders(const std::filesystem::path& path) override {
    step("makeFolders", path);
    real().makeFolders(path);
  }
  std::unique_ptr<WritableFile> create(const std::filesystem::path& path, unsigned mode) override {
    step("create", path);
    return std::make_unique<File>(*this, real().create(path, mode), path);
  }
  std::unique_ptr<WritableFile> openToAppend(const std::filesystem::path& path) override {
    step("openToAppend", path);
    return std::make_unique<File>(*this, real().openToAppend(path), path);
  }
  std::unique_ptr<WritableFile> openToOverwrite(const std::filesystem::path& path) override {
    step("openToOverwrite", path);
    return std::make_unique<File>(*this, real().openToOverwrite(path), path);
  }
  void truncate(const std::filesystem::path& path, std::uint64_t size) override {
    step("truncate", path);
    real().truncate(path, size);
  }
  void rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    step("rename", to);
    real().rename(from, to);
  }
  void syncFolder(const std::filesystem::path& path) override {
    step("syncFolder", path);
    real().syncFolder(path);
  }
  void remove(const std::filesystem::path& path) override {
    step("remove", path);
    real().remove(path);
  }

 private:
  class File : public WritableFile {
   public:
    File(FaultyFileSystem& owner, std::unique_ptr<WritableFile> file, std::filesystem::path path)
        : owner_(owner), file_(std::move(file)), path_(std::move(path)) {}

    void append(std::string_view data) override {
      const std::size_t half = data.size() / 2;
      file_->append(data.substr(0, half));
      owner_.step("append", path_);
      file_->append(data.substr(half));
    }
    void sync() override {
      owner_.step("sync", path_);
      file_->sync();
    }
    void close() override {
      owner_.step("close", path_);
      file_->close();
    }

   private:
    FaultyFileSystem& owner_;
    std::unique_ptr<WritableFile> file_;
    std::filesystem::path path_;
  };

  void step(const std::string& name, const std::filesystem::path& path) {
    steps_.push_back(name);
    if (fault_) fault_(steps_.size() - 1, name, path);
  }

  std::function<void(std::size_t, const std::string&, const std::filesystem::path&)> fault_;
  std::vector<std::string> steps_;
};

}  // namespace quorin
