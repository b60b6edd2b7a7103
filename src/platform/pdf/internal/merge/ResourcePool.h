#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "platform/pdf/internal/merge/CompactFile.h"
#include "platform/pdf/internal/merge/SourceFile.h"

namespace pdf {

/// Writes fonts, pictures and other page resources, equal ones once.
class ResourcePool {
 public:
  explicit ResourcePool(CompactFile& target) : target_(target) {}

  /// The number of an object of this text.
  int object(const std::string& text);

  /// The number of a stream of these bytes. `hash` is equal for equal bytes.
  int stream(const std::string& dictionary, std::string_view data, size_t hash);

 private:
  struct Stream {
    int number = 0;
    qint64 position = 0;
  };

  CompactFile& target_;
  std::unordered_map<std::string, int> objects_;
  std::unordered_map<std::string, Stream> streams_;
};

/// Tells which objects of a document can stand in for equal ones of another document.
class Sharing {
 public:
  explicit Sharing(const SourceFile& source);

  /// True for streams and what fonts and graphics states are made of, with all that they refer to,
  /// unless a part of it has a place of its own in its document (it refers to pages, tags, or
  /// itself).
  bool isShared(int object);

 private:
  enum class State : unsigned char { Unknown, Own, Shared };

  bool isResource(int object) const;
  bool canShare(const Value& value, int depth);
  bool canShareObject(int object, int depth);

  const SourceFile& source_;
  std::vector<State> states_;
};

}  // namespace pdf
