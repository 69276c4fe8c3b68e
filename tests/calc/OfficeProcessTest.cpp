#include <fstream>
#include <gtest/gtest.h>

#include "host/calc/office/OfficeProcess.h"
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

TEST_F(FakeProcesses, KnowsTheSocketThatAnOfficeTakesRequestsAt) {
  add("5", "soffice.bin", "soffice.bin");
  const OfficeProcess office{5, "soffice.bin", {}};
  EXPECT_EQ(office.requestSocket(proc.path()), std::nullopt) << "it may not be looked into";
  std::filesystem::create_directories(proc.path() / "5" / "net");
  std::filesystem::create_directories(proc.path() / "5" / "fd");
  std::ofstream(proc.path() / "5" / "net" / "unix")
      << "Num       RefCount Protocol Flags    Type St Inode Path\n"
         "0000000000000000: 00000002 00000000 00010000 0001 01 41 /tmp/OSL_PIPE_0_other\n"
         "0000000000000000: 00000003 00000000 00000000 0001 03 42\n"
         "0000000000000000: 00000002 00000000 00010000 0001 01 43 "
         "/tmp/OSL_PIPE_0_SingleOfficeIPC_a\n"
         "0000000000000000: 00000002 00000000 00010000 0001 01 44 "
         "/tmp/OSL_PIPE_0_SingleOfficeIPC_b\n";
  const auto hold = [&](const char* number, const char* what) {
    std::filesystem::create_symlink(what, proc.path() / "5" / "fd" / number);
  };
  hold("0", "/dev/null");
  hold("7", "socket:[41]");
  hold("8", "socket:[42]");
  EXPECT_EQ(office.requestSocket(proc.path()), std::nullopt) << "it is just starting";
  hold("9", "socket:[44]");
  EXPECT_EQ(office.requestSocket(proc.path()), "/tmp/OSL_PIPE_0_SingleOfficeIPC_b");
  EXPECT_EQ(office.sockets("_other", proc.path()),
            std::vector<std::filesystem::path>{"/tmp/OSL_PIPE_0_other"});
  EXPECT_TRUE(office.sockets("_SingleOfficeIPC_a", proc.path()).empty()) << "another's";
}

}  // namespace
}  // namespace quorin::host::calc
