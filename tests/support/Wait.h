#pragma once

#include <chrono>
#include <functional>

namespace support {

/// Runs the main queue until `condition` holds or the time is over; tells whether it held.
/// Main thread only.
bool waitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds limit = std::chrono::seconds(30));

}  // namespace support
