#include "app/linux/updates/UpdateFailure.h"

namespace quorin {

namespace {

std::string sentence(UpdateStep step, UpdateFault fault) {
  const bool checking = step == UpdateStep::checking;
  switch (fault) {
    case UpdateFault::unreachable:
      return "The server cannot be reached. Is this computer connected to the network?";
    case UpdateFault::stalled:
      return "The server does not go on answering.";
    case UpdateFault::untrusted:
      return "The server could not prove who it is.";
    case UpdateFault::refused:
      return checking ? "The server does not have the list of versions."
                      : "The server does not have the package.";
    case UpdateFault::redirected:
      return "The server sends Quorin to another server, which it does not follow.";
    case UpdateFault::insecure:
      return "The address given for the package is not a secure one (https).";
    case UpdateFault::unreadable:
      return "The list of versions cannot be read.";
    case UpdateFault::incomplete:
      return "The list of versions is incomplete.";
    case UpdateFault::unsignedFeed:
      return "The list of versions does not end with a signature for all of it.";
    case UpdateFault::changedFeed:
      return "The list of versions is not what the makers of Quorin signed.";
    case UpdateFault::undatedFeed:
      return "The list of versions does not say when it was signed.";
    case UpdateFault::olderFeed:
      return "The server gives an older list of versions than one that was seen before.";
    case UpdateFault::futureFeed:
      return "The list of versions is dated in the future. Is this computer's clock right?";
    case UpdateFault::nothingForSystem:
      return "The list of versions has no package for this kind of computer.";
    case UpdateFault::truncated:
      return checking ? "The list of versions did not arrive in full."
                      : "The package did not arrive in full.";
    case UpdateFault::tooLong:
      return checking ? "The list of versions is longer than it can be."
                      : "The package is longer than the list of versions says.";
    case UpdateFault::wrongSignature:
      return "The package is not signed by the makers of Quorin.";
    case UpdateFault::otherPackage:
      return "The package is not the version that was offered.";
    case UpdateFault::notSaved:
      return "The package cannot be saved.";
    case UpdateFault::noInstaller:
      return "No program on this computer installs packages.";
  }
  return {};
}

}  // namespace

Alert refusal(UpdateStep step, const UpdateFailure& failure) {
  std::string text = sentence(step, failure.fault);
  if (!failure.detail.empty()) text += " (" + failure.detail + ")";
  return {step == UpdateStep::checking ? "Could not check for updates" : "Could not update Quorin",
          text + "\n\nNothing was changed.",
          {}};
}

}  // namespace quorin
