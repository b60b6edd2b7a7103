#pragma once

#include <QByteArray>
#include <vector>

namespace imaging {

/// Packs bytes into deflate blocks (RFC 1951) that stand on their own: they refer to nothing before
/// them, end on a byte and leave the stream open, so that others can follow. One thread at a time.
class DeflateBlocks {
 public:
  DeflateBlocks();

  /// All of `bytes`, packed. Empty when there is no memory for it.
  QByteArray pack(const QByteArray& bytes);

 private:
  /// What the packer remembers of the bytes it has seen.
  std::vector<unsigned char> memory_;
};

}  // namespace imaging
