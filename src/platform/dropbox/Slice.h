#pragma once

#include <QIODevice>
#include <memory>

namespace dropbox {

/// A part of a random-access device as a device of its own: what is sent is read while it is sent.
class Slice : public QIODevice {
 public:
  /// `base` is open for reading. Bytes from `offset`, `length` of them.
  Slice(std::unique_ptr<QIODevice> base, qint64 offset, qint64 length);

  bool isSequential() const override { return false; }
  qint64 size() const override { return length_; }
  bool seek(qint64 position) override;

 protected:
  qint64 readData(char* data, qint64 maximum) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  std::unique_ptr<QIODevice> base_;
  qint64 offset_;
  qint64 length_;
};

}  // namespace dropbox
