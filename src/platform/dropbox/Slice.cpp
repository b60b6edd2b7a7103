#include "platform/dropbox/Slice.h"

namespace dropbox {

Slice::Slice(std::unique_ptr<QIODevice> base, qint64 offset, qint64 length)
    : base_(std::move(base)), offset_(offset), length_(length) {
  base_->seek(offset_);
  // Unbuffered, so that the position here and that of the base stay the same.
  open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool Slice::seek(qint64 position) {
  return position >= 0 && position <= length_ && QIODevice::seek(position) &&
         base_->seek(offset_ + position);
}

qint64 Slice::readData(char* data, qint64 maximum) {
  const qint64 rest = length_ - pos();
  if (rest <= 0) return maximum == 0 ? 0 : -1;
  return base_->read(data, qMin(maximum, rest));
}

}  // namespace dropbox
