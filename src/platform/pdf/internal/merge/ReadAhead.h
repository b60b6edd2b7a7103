#pragma once

#include <QStringList>
#include <future>
#include <memory>
#include <qpdf/QPDF.hh>

#include "platform/base/Error.h"

namespace pdf {

/// Opens documents one after the other, each while the one before it is in use. A thread of its own
/// does that: the caller may hold the last free one of the pool.
class ReadAhead {
 public:
  explicit ReadAhead(const QStringList& paths);

  /// The next document, read completely. `finished` is what is no longer used: taking a large
  /// document apart takes as long as copying it, so that is done beside too.
  Result<std::unique_ptr<QPDF>> next(std::unique_ptr<QPDF> finished);

 private:
  using Opened = Result<std::unique_ptr<QPDF>>;

  void begin(std::unique_ptr<QPDF> finished);

  QStringList paths_;
  qsizetype index_ = 0;
  qint64 memory_ = 0;  ///< bytes of the files that are held until the joined document is written
  std::future<Opened> opening_;
};

}  // namespace pdf
