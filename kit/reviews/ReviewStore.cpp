#include "kit/reviews/ReviewStore.h"

#include <algorithm>
#include <utility>

#include "kit/value/Marshal.h"

namespace quorin {
namespace {

bool isOf(const JSONValue& record, const std::string& book) {
  return textMember(record, "book") == book;
}

// As it stands in the file, with the comma before it.
std::size_t sizeOf(const JSONValue& record) {
  return Marshal::encode(record).size() + 1;
}

// Takes records away from the beginning until the file is small enough.
void cutToSize(JSONValue::Array& records) {
  std::size_t size = 1;
  auto first = records.end();
  while (first != records.begin()) {
    size += sizeOf(*std::prev(first));
    if (size > ReviewStore::largestFile) break;
    --first;
  }
  if (first == records.end()) throw RecordError("the review is larger than 5 MB");
  records.erase(records.begin(), first);
}

}  // namespace

ReviewStore::ReviewStore(std::filesystem::path url, FileSystem& files, DiagLog* log)
    : file_(std::move(url), "reviews.json", files, log), files_(&files) {}

JSONValue::Array ReviewStore::records() const {
  JSONValue::Array records;
  const auto decode = [&records](const JSONValue& document) {
    for (const JSONValue& record : arrayOf(document, "the top level")) {
      textMember(record, "book");
      if (!record.member("review")) throw RecordError("a record lacks \"review\"");
      records.push_back(record);
    }
  };
  if (file_.load(decode, RecordFile::Unreadable::isError)) return records;
  if (files_->status(url())) throw RecordError("reviews.json is malformed; left untouched");
  return {};
}

JSONValue ReviewStore::load(const std::string& book) const {
  for (const JSONValue& record : records()) {
    if (isOf(record, book)) return *record.member("review");
  }
  return nullptr;
}

void ReviewStore::save(const std::string& book, const JSONValue& review) const {
  JSONValue::Array records = this->records();
  const auto old = std::remove_if(records.begin(), records.end(),
                                  [&](const JSONValue& record) { return isOf(record, book); });
  const bool wasThere = old != records.end();
  records.erase(old, records.end());
  if (review.isNull()) {
    if (wasThere) file_.replace(records);
    return;
  }
  records.push_back(JSONValue::Object{{"book", book}, {"review", review}});
  cutToSize(records);
  file_.replace(records);
}

}  // namespace quorin
