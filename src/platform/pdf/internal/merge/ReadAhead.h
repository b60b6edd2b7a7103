#pragma once

#include <QStringList>
#include <deque>
#include <future>
#include <memory>

#include "platform/base/Error.h"
#include "platform/pdf/internal/merge/SourceFile.h"

namespace pdf {

/// Reads documents in their order, the next ones while one is in use. Threads of its own do that:
/// the caller may hold the last free one of the pool.
class ReadAhead {
 public:
  explicit ReadAhead(const QStringList& paths);

  /// The next document, ready to be joined.
  Result<std::unique_ptr<SourceFile>> next();

 private:
  using Opened = Result<std::unique_ptr<SourceFile>>;

  void begin();

  QStringList paths_;
  qsizetype index_ = 0;
  std::deque<std::future<Opened>> opening_;
};

}  // namespace pdf
