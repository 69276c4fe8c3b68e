#include "host/calc/keeper/MarkFollower.h"

#include <algorithm>
#include <atomic>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/frame/XTitle.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/XSheetCellRangeContainer.hpp>
#include <com/sun/star/util/XModifyBroadcaster.hpp>
#include <filesystem>
#include <iterator>

#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

std::vector<Area> areasOf(const css::uno::Sequence<css::table::CellRangeAddress>& addresses) {
  std::vector<Area> areas;
  for (const css::table::CellRangeAddress& address : addresses) areas.push_back(areaOf(address));
  return areas;
}

css::drawing::PointSequenceSequence outlinesShown(const PlacedMark& mark) {
  css::drawing::PointSequenceSequence outlines;
  Reference<css::beans::XPropertySet>(mark.shape, UNO_QUERY_THROW)
      ->getPropertyValue("PolyPolygon") >>= outlines;
  return outlines;
}

}  // namespace

// The office waits for the answer, so there is nothing but a note.
class MarkFollower::News : public cppu::WeakImplHelper1<css::util::XModifyListener> {
 public:
  explicit News(std::function<void()> changed) : changed_(std::move(changed)) {}
  void SAL_CALL modified(const css::lang::EventObject&) override {
    isNew = areRowsNew = true;
    changed_();
  }
  void SAL_CALL disposing(const css::lang::EventObject&) override {
    isNew = true;
    changed_();
  }
  std::atomic<bool> isNew = true, areRowsNew = true;

 private:
  const std::function<void()> changed_;
};

MarkFollower::MarkFollower(std::string uid, const Owner& owner, Workbook workbook,
                           QuietChanges& changes, const SaveHook& hook,
                           const std::function<void()>& changed)
    : uid_(std::move(uid)),
      owner_(owner),
      workbook_(std::move(workbook)),
      changes_(changes),
      hook_(hook),
      news_(new News(changed)),
      undo_(workbook_.model, [news = news_, changed] {
        news->areRowsNew = true;
        changed();
      }) {
  Reference<css::util::XModifyBroadcaster>(workbook_.model, UNO_QUERY_THROW)
      ->addModifyListener(news_.get());
}

MarkFollower::~MarkFollower() {
  try {
    Reference<css::util::XModifyBroadcaster>(workbook_.model, UNO_QUERY_THROW)
        ->removeModifyListener(news_.get());
  } catch (const css::uno::Exception&) {
    // The workbook is gone.
  }
}

bool MarkFollower::isChanged() const {
  return news_->isNew || news_->areRowsNew;
}

void MarkFollower::lookAtRows(const ShownRows& shown) {
  if (!news_->areRowsNew.exchange(false)) return;
  const std::optional<int> turn = hook_.turn();
  try {
    const auto rows = readRows(shown);
    if (!rows || !turn || hook_.turn() != turn) {
      news_->areRowsNew = true;
      return;
    }
    const UsersRows& users = rows->users;
    takeBackUndone(shown, rows->taken);
    take(shown, users.hidden, ShownRows::State::over);
    take(shown, users.opened, ShownRows::State::opened);
    taken_.looked();
    if (rows->sheets != sheets_ || !users.hidden.empty() || !users.opened.empty())
      tidyNotes(changes_, workbook_, shown);
    sheets_ = rows->sheets;
  } catch (const css::uno::Exception&) {
    news_->areRowsNew = true;
    throw;
  }
}

// As they are at one place in the undo list; nothing for somebody who works on all the time.
std::optional<MarkFollower::LookedAt> MarkFollower::readRows(const ShownRows& shown) {
  constexpr int mostTries = 10;
  for (int tries = 1; tries <= mostTries; ++tries) {
    const UndoList::Place place = undo_.place();
    taken_.begin(place);
    const auto entries = shown.entries(workbook_);
    auto taken = shown.owed(workbook_);
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(taken),
                 [](const auto& each) { return each.state == ShownRows::State::taken; });
    LookedAt rows{usersRows(workbook_, entries), seenRows(workbook_, taken),
                  workbook_.sheets->getElementNames()};
    if (undo_.isStill(place)) return rows;
  }
  return std::nullopt;
}

