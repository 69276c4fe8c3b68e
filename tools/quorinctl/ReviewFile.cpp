#include "tools/quorinctl/ReviewFile.h"

#include "tools/quorinctl/Place.h"

namespace quorin::ctl {

JSONValue reviewIn(const std::filesystem::path& file, const ReviewedBook& book) {
  if (!std::filesystem::exists(file)) throw Unserved(file.string() + " is not there");
  // The command line tells what is wrong with it; the user's log is the panel's.
  DiagLog nowhere("/dev/null/quorin.log", 0, 0);
  try {
    return ReviewStore(file, FileSystem::real(), &nowhere).load(book);
  } catch (const FileError& error) {
    throw Unserved(error.what());
  } catch (const RecordError&) {
    throw Unserved(file.string() + " holds no reviews");
  }
}

}  // namespace quorin::ctl
