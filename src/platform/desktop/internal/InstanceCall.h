#pragma once

#include "platform/desktop/ApplicationService.h"
#include "platform/desktop/internal/RequestFrame.h"

namespace desktop {

/// Sends a request to the running instance by its local socket. Blocks until it has taken it.
Result<HandOver> callBySocket(const InstanceRequest& request);

/// The same over the session bus, for an instance whose socket cannot be reached from here. A
/// request that a bus message cannot hold is an error.
Result<HandOver> callByBus(const InstanceRequest& request);

/// Has the session bus start the program; false when the bus does not know how. Blocks until it
/// owns its name.
Result<bool> startByBus();

}  // namespace desktop
