// What the contract suite of the application port needs. The end of an application may be the end
// of its process, so each case runs in a process of its own, where these make what is tried.
#pragma once

#include "app/shell/ports/Application.h"
#include "app/shell/ports/MainLoop.h"

namespace quorin::contract {

// The application of this process, and its event loop.
Application& application();
MainLoop& applicationLoop();

}  // namespace quorin::contract
