#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Status = HotKeyService::Status;

constexpr std::uint32_t keyJ = 38, keyK = 40, optionShift = 2048 + 512, controlOption = 6144;

// The service can be installed once: one handler for all tests, which forwards to the running one.
class HotKeyContract : public PortContract {
 protected:
  HotKeyContract() {
    pressed.clear();
    static const Status installed = keys().install([](HotKeyID id) {
      pressed.push_back(id);
      return HotKeyService::noError;
    });
    EXPECT_EQ(installed, HotKeyService::noError);
  }

  static HotKeyService& keys() { return *platform().hotKeys(); }
  static inline std::vector<HotKeyID> pressed;
};

// One of each thing that the service does, in the order of a life.
TEST_F(HotKeyContract, TellsWhatIsPressedAndRefusesWhatIsTaken) {
  const HotKeyID first{0x51584854, 41}, second{0x51584854, 42};
  EXPECT_EQ(keys().add(first, keyJ, optionShift), HotKeyService::noError);
  EXPECT_EQ(keys().add(second, keyK, controlOption), HotKeyService::noError);
  EXPECT_NE(keys().add({0x51584854, 43}, keyJ, optionShift), HotKeyService::noError);
  EXPECT_THAT(pressed, IsEmpty());
  pressHotKey(second, keyK, controlOption);
  ASSERT_TRUE(waitUntil([] { return pressed.size() == 1; }));
  pressHotKey(first, keyJ, optionShift);
  ASSERT_TRUE(waitUntil([] { return pressed.size() == 2; }));
  runFor(std::chrono::milliseconds(100));
  EXPECT_THAT(pressed, ElementsAre(second, first));
  keys().remove(first);
  keys().remove({0x51584854, 99});  // there is none
  const HotKeyID third{0x51584854, 43};
  EXPECT_EQ(keys().add(third, keyJ, optionShift), HotKeyService::noError) << "it is free again";
  pressHotKey(third, keyJ, optionShift);
  ASSERT_TRUE(waitUntil([] { return pressed.size() == 3; }));
  EXPECT_EQ(pressed.back(), third);
  keys().remove(second);
  keys().remove(third);
}

}  // namespace
}  // namespace quorin::contract
