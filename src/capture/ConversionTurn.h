#pragma once

#include <mutex>

#include "capture/CVURLEntry.h"

/// One conversion's turn with its entry, on the worker thread that converts: another conversion of
/// the entry waits until it is over, and the page stays this conversion's own when the entry's
/// views are replaced meanwhile. The main thread never takes a turn, since a conversion waits for
/// it.
class CVURLEntry::ConversionTurn {
 public:
  /// Waits for the turn.
  ConversionTurn(CVURLEntry& entry, std::shared_ptr<web::Page> page);
  ~ConversionTurn();
  ConversionTurn(const ConversionTurn&) = delete;
  ConversionTurn& operator=(const ConversionTurn&) = delete;

 private:
  CVURLEntry& entry_;
  const std::lock_guard<std::mutex> lock_;
};
