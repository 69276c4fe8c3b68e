#include "tools/quorinctl/Place.h"

#include <system_error>
#include <utility>

#include "host/calc/office/PrivateOffice.h"
#include "host/calc/office/RunningOffice.h"
#include "kit/platform/XDGFolders.h"
#include "tools/quorinctl/Targets.h"

namespace quorin::ctl {

namespace {

std::optional<FolderLock> locked(const std::filesystem::path& folder) {
  std::optional<FolderLock> lock = FolderLock::acquire(folder);
  if (!lock) throw Unserved(folder.string() + " is in use by another Quorin");
  return lock;
}

}  // namespace

FolderRemoval::~FolderRemoval() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void requireWorkbook(const std::filesystem::path& file) {
  if (!std::filesystem::is_regular_file(file)) throw Unserved("no such workbook: " + file.string());
  // LibreOffice takes it for a new one.
  std::error_code unknown;
  if (std::filesystem::file_size(file, unknown) == 0)
    throw Unserved("\"" + file.string() + "\" is empty");
}

Place privatePlace(const std::optional<std::filesystem::path>& data) {
  Place place;
  std::filesystem::path folder;
  if (data) {
    folder = std::filesystem::absolute(*data);
    place.lock = locked(folder / "Quorin");
  }
  auto office = std::make_unique<host::calc::PrivateOffice>();
  if (!data) {
    folder = office->folder() / "data";
    // An office that died takes the folder with it, and the log makes it anew.
    place.folder = std::make_unique<FolderRemoval>(office->folder());
  }
  place.parts.target = std::make_unique<PrivateTarget>(office->folder());
  place.parts.office = std::move(office);
  place.parts.log = folder / "Logs" / "Quorin" / "quorin.log";
  place.parts.records = folder / "Quorin";
  return place;
}

Place attachedPlace() {
  const XDGFolders folders(processEnvironment());
  Place place;
  place.parts.records = folders.applicationSupport() / "Quorin";
  place.parts.log = folders.library() / "Logs" / "Quorin" / "quorin.log";
  place.lock = locked(place.parts.records);
  const auto discovery = std::make_shared<host::calc::OfficeDiscovery>();
  place.parts.target = std::make_unique<RunningTarget>(discovery);
  place.parts.office = std::make_unique<host::calc::RunningOffice>(discovery);
  return place;
}

Opening openAndWait(Session& session, Waiter& waiter,
                    const std::optional<std::filesystem::path>& workbook) {
  Opening opening;
  std::optional<std::filesystem::path> file;
  if (workbook) file = std::filesystem::absolute(*workbook);
  session.open(file, [&](std::optional<std::string> told) {
    opening.failure = std::move(told);
    waiter.done();
  });
  if (waiter.waitForDone() != Waiter::Event::signal) return opening;
  // The work refers to this frame, so it is waited for; it fails as soon as it can.
  session.quit();
  waiter.waitForDoneAlone();
  return {true, std::nullopt};
}

}  // namespace quorin::ctl
