#include "platform/imaging/DeflateStream.h"

#include <new>

namespace imaging {

namespace {

constexpr qsizetype pieceSize = 256 * 1024;
constexpr int level = 6;

/// Differences of neighbouring pixels hardly ever repeat as longer strings: looking for runs only
/// is ten times as fast there, and the files come out smaller.
int strategyFor(DeflateStream::Content content) {
  return content == DeflateStream::Content::Differences ? Z_RLE : Z_DEFAULT_STRATEGY;
}

}  // namespace

DeflateStream::DeflateStream(Output output) : output_(std::move(output)) {
  // Negative window bits: bare blocks.
  if (deflateInit2(&stream_, level, Z_DEFLATED, -15, 9, strategyFor(content_)) != Z_OK) {
    throw std::bad_alloc();
  }
  packed_.reserve(pieceSize);
}

DeflateStream::~DeflateStream() {
  deflateEnd(&stream_);
}

MaybeError DeflateStream::pack(const QByteArray& bytes, Content content, Boundary boundary) {
  if (auto error = use(content)) return error;
  // The library's interface takes no constant input, though it only reads it.
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.constData()));
  stream_.avail_in = uInt(bytes.size());
  const int flush = boundary == Boundary::Independent ? Z_FULL_FLUSH : Z_NO_FLUSH;
  bool roomWasLeft = false;
  while (!roomWasLeft) {
    offerRoom();
    deflate(&stream_, flush);
    roomWasLeft = stream_.avail_out > 0;
    takePacked();
    if (roomWasLeft) break;
    if (auto error = writeOut()) return error;
  }
  return boundary == Boundary::Independent ? writeOut() : MaybeError();
}

MaybeError DeflateStream::use(Content content) {
  if (content == content_) return {};
  content_ = content;
  stream_.avail_in = 0;
  while (true) {
    offerRoom();
    const int result = deflateParams(&stream_, level, strategyFor(content));
    takePacked();
    if (result != Z_BUF_ERROR) return {};
    if (auto error = writeOut()) return error;
  }
}

void DeflateStream::offerRoom() {
  const qsizetype used = packed_.size();
  packed_.resize(pieceSize);
  stream_.next_out = reinterpret_cast<Bytef*>(packed_.data() + used);
  stream_.avail_out = uInt(pieceSize - used);
}

void DeflateStream::takePacked() {
  packed_.resize(pieceSize - qsizetype(stream_.avail_out));
}

MaybeError DeflateStream::writeOut() {
  if (packed_.isEmpty()) return {};
  auto error = output_(packed_);
  packed_.resize(0);
  return error;
}

}  // namespace imaging
