#include "platform/pdf/internal/merge/Deflate.h"

#include <zlib.h>

#include <algorithm>

#include "platform/pdf/internal/merge/Value.h"

namespace pdf {
namespace {

/// Higher levels take twice the time and more for a few thousandths of the size.
constexpr int level = 6;

Bytef* input(std::string_view bytes) {
  // zlib's own interface takes what it does not write to as if it did.
  return reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
}

class Inflater {
 public:
  Inflater() {
    if (inflateInit(&stream_) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  std::string inflate(std::string_view bytes, size_t most) {
    std::string result;
    stream_.next_in = input(bytes);
    stream_.avail_in = static_cast<uInt>(bytes.size());
    int state = Z_OK;
    while (state == Z_OK) {
      if (result.size() >= most) throw UnsoundFile("packed objects are too large");
      const size_t had = result.size();
      result.resize(std::min(most, std::max(4 * bytes.size(), 2 * had)));
      stream_.next_out = reinterpret_cast<Bytef*>(result.data() + had);
      stream_.avail_out = static_cast<uInt>(result.size() - had);
      state = ::inflate(&stream_, Z_NO_FLUSH);
    }
    if (state != Z_STREAM_END) throw UnsoundFile("packed objects are damaged");
    result.resize(result.size() - stream_.avail_out);
    return result;
  }

 private:
  z_stream stream_{};
};

}  // namespace

std::string deflated(std::string_view bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string result(size, '\0');
  if (compress2(reinterpret_cast<Bytef*>(result.data()), &size, input(bytes),
                static_cast<uLong>(bytes.size()), level) != Z_OK)
    throw std::bad_alloc();
  result.resize(size);
  return result;
}

std::string inflated(std::string_view bytes, size_t most) {
  return Inflater().inflate(bytes, most);
}

}  // namespace pdf
