// The contract suites over the fakes with which the portable code is tested: what its tests take
// for given is what the adapters do.
#include <algorithm>

#include "tests/app/hands/Hands.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/fakes/app/FakeAppPlatform.h"

namespace quorin::contract {
namespace {

FakeAppPlatform& fake() {
  static FakeAppPlatform& one = *[] {
    auto* const made = new FakeAppPlatform;
    made->hasHotKeys = made->hasStatusBar = true;
    made->login.installed = false;
    made->updates.reason = "no feed in this build";
    made->bundle().info["CFBundleIdentifier"] = "com.quorin.fake";
    return made;
  }();
  return one;
}

std::string soughtButton;  // what the user presses as soon as he sees it; empty: nothing

bool pressedInDialog() {
  FakeSaveDialog& dialog = *fake().saveDialog();
  if (!dialog.isOpen() || (soughtButton != "Save" && soughtButton != "Cancel")) return false;
  dialog.choose(soughtButton == "Save"
                    ? std::optional(std::filesystem::path("/somewhere") / dialog.asked)
                    : std::nullopt);
  return true;
}

bool pressedInAlert() {
  const Alert* const open = fake().alerts().open();
  if (!open) return false;
  const std::vector<std::string> buttons =
      open->buttons.empty() ? std::vector<std::string>{"OK"} : open->buttons;
  const auto found = std::find(buttons.begin(), buttons.end(), soughtButton);
  if (found == buttons.end()) return false;
  fake().alerts().press(static_cast<std::size_t>(found - buttons.begin()));
  return true;
}

}  // namespace

AppPlatform& platform() {
  return fake();
}

Folders& folders() {
  static const TemporaryFolder root;
  static FakeFolders all(root.path());
  std::filesystem::create_directories(all.temporary());
  return all;
}

void turn() {
  fake().mainLoop().advance(std::chrono::milliseconds(5));
  fake().mainLoop().runPosted();
  fake().workspace().bringForwardWhatWasAskedFor();
  if (!soughtButton.empty() && (pressedInDialog() || pressedInAlert())) soughtButton.clear();
}

void stall(std::chrono::milliseconds time) {
  fake().clock().elapsed += time;
}

// Whoever holds the combination hears of it.
void pressHotKey(HotKeyID, std::uint32_t keyCode, std::uint32_t modifiers) {
  FakeHotKeyService& service = fake().hotKeyService;
  for (const auto& [id, combination] : service.held) {
    if (combination != std::pair(keyCode, modifiers)) continue;
    service.press({service.signatures.front(), id});
    return;
  }
}

void pressAlertButtonSoon(const std::string& title) {
  soughtButton = title;
}

void pressCloseButton(PanelWindow& window) {
  static_cast<FakePanelWindow&>(window).pressClose();
}

void forgetDefault(const std::string& key) {
  fake().defaults().texts.erase(key);
}

Traits traits() {
  return {};
}

bool chooseFromMenu(const std::string& title) {
  if (!fake().hasStatusItem()) return false;
  FakeStatusItem& item = fake().statusItem();
  item.open();
  if (!item.offers(title)) return false;
  item.choose(title);
  return true;
}

struct OtherProgram::Program {
  RunningApplication application;
};

OtherProgram::OtherProgram(const std::string& identifier)
    : program_([&] {
        static int processes = 70'000;
        return std::make_unique<Program>(Program{{identifier, ++processes, false}});
      }()) {
  fake().workspace().running.push_back(program_->application);
  comeForward();
}

OtherProgram::~OtherProgram() {
  FakeWorkspace& workspace = fake().workspace();
  std::erase(workspace.running, program_->application);
  if (workspace.frontmost == program_->application) workspace.frontmost.reset();
}

void OtherProgram::comeForward() const {
  fake().workspace().bringToFront(program_->application);
}

void refuseLoginItem(bool refused) {
  fake().login.error = refused ? std::optional<std::string>("refused") : std::nullopt;
}

void pressAnyKey() {
  fake().input.press();
}

}  // namespace quorin::contract
