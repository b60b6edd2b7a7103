#include "platform/imaging/PartFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

#include "platform/base/Identifier.h"
#include "platform/imaging/ImagingError.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

Error cannotWrite(const QString& path, int cause) {
  return imagingError(ImagingError::CannotWrite, u"The file \"%1\" could not be written: %2."_s.arg(
                                                     QFileInfo(path).fileName(),
                                                     QString::fromLocal8Bit(std::strerror(cause))));
}

/// A short name of its own: the file's name may already be as long as the file system allows.
QString partPathFor(const QString& path) {
  return QFileInfo(path).path() + u"/.corvalis-"_s + newUniversallyUniqueIdentifier();
}

}  // namespace

Result<std::unique_ptr<PartFile>> PartFile::create(const QString& path) {
  // A folder in the way would be noticed by the rename only, after all the work.
  if (QFileInfo(path).isDir()) return tl::unexpected(cannotWrite(path, EISDIR));
  const QString part = partPathFor(path);
  const int descriptor =
      ::open(QFile::encodeName(part).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) return tl::unexpected(cannotWrite(path, errno));
  return std::unique_ptr<PartFile>(new PartFile(path, part, descriptor));
}

PartFile::PartFile(QString path, QString partPath, int descriptor)
    : path_(std::move(path)), partPath_(std::move(partPath)), descriptor_(descriptor) {}

PartFile::~PartFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!inPlace_) ::unlink(QFile::encodeName(partPath_).constData());
}

MaybeError PartFile::write(QByteArrayView bytes) {
  while (!bytes.isEmpty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), size_t(bytes.size()));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return writeError(written < 0 ? errno : ENOSPC);
    bytes = bytes.sliced(written);
  }
  return {};
}

MaybeError PartFile::writeAt(qint64 offset, QByteArrayView bytes) {
  while (!bytes.isEmpty()) {
    const ssize_t written = ::pwrite(descriptor_, bytes.data(), size_t(bytes.size()), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return writeError(written < 0 ? errno : ENOSPC);
    offset += written;
    bytes = bytes.sliced(written);
  }
  return {};
}

MaybeError PartFile::commit() {
  // Network file systems report a full disk no earlier than here.
  const int closed = ::close(std::exchange(descriptor_, -1));
  if (closed < 0) return writeError(errno);
  const QByteArray from = QFile::encodeName(partPath_);
  if (::rename(from.constData(), QFile::encodeName(path_).constData()) < 0)
    return writeError(errno);
  inPlace_ = true;
  return {};
}

Error PartFile::writeError(int cause) const {
  return cannotWrite(path_, cause);
}

}  // namespace imaging
