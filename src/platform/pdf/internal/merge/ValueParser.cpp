#include "platform/pdf/internal/merge/ValueParser.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <set>

namespace pdf {
namespace {

/// Deeper files are left to qpdf. Keeps the recursion on any thread's stack.
constexpr int deepest = 100;

bool isDigit(char byte) {
  return byte >= '0' && byte <= '9';
}

bool isNumeric(char byte) {
  return isDigit(byte) || byte == '+' || byte == '-' || byte == '.';
}

/// A sign can lead, and one point can stand anywhere behind it.
bool isNumber(std::string_view word) {
  const std::string_view unsignedWord =
      word.substr(isDigit(word.front()) || word.front() == '.' ? 0 : 1);
  return std::all_of(unsignedWord.begin(), unsignedWord.end(),
                     [](char byte) { return isDigit(byte) || byte == '.'; }) &&
         std::count(unsignedWord.begin(), unsignedWord.end(), '.') <= 1;
}

/// Sorts where comparing each key with each would take long.
bool hasKeyTwice(std::span<const Value> entries) {
  constexpr size_t few = 32;
  if (entries.size() > few) {
    std::set<std::string_view> keys;
    for (size_t index = 0; index < entries.size(); index += 2) {
      if (!keys.insert(entries[index].text).second) return true;
    }
    return false;
  }
  for (size_t index = 2; index < entries.size(); index += 2) {
    for (size_t earlier = 0; earlier < index; earlier += 2) {
      if (entries[earlier].text == entries[index].text) return true;
    }
  }
  return false;
}

template <class Type>
Type* allocate(Arena& arena, size_t count) {
  return static_cast<Type*>(arena.allocate(count * sizeof(Type), alignof(Type)));
}

}  // namespace

ValueParser::ValueParser(std::string_view bytes, size_t position, Arena& arena)
    : bytes_(bytes), position_(position), arena_(arena) {
  if (position > bytes.size()) throw UnsoundFile("an object lies outside the file");
}

void ValueParser::skipSpace() {
  while (position_ < bytes_.size()) {
    if (bytes_[position_] == '%') {
      position_ = std::min(bytes_.find_first_of("\r\n", position_), bytes_.size());
    } else if (isSpace(bytes_[position_])) {
      ++position_;
    } else {
      return;
    }
  }
}

bool ValueParser::take(std::string_view keyword) {
  skipSpace();
  const size_t end = position_ + keyword.size();
  if (bytes_.substr(position_, keyword.size()) != keyword) return false;
  if (end < bytes_.size() && isRegular(bytes_[end])) return false;
  position_ = end;
  return true;
}

int ValueParser::objectNumber() {
  skipSpace();
  int number = -1;
  const char* begin = bytes_.data() + position_;
  const auto result = std::from_chars(begin, bytes_.data() + bytes_.size(), number);
  if (result.ec != std::errc() || number < 0 || number > largestObjectNumber)
    throw UnsoundFile("an object has no proper number");
  position_ += static_cast<size_t>(result.ptr - begin);
  return number;
}

Value ValueParser::valueAt(int depth) {
  if (depth > deepest) throw UnsoundFile("objects are nested too deeply");
  skipSpace();
  switch (peek()) {
    case '/':
      return name();
    case '(':
      return literalString();
    case '[':
      return array(depth);
    case '<':
      return bytes_.substr(position_, 2) == "<<" ? dictionary(depth) : hexString();
    default:
      return isNumeric(peek()) ? numberOrReference() : keyword();
  }
}

Value ValueParser::spelled(Value::Kind kind, size_t begin) const {
  Value value;
  value.kind = kind;
  value.text = bytes_.substr(begin, position_ - begin);
  return value;
}

Value ValueParser::name() {
  const size_t begin = position_++;
  bool isPlain = true;
  for (; position_ < bytes_.size() && isRegular(bytes_[position_]); ++position_)
    isPlain = isPlain && isPlainInName(bytes_[position_]);
  Value value = spelled(Value::Kind::Name, begin);
  if (isPlain) return value;
  const std::string text = nameText(value.bytes());
  char* kept = allocate<char>(arena_, text.size());
  value.text = {std::copy(text.begin(), text.end(), kept) - text.size(), text.size()};
  return value;
}

Value ValueParser::literalString() {
  const size_t begin = position_;
  for (int open = 0; position_ < bytes_.size(); ++position_) {
    const char byte = bytes_[position_];
    if (byte == '\\') {
      ++position_;
    } else if (byte == '(') {
      ++open;
    } else if (byte == ')' && --open == 0) {
      ++position_;
      return spelled(Value::Kind::String, begin);
    }
  }
  throw UnsoundFile("a string does not end");
}

Value ValueParser::hexString() {
  const size_t begin = position_;
  const size_t end = bytes_.find('>', begin);
  if (end == std::string_view::npos) throw UnsoundFile("a string does not end");
  position_ = end + 1;
  const std::string_view digits = bytes_.substr(begin + 1, end - begin - 1);
  if (digits.find_first_not_of("0123456789abcdefABCDEF\t\n\f\r ") != std::string_view::npos)
    throw UnsoundFile("a string is no hexadecimal number");
  return spelled(Value::Kind::String, begin);
}

Value ValueParser::numberOrReference() {
  const size_t begin = position_;
  while (position_ < bytes_.size() && isRegular(bytes_[position_]))
    ++position_;
  Value value = spelled(Value::Kind::Number, begin);
  if (!isNumber(value.text)) throw UnsoundFile("a number is none");
  const bool isInteger = std::all_of(value.text.begin(), value.text.end(), isDigit);
  if (!isInteger || !takeReferenceEnd()) return value;
  value.kind = Value::Kind::Reference;
  const char* end = value.text.data() + value.text.size();
  const auto result = std::from_chars(value.text.data(), end, value.reference);
  if (result.ec != std::errc() || value.reference > largestObjectNumber)
    throw UnsoundFile("a reference has no proper number");
  value.text = {};
  return value;
}

/// The generation number, always 0 in files that were written at once, and the letter R.
bool ValueParser::takeReferenceEnd() {
  const size_t begin = position_;
  skipSpace();
  const size_t generation = position_;
  while (isDigit(peek()))
    ++position_;
  if (position_ > generation && position_ < bytes_.size() && isSpace(peek()) && take("R")) {
    if (bytes_[generation] != '0') throw UnsoundFile("a reference has a generation number");
    return true;
  }
  position_ = begin;
  return false;
}

Value ValueParser::compound(Value::Kind kind, size_t base) {
  Value value;
  value.kind = kind;
  value.count = static_cast<std::uint32_t>(open_.size() - base);
  Value* items = allocate<Value>(arena_, value.count);
  std::uninitialized_copy(open_.begin() + static_cast<std::ptrdiff_t>(base), open_.end(), items);
  value.first = items;
  open_.resize(base);
  return value;
}

Value ValueParser::array(int depth) {
  const size_t base = open_.size();
  ++position_;
  for (skipSpace(); peek() != ']'; skipSpace())
    open_.push_back(valueAt(depth + 1));
  ++position_;
  return compound(Value::Kind::Array, base);
}

Value ValueParser::dictionary(int depth) {
  const size_t base = open_.size();
  position_ += 2;
  for (skipSpace(); peek() == '/'; skipSpace()) {
    open_.push_back(name());
    open_.push_back(valueAt(depth + 1));
  }
  if (bytes_.substr(position_, 2) != ">>") throw UnsoundFile("a dictionary does not end");
  position_ += 2;
  const Value value = compound(Value::Kind::Dictionary, base);
  if (hasKeyTwice(value.items())) throw UnsoundFile("a dictionary has a key twice");
  return value;
}

Value ValueParser::keyword() {
  const size_t begin = position_;
  if (take("null")) return {};
  if (take("true") || take("false")) return spelled(Value::Kind::Boolean, begin);
  throw UnsoundFile("there is no object where one should be");
}

NumberedObject readNumberedObject(std::string_view file, size_t position, Arena& arena) {
  ValueParser parser(file, position, arena);
  NumberedObject object;
  object.number = parser.objectNumber();
  if (parser.objectNumber() != 0) throw UnsoundFile("an object has a generation number");
  if (!parser.take("obj")) throw UnsoundFile("there is no object where one should be");
  object.value = parser.value();
  if (parser.take("endobj")) return object;
  if (!parser.take("stream") || !object.value.isDictionary())
    throw UnsoundFile("an object does not end");
  size_t begin = parser.position();
  if (begin < file.size() && file[begin] == '\r') ++begin;
  if (begin >= file.size() || file[begin] != '\n') throw UnsoundFile("a stream does not begin");
  object.data = begin + 1;
  return object;
}

std::string_view streamData(std::string_view file, size_t begin, std::optional<long long> length) {
  if (!length || *length < 0 || static_cast<unsigned long long>(*length) > file.size() - begin)
    throw UnsoundFile("a stream has no proper length");
  const auto size = static_cast<size_t>(*length);
  size_t end = begin + size;
  while (end < file.size() && isSpace(file[end]))
    ++end;
  if (file.substr(end, 9) != "endstream") throw UnsoundFile("a stream has a wrong length");
  return file.substr(begin, size);
}

}  // namespace pdf
