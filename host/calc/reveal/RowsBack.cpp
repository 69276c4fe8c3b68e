#include "host/calc/reveal/RowsBack.h"

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "host/calc/reveal/RowStates.h"
#include "host/calc/reveal/SheetFilters.h"

namespace quorin::host::calc {
namespace {

using css::sheet::XSpreadsheet;
using css::uno::Reference;
using Entry = ShownRows::Entry;

// The rows or the columns of one sheet as they are now.
struct Group {
  RowStates states;
  HiddenRows rows;
  std::optional<SheetFilters> filters;  // of rows
};

class Groups {
 public:
  explicit Groups(const Workbook& workbook) : workbook_(workbook) {}

  // Of an entry with a place.
  Group& of(const Entry& entry) {
    const auto& [sheet, name, number] = *entry.place;
    const Axis axis = entry.asked.axis;
    for (Group& group : groups_)
      if (group.rows.name == name && group.rows.axis == axis) return group;
    Group& group =
        groups_.emplace_back(Group{RowStates(sheet, axis), {sheet, name, axis, {}}, std::nullopt});
    if (axis == Axis::rows) group.filters.emplace(workbook_, sheet);
    return group;
  }
  std::list<Group>& all() { return groups_; }

 private:
  const Workbook& workbook_;
  std::list<Group> groups_;
};

// Tells which shown rows of a workbook the user has made visible himself.
class OpenedRows {
 public:
  explicit OpenedRows(const ShownRows::Entries& all) {
    for (const Entry& each : all)
      if (!each.isOver() && each.place)
        ours_[{each.asked.axis, each.place->name, each.place->number}] = &each;
  }

  // It is visible, and has a place.
  bool contains(const Entry& entry, const Group& group) const {
    const int number = entry.place->number;
    if (entry.isFiltered && !group.states.isFiltered(number)) return true;
    if (group.filters && group.filters->over(number) != entry.filter) return true;
    bool isBeside = false;
    std::set<int> seen;
    std::vector<const Entry*> left{&entry};
    while (!left.empty()) {
      const Entry& next = *left.back();
      left.pop_back();
      for (const int beside : next.neighbours) {
        if (!seen.insert(beside).second) continue;
        const auto own = ours_.find({entry.asked.axis, entry.place->name, beside});
        if (own != ours_.end()) {
          left.push_back(own->second);
        } else if (group.states.isHidden(beside)) {
          return false;
        } else {
          isBeside = true;
        }
      }
    }
    return isBeside;
  }

 private:
  std::map<std::tuple<Axis, std::string, int>, const Entry*> ours_;
};

}  // namespace

HiddenAgain hideShownRows(QuietChanges& changes, const Workbook& workbook,
                          const ShownRows::Entries& entries, const ShownRows::Entries& all) {
  HiddenAgain again;
  const OpenedRows opened(all);
  Groups groups(workbook);
  for (const Entry& entry : entries) {
    if (entry.isOver() || !entry.place) continue;
    Group& group = groups.of(entry);
    if (group.states.isHidden(entry.place->number)) continue;
    if (opened.contains(entry, group)) {
      again.opened.push_back(entry);
    } else {
      group.rows.numbers.push_back(entry.place->number);
    }
  }
  for (Group& group : groups.all()) {
    group.states.setHidden(changes, workbook, group.rows.numbers, true);
    again.rows.push_back(std::move(group.rows));
  }
  return again;
}

UsersRows usersRows(const Workbook& workbook, const ShownRows::Entries& all) {
  UsersRows users;
  const OpenedRows opened(all);
  Groups groups(workbook);
  for (const Entry& entry : all) {
    if (entry.state != ShownRows::State::shown || !entry.place) continue;
    const Group& group = groups.of(entry);
    if (group.states.isHidden(entry.place->number)) {
      users.hidden.push_back(entry);
    } else if (opened.contains(entry, group)) {
      users.opened.push_back(entry);
    }
  }
  return users;
}

SeenRows seenRows(const Workbook& workbook, const ShownRows::Entries& entries) {
  SeenRows seen;
  Groups groups(workbook);
  for (const Entry& entry : entries) {
    if (!entry.place) continue;
    const bool isHidden = groups.of(entry).states.isHidden(entry.place->number);
    (isHidden ? seen.hidden : seen.visible).push_back(entry);
  }
  return seen;
}

void hideRows(QuietChanges& changes, const Workbook& workbook, const ShownRows::Entries& entries) {
  Groups groups(workbook);
  for (const Entry& entry : entries)
    if (entry.place) groups.of(entry).rows.numbers.push_back(entry.place->number);
  for (Group& group : groups.all())
    group.states.setHidden(changes, workbook, group.rows.numbers, true);
}

}  // namespace quorin::host::calc
