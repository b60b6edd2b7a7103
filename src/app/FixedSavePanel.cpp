#include "app/FixedSavePanel.h"

#include "platform/dispatch/Dispatch.h"

FixedSavePanel::FixedSavePanel(QUrl file) : file_(std::move(file)) {}

void FixedSavePanel::beginSheet(const std::shared_ptr<CVPreferences>&, const QString&,
                                const std::optional<QUrl>&,
                                std::function<void(std::optional<QUrl>)> completion) {
  dispatch::mainAsync([file = file_, completion = std::move(completion)] { completion(file); });
}
