// Environment: the process's environment variables as a plain value, so that what depends on them
// can be tried with others.
#pragma once

#include <map>
#include <string>

namespace quorin {

using Environment = std::map<std::string, std::string>;

// The variables of this process. HOME comes from the user database where it is unset or empty.
Environment processEnvironment();

}  // namespace quorin