// Those that no undoing has back get that state.
void MarkFollower::take(const ShownRows& shown, ShownRows::Entries rows,
                        ShownRows::State otherwise) {
  const auto rest = std::partition(rows.begin(), rows.end(),
                                   [this](const auto& each) { return taken_.take(each); });
  shown.set(ShownRows::Entries(rows.begin(), rest), ShownRows::State::taken);
  shown.set(ShownRows::Entries(rest, rows.end()), otherwise);
}

// What he has done to them and undoes leaves them ours as before; nobody but us will ask for what
// is owed.
void MarkFollower::takeBackUndone(const ShownRows& shown, const SeenRows& taken) {
  ShownRows::Entries ours, due;
  for (const auto& each : taken.hidden) taken_.isUndone(each, false);
  for (const auto& each : taken.visible)
    if (taken_.isUndone(each, true))
      (each.state == ShownRows::State::owed ? due : ours).push_back(each);
  shown.set(ours, ShownRows::State::shown);
  if (!due.empty()) {
    hideRows(changes_, workbook_, due);
    shown.forget(due);
    news_->isNew = true;  // marks of these rows are drawn otherwise
  }
  for (const auto& each : ours) taken_.forget(each);
  for (const auto& each : due) taken_.forget(each);
}

bool MarkFollower::isOpen() const {
  try {
    workbook_.model->getURL();
    return true;
  } catch (const css::uno::Exception&) {
    return false;
  }
}

// Finds the marks and where their cells are. That takes many calls, and it is of no use when the
// user's next change comes in between; false then, and there is something to look at again.
bool MarkFollower::survey(std::vector<MarkedSheet>& sheets) {
  news_->isNew = false;
  const std::optional<int> turn = hook_.turn();
  if (turn) sheets = findMarks(owner_, workbook_);
  for (Followed& mark : followed_) {
    const auto addresses = mark.cells->getRangeAddresses();
    mark.sheet = addresses.hasElements() ? addresses[0].Sheet : -1;
    mark.now = areasOf(addresses);
    mark.seen = false;
    if (turn != turn_) mark.drawn.reset();  // its shape was made anew
  }
  turn_ = turn;
  if (turn && hook_.turn() == turn && !news_->isNew) return true;
  news_->isNew = true;
  return false;
}

void MarkFollower::tieNew() {
  onlyOwn_ = false;
  tie();
}

void MarkFollower::tieWithNextLook() {
  untied_ = onlyOwn_ = true;
  news_->isNew = true;
}

void MarkFollower::tie() {
  untied_ = true;
  news_->isNew = true;
  std::vector<MarkedSheet> sheets;
  constexpr int mostTries = 10;  // somebody who changes the workbook all the time
  for (int i = 1; !survey(sheets); ++i) {
    if (i == mostTries) return;
  }
  for (const MarkedSheet& sheet : sheets) {
    for (const PlacedMark& mark : sheet.marks) {
      Followed* followed = find(sheet, mark);
      if (followed == nullptr && onlyOwn_ && isOfAnother(mark.mark)) continue;
      if (followed == nullptr) followed = &followed_.emplace_back(tied(sheet, mark));
      if (followed->mark != mark.mark) *followed = tied(sheet, mark);
      followed->shape = mark.shape;
      followed->seen = true;
    }
  }
  untied_ = onlyOwn_ = false;
  news_->isNew = true;
}

// By the names alone: a workbook is called by its file's name, maybe with folders before it or a
// number behind.
bool MarkFollower::isOfAnother(const Mark& mark) const {
  if (!mark.asked) return false;
  const std::string url = toText(workbook_.model->getURL());
  const std::filesystem::path file = pathOfUrl(url);
  std::string name = file.filename().string();
  if (file.empty()) name = url.substr(url.rfind('/') + 1);
  if (url.empty())
    name = toText(Reference<css::frame::XTitle>(workbook_.model, UNO_QUERY_THROW)->getTitle());
  const std::string& book = mark.asked->sheet.book;
  const std::string its = book.substr(book.rfind('/') + 1);
  return its != name && !its.starts_with(name + " (");
}

