#pragma once

#include <memory>
#include <vector>

class CVEntry;

namespace ui {

/// Which commands the queue has something for.
struct BatchState {
  bool enableBatch = false;
  bool enableProcessAll = false;
  bool enableClearAll = false;
  bool enableClearCompleted = false;

  static BatchState of(const std::vector<std::shared_ptr<CVEntry>>& entries);
  bool any() const {
    return enableBatch || enableProcessAll || enableClearAll || enableClearCompleted;
  }
};

}  // namespace ui
