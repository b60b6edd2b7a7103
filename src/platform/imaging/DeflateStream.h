#pragma once

#include <zlib.h>

#include <QByteArray>
#include <functional>

#include "platform/base/Error.h"

namespace imaging {

/// Packs bytes into deflate blocks (RFC 1951) without a stream's header and sum. The packed bytes
/// go out in pieces of a bounded size.
class DeflateStream {
 public:
  using Output = std::function<MaybeError(const QByteArray& packed)>;
  enum class Content { Text, Differences };
  enum class Boundary { None, Independent };

  explicit DeflateStream(Output output);
  ~DeflateStream();
  DeflateStream(const DeflateStream&) = delete;
  DeflateStream& operator=(const DeflateStream&) = delete;

  /// Content only chooses how hard to look. After `Boundary::Independent` everything is out, the
  /// packed bytes end on a byte, and what follows refers to nothing before it.
  MaybeError pack(const QByteArray& bytes, Content content, Boundary boundary);

 private:
  MaybeError use(Content content);
  MaybeError writeOut();
  void offerRoom();
  void takePacked();

  Output output_;
  z_stream stream_{};
  Content content_ = Content::Text;
  QByteArray packed_;
};

}  // namespace imaging
