#include "ui/window/BatchState.h"

#include "queue/CVEntry.h"

namespace ui {

BatchState BatchState::of(const std::vector<std::shared_ptr<CVEntry>>& entries) {
  int loaded = 0;
  int done = 0;
  for (const auto& entry : entries) {
    const CVEntryState state = entry->state();
    if (state == CVEntryStateDownloaded || state == CVEntryStateDone) ++loaded;
    if (state == CVEntryStateDone) ++done;
  }
  BatchState commands;
  commands.enableProcessAll = loaded > 0;
  commands.enableBatch = loaded >= 2;
  commands.enableClearAll = !entries.empty();
  commands.enableClearCompleted = done > 0;
  return commands;
}

}  // namespace ui
