#pragma once

#include <chrono>

namespace dropbox {

/// When a request is sent again: after a lost connection, a server error, or a rate limit.
struct RetryPolicy {
  /// Sends of one request, the first included.
  int attempts = 5;
  /// The pause before the second attempt; each later one is twice as long. A pause that the service
  /// asks for in Retry-After takes its place.
  std::chrono::milliseconds firstPause{1000};
  /// No pause is longer; when the service asks for a longer one, the request fails instead.
  std::chrono::milliseconds longestPause{120'000};
  /// A connection on which nothing moves for so long is given up.
  std::chrono::milliseconds silence{60'000};
};

}  // namespace dropbox
