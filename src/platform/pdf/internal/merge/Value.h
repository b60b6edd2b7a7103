#pragma once

#include <cstdint>
#include <memory_resource>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pdf {

/// Holds what a document's values are made of, as long as the document is in use.
using Arena = std::pmr::monotonic_buffer_resource;

/// A file that is not as ISO 32000-1 has it, or in a way that only qpdf reads: it is mended first.
class UnsoundFile : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// An object as a file spells it (ISO 32000-1, 7.3). Joining moves most objects unchanged, so
/// nothing is decoded before it is asked for. Does not own what it refers to.
struct Value {
  enum class Kind : unsigned char {
    Null,
    Boolean,
    Number,
    Name,
    String,
    Array,
    Dictionary,
    Reference
  };

  Kind kind = Kind::Null;
  std::int32_t reference = 0;  ///< an object number
  std::uint32_t count = 0;     ///< of `first`
  const Value* first = nullptr;
  /// Scalars as they are spelled. Equal names are spelled alike and keep their slash.
  std::string_view text;

  bool isNull() const { return kind == Kind::Null; }
  bool isString() const { return kind == Kind::String; }
  bool isArray() const { return kind == Kind::Array; }
  bool isDictionary() const { return kind == Kind::Dictionary; }
  bool isReference() const { return kind == Kind::Reference; }
  bool isName() const { return kind == Kind::Name; }
  bool isName(std::string_view name) const { return isName() && text == name; }

  /// Of an array the items, of a dictionary the keys and their values in turn.
  std::span<const Value> items() const { return {first, count}; }

  /// An entry of a dictionary; the null value when there is none.
  const Value& operator[](std::string_view key) const;

  std::optional<long long> integer() const;
  std::optional<double> number() const;

  /// What a string or a name (without its slash) stands for.
  std::string bytes() const;
};

/// A string object of bytes.
std::string stringText(std::string_view bytes);

/// A name object of bytes, spelled as `Value` has names.
std::string nameText(std::string_view bytes);

std::string referenceText(int object);

bool isSpace(char byte);
/// Whether a byte belongs to the word before it (ISO 32000-1, 7.2.2).
bool isRegular(char byte);
/// Whether a byte stands for itself in a name (ISO 32000-1, 7.3.5).
bool isPlainInName(char byte);

}  // namespace pdf
