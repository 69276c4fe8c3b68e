#include <gmock/gmock.h>
#include <set>

#include "app/linux/updates/UpdateFailure.h"

namespace quorin {
namespace {

using testing::EndsWith;
using testing::StartsWith;

TEST(UpdateFailure, SaysWhatWasBeingDone) {
  EXPECT_EQ(refusal(UpdateStep::checking, {UpdateFault::unreadable, ""}),
            (Alert{"Could not check for updates",
                   "The list of versions cannot be read.\n\nNothing was changed.",
                   {}}));
  EXPECT_EQ(refusal(UpdateStep::installing, {UpdateFault::wrongSignature, ""}),
            (Alert{"Could not update Quorin",
                   "The package is not signed by the makers of Quorin.\n\nNothing was changed.",
                   {}}));
}

TEST(UpdateFailure, TellsWhatMoreIsKnown) {
  EXPECT_THAT(refusal(UpdateStep::checking, {UpdateFault::refused, "status 404"}).informativeText,
              StartsWith("The server does not have the list of versions. (status 404)\n"));
}

TEST(UpdateFailure, HasWordsOfItsOwnForEachFault) {
  for (const UpdateStep step : {UpdateStep::checking, UpdateStep::installing}) {
    std::set<std::string> told;
    const int last = static_cast<int>(UpdateFault::noInstaller);
    for (int fault = 0; fault <= last; ++fault) {
      const Alert alert = refusal(step, {static_cast<UpdateFault>(fault), ""});
      EXPECT_THAT(alert.informativeText, EndsWith("\n\nNothing was changed.")) << fault;
      told.insert(alert.informativeText);
    }
    EXPECT_EQ(told.size(), static_cast<std::size_t>(last) + 1);
  }
}

}  // namespace
}  // namespace quorin
