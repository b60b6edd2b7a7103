#pragma once

#include <QByteArrayView>
#include <QString>
#include <memory>

#include "platform/base/Error.h"

namespace imaging {

/// A file on its way: written under another name beside its place, and renamed to its place when it
/// is whole. Destroyed before that, it leaves nothing. One thread at a time.
class PartFile {
 public:
  static Result<std::unique_ptr<PartFile>> create(const QString& path);
  ~PartFile();
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;

  /// Appends at the descriptor's position.
  MaybeError write(QByteArrayView bytes);
  /// Writes at an offset from the start and leaves the position alone.
  MaybeError writeAt(qint64 offset, QByteArrayView bytes);
  /// Puts the file in its place; what stood there is replaced.
  MaybeError commit();

  const QString& path() const { return path_; }
  /// The name it has until it is whole.
  const QString& partPath() const { return partPath_; }
  /// Open for reading and writing; owned by this object.
  int descriptor() const { return descriptor_; }

 private:
  PartFile(QString path, QString partPath, int descriptor);
  Error writeError(int cause) const;

  QString path_;
  QString partPath_;
  int descriptor_;
  bool inPlace_ = false;
};

}  // namespace imaging
