#include "host/model/Windows.h"

#include <algorithm>
#include <vector>

#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

std::vector<std::string> inWindowOrder(Session& session) {
  std::vector<std::string> books = session.spreadsheet.workbooks();
  const auto active = session.spreadsheet.activeWorkbook();
  const auto it = active ? std::find(books.begin(), books.end(), *active) : books.end();
  if (it != books.end()) std::rotate(books.begin(), it, it + 1);
  return books;
}

}  // namespace

std::string workbookOf(Session& session, const WindowObject& window) {
  const auto books = inWindowOrder(session);
  if (window.index < 1 || window.index > std::ssize(books))
    throw EventError(eventErrors::noSuchObject);
  return books[static_cast<std::size_t>(window.index - 1)];
}

std::optional<WindowObject> windowOf(Session& session, const std::string& book) {
  const auto books = inWindowOrder(session);
  const auto it = std::find(books.begin(), books.end(), book);
  if (it == books.end()) return std::nullopt;
  return WindowObject{static_cast<int>(it - books.begin()) + 1};
}

int idOf(Session& session, const WindowObject& window) {
  const std::string book = workbookOf(session, window);
  auto& known = session.windows;
  const auto it = std::find(known.begin(), known.end(), book);
  const auto place = it - known.begin();
  if (it == known.end()) known.push_back(book);
  return static_cast<int>(place) + 1;
}

std::optional<WindowObject> windowOfID(Session& session, long long id) {
  for (int index = 1; index <= std::ssize(session.spreadsheet.workbooks()); ++index)
    if (idOf(session, {index}) == id) return WindowObject{index};
  return std::nullopt;
}

}  // namespace quorin::host
