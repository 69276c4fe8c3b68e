#include <fstream>
#include <gtest/gtest.h>

#include "host/calc/office/OfficeDiscovery.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

class Discovery : public testing::Test {
 protected:
  void add(const std::string& id, const std::string& arguments, const std::string& libraries) {
    const auto process = proc / id;
    std::filesystem::create_directory(process);
    std::ofstream(process / "comm") << "soffice.bin\n";
    std::ofstream(process / "cmdline") << "soffice.bin" << '\0' << arguments << '\0';
    std::ofstream(process / "maps") << libraries;
    std::filesystem::create_symlink("/opt/office/program/soffice.bin", process / "exe");
  }
  std::optional<pid_t> found(const std::string& x11 = "", const std::string& wayland = "") {
    const auto office = OfficeDiscovery(proc.path(), {x11, wayland}).runningCalc();
    return office ? std::optional(office->id) : std::nullopt;
  }
  static constexpr const char* writer = "7f00 r-xp /opt/office/program/libswlo.so\n";
  static constexpr const char* calc = "7f00 r-xp /opt/office/program/libsclo.so\n";
  TemporaryFolder proc;
};

TEST_F(Discovery, FindsNothingWhereNothingRuns) {
  EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Discovery, TakesTheStartCentreForCalc) {
  add("5", "--nologo", "");
  EXPECT_EQ(found(), 5);
}

TEST_F(Discovery, DoesNotTakeWriterForCalc) {
  add("5", "--writer", writer);
  EXPECT_EQ(found(), std::nullopt);
  add("6", "--writer", std::string(writer) + calc);
  EXPECT_EQ(found(), 6);
}

TEST_F(Discovery, LeavesOutOfficesWithoutWindowsAndOurOwn) {
  add("5", "--headless", calc);
  add("6", "-env:UserInstallation=file:///tmp/quorin-office-AbC123/profile", calc);
  EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Discovery, LeavesOutOfficesOnOtherDisplays) {
  const auto show = [&](const std::string& id, const std::string& environment) {
    add(id, "--calc", calc);
    std::ofstream(proc / id / "environ") << "LANG=C" << '\0' << environment << '\0';
  };
  show("5", "DISPLAY=:0.0");
  show("6", "DISPLAY=:17.0");
  show("7", "XDISPLAY=:9");
  EXPECT_EQ(found(":0"), 5);
  EXPECT_EQ(found(":17"), 6);
  EXPECT_EQ(found(":1"), 7);
  EXPECT_EQ(found("far.org:17.1"), 7);
  EXPECT_EQ(found(""), 5);
}

TEST_F(Discovery, LeavesOutOfficesOfOtherSessionsAlsoOnWayland) {
  const auto show = [&](const std::string& id, const char* x11, const char* wayland) {
    add(id, "--calc", calc);
    std::ofstream(proc / id / "environ") << x11 << '\0' << wayland << '\0';
  };
  show("5", "DISPLAY=:0", "WAYLAND_DISPLAY=wayland-0");
  show("6", "DISPLAY=", "WAYLAND_DISPLAY=wayland-1");
  show("7", "DISPLAY=:2", "WAYLAND_DISPLAY=");
  EXPECT_EQ(found(":0", "wayland-0"), 5);
  EXPECT_EQ(found(":9", "wayland-0"), 5) << "one of the two is enough";
  EXPECT_EQ(found("", "wayland-1"), 6);
  EXPECT_EQ(found(":3", "wayland-1"), 6);
  EXPECT_EQ(found(":2", ""), 7);
  EXPECT_EQ(found(":2", "wayland-7"), 7);
  EXPECT_EQ(found(":3", ""), std::nullopt);
}

TEST_F(Discovery, StaysWithTheOfficeItFoundWhileThatRuns) {
  OfficeDiscovery discovery(proc.path());
  add("7", "--calc", calc);
  EXPECT_EQ(discovery.runningCalc()->id, 7);
  add("5", "--calc", calc);
  EXPECT_EQ(discovery.runningCalc()->id, 7);
  std::filesystem::remove_all(proc / "7");
  EXPECT_EQ(discovery.runningCalc()->id, 5);
}

}  // namespace
}  // namespace quorin::host::calc
