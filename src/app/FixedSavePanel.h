#pragma once

#include "capture/CVCaptureServices.h"

/// Answers the question for a place with the one that was given on the command line.
class FixedSavePanel : public CVSavePanel {
 public:
  explicit FixedSavePanel(QUrl file);

  void beginSheet(const std::shared_ptr<CVPreferences>& preferences, const QString& name,
                  const std::optional<QUrl>& folder,
                  std::function<void(std::optional<QUrl>)> completion) override;
  ChosenNames chosenNames() const override { return ChosenNames::Kept; }

 private:
  const QUrl file_;
};
