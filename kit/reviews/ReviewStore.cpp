#include "kit/reviews/ReviewStore.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "kit/value/Marshal.h"

namespace quorin {
namespace {

constexpr std::size_t markLength = 4;
constexpr std::string_view noMark = "....";
// With fewer in common two workbooks are only as alike as empty ones are.
constexpr int fewestInCommon = 4;

// Empty for a member that is not there.
std::string optionalText(const JSONValue& record, const std::string& key) {
  return record.member(key) ? textMember(record, key) : "";
}

ReviewedBook bookOf(const JSONValue& record) {
  return {textMember(record, "book"), optionalText(record, "path"), optionalText(record, "marks")};
}

struct Likeness {
  int common = 0;
  int marks = 0;  // that one of the two has

  bool isHalf() const { return common > 0 && 2 * common >= marks; }
  double share() const { return marks == 0 ? 0 : static_cast<double>(common) / marks; }
};

Likeness likeness(std::string_view one, std::string_view other) {
  Likeness found;
  if (one.size() != other.size()) return found;
  for (; one.size() >= markLength; one.remove_prefix(markLength), other.remove_prefix(markLength)) {
    const std::string_view mark = one.substr(0, markLength);
    const std::string_view beside = other.substr(0, markLength);
    if (mark == noMark && beside == noMark) continue;
    ++found.marks;
    if (mark == beside) ++found.common;
  }
  return found;
}

// True if both are the same workbook as far as can be told.
bool isSame(const ReviewedBook& kept, const ReviewedBook& book) {
  if (!kept.path.empty() && !book.path.empty()) return kept.path == book.path;
  if (kept.name != book.name) return false;
  if (kept.marks.empty() || book.marks.empty()) return true;
  return likeness(kept.marks, book.marks).isHalf();
}

// How much speaks for the kept review being that of the workbook: the place most of all, then what
// it consists of, then its name. 0: nothing.
double claim(const ReviewedBook& kept, const ReviewedBook& book) {
  constexpr double sameFile = 4, sameName = 0.001;
  if (!kept.path.empty() && kept.path == book.path) return sameFile;
  const double named = kept.name == book.name ? sameName : 0;
  if (kept.marks.empty() || book.marks.empty()) return named;
  const Likeness alike = likeness(kept.marks, book.marks);
  const bool isTold = alike.isHalf() && (alike.common >= fewestInCommon || kept.name == book.name);
  return isTold ? 1 + alike.share() + named : 0;
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
      bookOf(record);
      if (!record.member("review")) throw RecordError("a record lacks \"review\"");
      records.push_back(record);
    }
  };
  if (file_.load(decode, RecordFile::Unreadable::isError)) return records;
  if (files_->status(url())) throw RecordError("reviews.json is malformed; left untouched");
  return {};
}

JSONValue ReviewStore::load(const ReviewedBook& book) const {
  const JSONValue::Array records = this->records();
  const JSONValue* best = nullptr;
  double highest = 0;
  // Of those that say as much for themselves the one that was saved last.
  for (const JSONValue& record : records) {
    const double own = claim(bookOf(record), book);
    if (own == 0 || own < highest) continue;
    highest = own;
    best = &record;
  }
  return best ? *best->member("review") : nullptr;
}

void ReviewStore::save(const ReviewedBook& book, const JSONValue& review) const {
  JSONValue::Array records = this->records();
  const auto old = std::remove_if(records.begin(), records.end(), [&](const JSONValue& record) {
    return isSame(bookOf(record), book);
  });
  const bool wasThere = old != records.end();
  records.erase(old, records.end());
  if (review.isNull()) {
    if (wasThere) file_.replace(records);
    return;
  }
  JSONValue::Object record{{"book", book.name}, {"review", review}};
  if (!book.path.empty()) record.emplace("path", book.path);
  if (!book.marks.empty()) record.emplace("marks", book.marks);
  records.emplace_back(std::move(record));
  cutToSize(records);
  file_.replace(records);
}

}  // namespace quorin
