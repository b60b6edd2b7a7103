#pragma once

#include <QByteArray>
#include <memory>

struct libdeflate_compressor;

namespace imaging {

/// Packs bytes into deflate blocks (RFC 1951) that stand on their own: they refer to nothing before
/// them, end on a byte and leave the stream open, so that others can follow. One thread at a time.
class DeflateBlocks {
 public:
  DeflateBlocks();

  /// All of `bytes`, packed. Empty when there is no memory for it.
  QByteArray pack(const QByteArray& bytes);

 private:
  struct Free {
    void operator()(libdeflate_compressor* compressor) const;
  };

  std::unique_ptr<libdeflate_compressor, Free> compressor_;
};

}  // namespace imaging
