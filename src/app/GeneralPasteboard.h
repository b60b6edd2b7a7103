#pragma once

#include "intake/CVPasteboard.h"

/// The desktop's clipboard. It holds one item, in several forms.
class GeneralPasteboard : public CVPasteboard {
 public:
  QStringList plainTexts() const override;
  QList<QUrl> fileURLs() const override;
};
