#pragma once

#include <vector>

#include "platform/pdf/internal/merge/Value.h"

namespace pdf {

/// The largest object number that readers have to know (ISO 32000-1, Annex C).
inline constexpr int largestObjectNumber = 8'388'607;

/// Reads objects one after the other. What is not as it should be throws `UnsoundFile`.
class ValueParser {
 public:
  /// `bytes` and `arena` outlive the values.
  ValueParser(std::string_view bytes, size_t position, Arena& arena);

  Value value() { return valueAt(0); }

  /// Passes a keyword when it is what follows.
  bool take(std::string_view keyword);

  /// A number from 0 that can be an object's.
  int objectNumber();

  void skipSpace();
  void skip(size_t bytes) { position_ += bytes; }
  size_t position() const { return position_; }

 private:
  Value valueAt(int depth);
  Value name();
  Value literalString();
  Value hexString();
  Value numberOrReference();
  Value array(int depth);
  Value dictionary(int depth);
  Value keyword();
  Value spelled(Value::Kind kind, size_t begin) const;
  Value compound(Value::Kind kind, size_t base);
  bool takeReferenceEnd();
  char peek() const { return position_ < bytes_.size() ? bytes_[position_] : '\0'; }

  std::string_view bytes_;
  size_t position_;
  Arena& arena_;
  std::vector<Value> open_;  ///< items of the arrays and dictionaries that are being read
};

/// An object with its number, as it stands in a file.
struct NumberedObject {
  int number = 0;
  Value value;
  /// Where the bytes of a stream begin; 0 for other objects.
  size_t data = 0;
};

NumberedObject readNumberedObject(std::string_view file, size_t position, Arena& arena);

/// The bytes of a stream, after a look whether they end where they should.
std::string_view streamData(std::string_view file, size_t begin, std::optional<long long> length);

}  // namespace pdf
