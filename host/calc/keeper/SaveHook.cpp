#include "host/calc/keeper/SaveHook.h"

#include <algorithm>

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using State = ShownRows::State;

// A copy, an export, a mail and the office's own recovery file all go by OnCopyTo.
bool begins(const rtl::OUString& event) {
  return event == "OnSave" || event == "OnSaveAs" || event == "OnCopyTo";
}

bool ends(const rtl::OUString& event) {
  return event == "OnSaveDone" || event == "OnSaveFailed" || event == "OnSaveAsDone" ||
         event == "OnSaveAsFailed" || event == "OnCopyToDone" || event == "OnCopyToFailed";
}

}  // namespace

void SaveHook::letGo() {
  const std::lock_guard lock(puttingBack_);
  letGo_ = true;
}

std::optional<int> SaveHook::turn() const {
  const std::lock_guard lock(mutex_);
  return savings_.empty() && taking_ == 0 ? std::optional(turn_) : std::nullopt;
}

// Our own changes raise events of other names on this thread, in the middle of those below.
void SaveHook::documentEventOccured(const css::document::DocumentEvent& event) {
  try {
    if (begins(event.EventName)) {
      takeOut(event.Source);
    } else if (ends(event.EventName)) {
      putBackInto(event.Source);
    } else if (event.EventName == "OnViewCreated" || event.EventName == "OnLoad") {
      opened_();
    }
  } catch (const css::uno::Exception&) {
    // The workbook or the office is gone.
  } catch (const std::exception&) {
    // No memory: what is out stays out.
  }
}

void SaveHook::takeOut(const Reference<css::uno::XInterface>& document) {
  const auto workbook = asWorkbook(document);
  if (!workbook) return;
  {
    const std::lock_guard lock(mutex_);
    ++taking_;
    ++turn_;
  }
  std::vector<TakenMark> marks;
  takeMarks(owner_, changes_, *workbook, marks);
  std::vector<HiddenRows> rows;
  ShownRows::Entries shown;
  try {
    shown = shown_.entries(*workbook);
    shown_.leaveToOthers(shown);
    std::erase_if(shown, [](const auto& each) { return each.isOver(); });
    shown_.set(shown, State::hidden);
    HiddenAgain again = hideShownRows(changes_, *workbook, shown, shown);
    shown_.set(again.opened, State::opened);
    rows = std::move(again.rows);
  } catch (const css::uno::Exception&) {
    // The workbook or the office is gone, or refuses: it is saved as it is.
  }
  std::vector<TakenNote> notes;
  try {
    notes = takeNotes(changes_, *workbook, shown_);
  } catch (const css::uno::Exception&) {
    // The same. A note is never seen.
  }
  const std::lock_guard lock(mutex_);
  --taking_;
  if (!marks.empty() || !rows.empty() || !notes.empty())
    savings_.push_back(
        {*workbook, std::move(marks), std::move(rows), std::move(shown), std::move(notes)});
}

// A row that the office refuses to show, or whose sheet is gone, stays hidden.
void SaveHook::showAgain(const Saving& saving) {
  for (const HiddenRows& rows : saving.rows) {
    try {
      RowStates(rows.sheet, rows.axis).setHidden(changes_, saving.workbook, rows.numbers, false);
    } catch (const css::uno::Exception&) {
    }
  }
  shown_.set(saving.shown, State::shown);
  for (const TakenNote& note : saving.notes) putBack(changes_, saving.workbook, note);
}

void SaveHook::putBackInto(const Reference<css::uno::XInterface>& document) {
  const Reference<css::frame::XModel> model(document, UNO_QUERY);
  const std::lock_guard puttingBack(puttingBack_);
  std::vector<Saving> over;
  {
    const std::lock_guard lock(mutex_);
    const auto its = [&](const Saving& saving) { return saving.workbook.model == model; };
    std::copy_if(savings_.begin(), savings_.end(), std::back_inserter(over), its);
  }
  if (over.empty()) return;
  std::erase_if(made_, [&](const Made& made) { return made.document == model; });
  for (const Saving& saving : over) {
    if (!letGo_) showAgain(saving);
    for (const TakenMark& mark : saving.marks) {
      if (!letGo_) made_.push_back({model, putBack(changes_, saving.workbook, mark)});
    }
  }
  {
    const std::lock_guard lock(mutex_);
    std::erase_if(savings_, [&](const Saving& saving) { return saving.workbook.model == model; });
    ++turn_;
  }
  over_();
}

}  // namespace quorin::host::calc