void MarkFollower::look() {
  look(Extent::all);
}

void MarkFollower::followCells() {
  look(Extent::moved);
}

void MarkFollower::look(Extent extent) {
  try {
    if (untied_) return tie();
    std::vector<MarkedSheet> sheets;
    if (!survey(sheets)) return;
    for (const MarkedSheet& sheet : sheets) lookAt(sheet, extent);
    std::erase_if(followed_, [](const Followed& mark) { return !mark.seen; });
  } catch (const css::uno::Exception&) {
    news_->isNew = true;
    throw;
  }
}

void MarkFollower::lookAt(const MarkedSheet& sheet, Extent extent) {
  bool moved = false;
  std::vector<std::pair<PlacedMark, Followed*>> kept;
  std::vector<Mark> marks;
  for (const PlacedMark& mark : sheet.marks) {
    Followed* const followed = find(sheet, mark);
    if (followed == nullptr || followed->now.empty()) {
      changes_.remove(workbook_, sheet.page, mark.shape);
      moved = true;
      continue;
    }
    moved = moved || followed->now != followed->areas;
    followed->seen = true;
    followed->shape = mark.shape;
    if (followed->now != followed->areas) followed->mark.areas = followed->now;
    followed->areas = followed->now;
    kept.emplace_back(mark, followed);
    marks.push_back(followed->mark);
  }
  if (extent == Extent::moved && !moved) {
    news_->isNew = true;
    return;
  }
  const std::vector<std::vector<Area>> drawn = drawnAreas(marks);
  for (std::size_t i = 0; i < kept.size(); ++i) {
    draw(sheet, kept[i].first, *kept[i].second, drawn[i]);
  }
}

// The number alone does not tell: a copied sheet has marks of the same numbers.
MarkFollower::Followed* MarkFollower::find(const MarkedSheet& sheet, const PlacedMark& mark) {
  Followed* withoutCells = nullptr;
  for (Followed& candidate : followed_) {
    if (candidate.number != mark.number || candidate.seen) continue;
    if (candidate.sheet == sheet.position) return &candidate;
    if (candidate.now.empty()) withoutCells = &candidate;
  }
  return withoutCells;
}

MarkFollower::Followed MarkFollower::tied(const MarkedSheet& sheet, const PlacedMark& mark) const {
  const Reference<css::sheet::XSheetCellRangeContainer> cells(
      Reference<css::lang::XMultiServiceFactory>(workbook_.model, UNO_QUERY_THROW)
          ->createInstance("com.sun.star.sheet.SheetCellRanges"),
      UNO_QUERY_THROW);
  std::vector<css::table::CellRangeAddress> addresses;
  for (const Area& area : mark.mark.areas) {
    addresses.emplace_back(static_cast<sal_Int16>(sheet.position), area.firstColumn - 1,
                           area.firstRow - 1, area.lastColumn - 1, area.lastRow - 1);
  }
  cells->addRangeAddresses({addresses.data(), static_cast<sal_Int32>(addresses.size())}, false);
  Followed followed;
  followed.number = mark.number;
  followed.mark = mark.mark;
  followed.cells.set(cells, UNO_QUERY_THROW);
  followed.areas = areasOf(followed.cells->getRangeAddresses());
  followed.sheet = sheet.position;
  followed.now = followed.areas;
  return followed;
}

void MarkFollower::draw(const MarkedSheet& sheet, const PlacedMark& mark, Followed& followed,
                        const std::vector<Area>& areas) {
  if (!isMarkShape(mark.shape)) return;
  auto outlines = outlinesOf(sheet.sheet, areas);
  if (!followed.drawn) followed.drawn = outlinesShown(mark);
  if (followed.mark == mark.mark && *followed.drawn == outlines) return;
  news_->isNew = true;  // whether that was done the next look sees
  auto fresh = makeMarkShape(workbook_.model, {followed.number, followed.mark}, outlines);
  changes_.replace(workbook_, sheet.page, mark.shape, fresh);
  followed.shape = std::move(fresh);
  followed.drawn = std::move(outlines);
}

}  // namespace quorin::host::calc
