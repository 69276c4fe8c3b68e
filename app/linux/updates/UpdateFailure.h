// UpdateFailure: what can go wrong on the way to a newer version, and what the user is told of it.
#pragma once

#include <string>

#include "app/shell/ports/Alerts.h"

namespace quorin {

enum class UpdateFault {
  unreachable,       // no network, or nobody answers there
  stalled,           // the answer does not come or does not go on
  untrusted,         // the server cannot show that it is the one that was asked
  refused,           // the server answers, with something else than the file
  redirected,        // the file is said to be on another server
  insecure,          // an address without encryption
  unreadable,        // the feed is no feed
  incomplete,        // the feed leaves out what an update needs
  unsignedFeed,      // the feed does not end with a signature for all of it
  changedFeed,       // the feed is not what its maker signed
  undatedFeed,       // the feed does not say when it was signed
  olderFeed,         // a newer feed was seen before
  futureFeed,        // the feed is dated ahead of this computer's clock
  nothingForSystem,  // the feed has no package for this kind of machine
  truncated,         // less came than the feed or the server said
  tooLong,           // more came than the feed said, or than a feed can be
  wrongSignature,    // the package is not what the maker of the feed signed
  otherPackage,      // signed, but not the version that the feed says it is
  notSaved,          // the package cannot be written to the disk
  noInstaller,       // no program here installs packages
};

struct UpdateFailure {
  UpdateFault fault{};
  std::string detail;  // more about it, for the user to read; empty: nothing to add
  bool operator==(const UpdateFailure&) const = default;
};

// How far an update had come: its feed was read, or its package fetched.
enum class UpdateStep { checking, installing };

// Says what happened and that nothing was changed.
Alert refusal(UpdateStep step, const UpdateFailure& failure);

}  // namespace quorin
