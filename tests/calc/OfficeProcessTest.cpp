#include <fstream>
#include <gtest/gtest.h>

#include "host/calc/OfficeProcess.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

// A folder that looks like /proc.
class FakeProcesses : public testing::Test {
 protected:
  void add(const std::string& id, const std::string& name, const std::string& commandLine) {
    const auto process = proc / id;
    std::filesystem::create_directory(process);
    std::ofstream(process / "comm") << name << "\n";
    std::ofstream(process / "cmdline") << commandLine;
    std::filesystem::create_symlink("/opt/office/program/" + name, process / "exe");
  }
  TemporaryFolder proc;
};

TEST_F(FakeProcesses, FindsOfficesByProcessIdWithTheirArguments) {
  using namespace std::string_literals;
  add("30", "soffice.bin", "/opt/office/program/soffice.bin\0--calc\0/home/a/My Plan.xlsx\0"s);
  add("7", "soffice.bin",
      "/opt/office/program/soffice.bin\0-env:UserInstallation=file:///p\0-headless\0"s);
  add("8", "oosplash", "/opt/office/program/oosplash\0"s);
  add("self", "soffice.bin", "x\0"s);
  const auto found = officeProcesses(proc.path());
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].id, 7);
  EXPECT_EQ(found[0].userInstallation(), "file:///p");
  EXPECT_TRUE(found[0].hasArgument("headless"));
  EXPECT_EQ(found[1].id, 30);
  EXPECT_EQ(found[1].program, "/opt/office/program/soffice.bin");
  EXPECT_EQ(found[1].arguments, (std::vector<std::string>{"--calc", "/home/a/My Plan.xlsx"}));
  EXPECT_EQ(found[1].userInstallation(), "");
  EXPECT_FALSE(found[1].hasArgument("headless"));
}

TEST_F(FakeProcesses, LeavesOutProcessesThatAreEnding) {
  add("9", "soffice.bin", "");
  EXPECT_TRUE(officeProcesses(proc.path()).empty());
}

}  // namespace
}  // namespace quorin::host::calc
