// A display and the page engine for a test program whose views are to have real pages.
#include <gtest/gtest.h>
#include <memory>

#include "tests/fakes/ui/VirtualDisplay.h"
#include "tests/macos/runtime/webkit/PageEngine.h"

namespace quorin {
namespace {

class PagesOfTheTest : public testing::Environment {
  void SetUp() override {
    ui::DisplayOptions options;
    options.windowManager = false;
    display_ = std::make_unique<ui::VirtualDisplay>(options);
    PageEngine::use(QUORIN_PAGE_ENGINE);
  }
  void TearDown() override { display_.reset(); }

  std::unique_ptr<ui::VirtualDisplay> display_;
};

[[maybe_unused]] const testing::Environment* const pages =
    testing::AddGlobalTestEnvironment(new PagesOfTheTest);

}  // namespace
}  // namespace quorin
