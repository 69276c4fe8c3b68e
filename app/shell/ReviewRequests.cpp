#include "app/shell/ReviewRequests.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "kit/support/AtomicFile.h"

namespace quorin {
namespace {

constexpr std::size_t longestName = 200;
constexpr std::size_t longestPath = 20;
constexpr std::size_t longestMarks = 1'000;

const PanelBridge::Reply badArguments{false, "bad args"};

bool isName(const JSONValue& value) {
  return value.string() && !value.string()->empty();
}

// A name that a folder can hold, and nothing that leads elsewhere.
bool isFileName(const JSONValue& value) {
  if (!isName(value)) return false;
  const std::string& name = *value.string();
  const auto isOdd = [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return c == '/' || code < 0x20 || code == 0x7f;
  };
  return name.size() <= longestName && name.front() != '.' &&
         std::none_of(name.begin(), name.end(), isOdd);
}

// A workbook as the page tells it: {"book", "path", "marks"} and nothing else.
std::optional<ReviewedBook> bookIn(const JSONValue& value) {
  const JSONValue::Object* const members = value.object();
  if (!members || members->size() != 3) return std::nullopt;
  const auto text = [&](const char* key) -> const std::string* {
    const JSONValue* const member = value.member(key);
    return member ? member->string() : nullptr;
  };
  const std::string* const name = text("book");
  const std::string* const path = text("path");
  const std::string* const marks = text("marks");
  if (!name || name->empty() || !path || !marks) return std::nullopt;
  if (path->size() > longestPath || marks->size() > longestMarks) return std::nullopt;
  return ReviewedBook{*name, *path, *marks};
}

// Without the path, which tells the page nothing.
std::string reasonOf(const std::exception& error) {
  const auto* const file = dynamic_cast<const FileError*>(&error);
  return file ? file->code().message() : error.what();
}

}  // namespace

bool ReviewRequests::answer(const std::string& verb, const JSONValue::Array& args, Reply reply) {
  if (verb == "loadReview") {
    load(args, std::move(reply));
  } else if (verb == "saveReview") {
    save(args, std::move(reply));
  } else if (verb == "saveReport") {
    saveReport(args, std::move(reply));
  } else {
    return false;
  }
  return true;
}

void ReviewRequests::load(const JSONValue::Array& args, Reply reply) {
  const std::optional<ReviewedBook> book = args.size() == 1 ? bookIn(args[0]) : std::nullopt;
  if (!book) return reply(badArguments);
  doAndReply(
      "could not read the review",
      [store = parts_.store, book = *book] { return store.load(book); }, std::move(reply));
}

void ReviewRequests::save(const JSONValue::Array& args, Reply reply) {
  const std::optional<ReviewedBook> book = args.size() == 2 ? bookIn(args[0]) : std::nullopt;
  if (!book || !(args[1].object() || args[1].isNull())) return reply(badArguments);
  doAndReply(
      "could not save the review",
      [store = parts_.store, book = *book, review = args[1]] {
        store.save(book, review);
        return JSONValue(nullptr);
      },
      std::move(reply));
}

void ReviewRequests::saveReport(const JSONValue::Array& args, Reply reply) {
  if (args.size() != 2 || !isFileName(args[0]) || !args[1].string()) return reply(badArguments);
  if (!parts_.dialog) {
    return reply({false, "could not save the report: nothing here asks where to"});
  }
  if (asksWhere_) return reply({false, "could not save the report: another one is being saved"});
  asksWhere_ = true;
  parts_.dialog->ask(*args[0].string(), [this, alive = std::weak_ptr(alive_), text = args[1],
                                         reply = std::move(reply)](
                                            const std::optional<std::filesystem::path>& file) {
    if (alive.expired()) return;
    asksWhere_ = false;
    if (!file) return reply({true, nullptr});
    doAndReply(
        "could not save the report",
        [file = *file, text] {
          AtomicFile::write(FileSystem::real(), file, *text.string(), AtomicFile::ReadOnly::refuse);
          return JSONValue(file.filename().string());
        },
        reply);
  });
}

void ReviewRequests::doAndReply(const std::string& failing, Work work, Reply reply) {
  parts_.queue.post([failing, work = std::move(work), reply = std::move(reply), &log = parts_.log,
                     &loop = parts_.loop, alive = std::weak_ptr(alive_)] {
    PanelBridge::Reply told;
    try {
      told = {true, work()};
    } catch (const std::exception& error) {
      log.log("ERROR", failing + ": " + error.what());
      told = {false, failing + ": " + reasonOf(error)};
    }
    loop.post([told = std::move(told), reply, alive] {
      if (!alive.expired()) reply(told);
    });
  });
}

}  // namespace quorin
