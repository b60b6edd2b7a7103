#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "platform/pdf/DocumentMerge.h"

namespace tools {

struct Merged {
  QString path;
  std::vector<pdf::SkippedSource> skipped;
};

/// Joins files and checks that the result is sound.
Merged merge(const QStringList& paths, const QStringList& titles = {});

}  // namespace tools
