#include "platform/pdf/internal/merge/CrossReferences.h"

#include <algorithm>
#include <set>

#include "platform/pdf/internal/merge/Deflate.h"
#include "platform/pdf/internal/merge/ValueParser.h"

namespace pdf {
namespace {

/// The widths of a cross-reference stream's three fields (ISO 32000-1, table 17).
struct Fields {
  explicit Fields(const Value& widths) {
    if (widths.count != 3) throw UnsoundFile("a cross-reference stream has no fields");
    for (size_t index = 0; index < 3; ++index) {
      const auto width = widths.items()[index].integer();
      if (!width || *width < 0 || *width > 8)
        throw UnsoundFile("a cross-reference stream has strange fields");
      width_[index] = static_cast<size_t>(*width);
    }
  }

  size_t rowSize() const { return width_[0] + width_[1] + width_[2]; }

  ObjectPlace place(std::string_view row) const {
    const std::uint64_t kind = width_[0] == 0 ? 1 : number(row.substr(0, width_[0]));
    const std::uint64_t position = number(row.substr(width_[0], width_[1]));
    const std::uint64_t last = number(row.substr(width_[0] + width_[1], width_[2]));
    if (kind == 1 && last != 0) throw UnsoundFile("an object has a generation number");
    if (kind == 1) return {ObjectPlace::Kind::InFile, position};
    return {kind == 2 ? ObjectPlace::Kind::InStream : ObjectPlace::Kind::Free, position};
  }

 private:
  static std::uint64_t number(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes)
      value = value * 256 + static_cast<unsigned char>(byte);
    return value;
  }

  size_t width_[3] = {};
};

long long integerOr(const Value& value, long long missing) {
  return value.isNull() ? missing : value.integer().value_or(-1);
}

/// Undoes the PNG filter "up", the one that writers of cross-reference streams use.
std::string withoutPredictor(const std::string& rows, size_t columns) {
  std::string plain;
  for (size_t begin = 0; begin + columns < rows.size(); begin += columns + 1) {
    if (rows[begin] != 2 && rows[begin] != 0)
      throw UnsoundFile("a cross-reference stream has a strange filter");
    const bool addsUp = rows[begin] == 2 && !plain.empty();
    for (size_t column = 0; column < columns; ++column) {
      const char above = addsUp ? plain[plain.size() - columns] : '\0';
      plain += static_cast<char>(rows[begin + 1 + column] + above);
    }
  }
  return plain;
}

class Reader {
 public:
  Reader(std::string_view file, Arena& arena) : file_(file), arena_(arena) {}

  CrossReferences read() {
    found_.start = start();
    std::optional<size_t> next = found_.start;
    for (std::set<size_t> seen; next; next = previous_) {
      if (!seen.insert(*next).second) throw UnsoundFile("cross-references go in a ring");
      readSection(*next);
    }
    if (!found_.trailer["/Encrypt"].isNull()) throw UnsoundFile("the file is encrypted");
    return std::move(found_);
  }

 private:
  size_t start() const {
    constexpr size_t searched = 1024;
    const size_t tail = file_.size() - std::min(file_.size(), searched);
    const size_t keyword = file_.substr(tail).rfind("startxref");
    if (keyword == std::string_view::npos) throw UnsoundFile("the file is cut off");
    return offset(ValueParser(file_, tail + keyword + 9, arena_).value());
  }

  size_t offset(const Value& value) const {
    const auto position = value.integer();
    if (!position || *position < 0 || static_cast<size_t>(*position) >= file_.size())
      throw UnsoundFile("cross-references lie outside the file");
    return static_cast<size_t>(*position);
  }

  void readSection(size_t position) {
    ValueParser parser(file_, position, arena_);
    const Value trailer = parser.take("xref") ? readTable(parser) : readStream(position);
    if (!trailer.isDictionary() || !trailer["/XRefStm"].isNull())
      throw UnsoundFile("the file has no plain trailer");
    if (found_.trailer.isNull()) found_.trailer = trailer;
    const Value& previous = trailer["/Prev"];
    previous_ = previous.isNull() ? std::nullopt : std::optional(offset(previous));
  }

  Value readTable(ValueParser& parser) {
    constexpr size_t entrySize = 20;
    while (!parser.take("trailer")) {
      const int first = parser.objectNumber(), count = parser.objectNumber();
      parser.skipSpace();
      const std::string_view entries =
          file_.substr(parser.position(), static_cast<size_t>(count) * entrySize);
      if (entries.size() < static_cast<size_t>(count) * entrySize)
        throw UnsoundFile("a cross-reference table is cut off");
      for (int index = 0; index < count; ++index)
        note(first + index,
             tablePlace(entries.substr(static_cast<size_t>(index) * entrySize, entrySize)));
      parser.skip(entries.size());
    }
    return parser.value();
  }

  static ObjectPlace tablePlace(std::string_view entry) {
    const char kind = entry[17];
    if (entry[10] != ' ' || entry[16] != ' ' || (kind != 'n' && kind != 'f') ||
        entry.find_first_not_of("0123456789") != 10)
      throw UnsoundFile("a cross-reference table is damaged");
    if (kind == 'f') return {ObjectPlace::Kind::Free, 0};
    if (entry.substr(11, 5) != "00000") throw UnsoundFile("an object has a generation number");
    std::uint64_t position = 0;
    for (const char digit : entry.substr(0, 10))
      position = position * 10 + static_cast<std::uint64_t>(digit - '0');
    return {ObjectPlace::Kind::InFile, position};
  }

  Value readStream(size_t position) {
    const NumberedObject object = readNumberedObject(file_, position, arena_);
    const Value& entries = object.value;
    if (object.data == 0 || !entries["/Type"].isName("/XRef"))
      throw UnsoundFile("there are no cross-references where they should be");
    const Fields fields(entries["/W"]);
    const std::string rows = streamRows(object, fields.rowSize());
    const auto size = static_cast<int>(
        std::clamp(integerOr(entries["/Size"], -1), -1LL, static_cast<long long>(file_.size())));
    size_t row = 0;
    const Value& index = entries["/Index"];
    if (index.isNull()) noteRows(rows, fields, 0, size, row);
    for (size_t pair = 0; pair + 1 < index.count; pair += 2) {
      noteRows(rows, fields, integerOr(index.items()[pair], -1),
               integerOr(index.items()[pair + 1], -1), row);
    }
    return entries;
  }

  std::string streamRows(const NumberedObject& object, size_t rowSize) const {
    const Value& entries = object.value;
    const std::string_view data = streamData(file_, object.data, entries["/Length"].integer());
    if (entries["/Filter"].isNull()) return std::string(data);
    if (!entries["/Filter"].isName("/FlateDecode"))
      throw UnsoundFile("a cross-reference stream has a strange filter");
    // A row for each object, and no object takes less than a byte.
    std::string rows = inflated(data, (rowSize + 1) * (file_.size() + 1024));
    const Value& parameters = entries["/DecodeParms"];
    const long long predictor = integerOr(parameters["/Predictor"], 1);
    if (predictor == 1) return rows;
    if (predictor < 10 || integerOr(parameters["/Columns"], 1) != static_cast<long long>(rowSize))
      throw UnsoundFile("a cross-reference stream has a strange filter");
    return withoutPredictor(rows, rowSize);
  }

  void noteRows(const std::string& rows, const Fields& fields, long long first, long long count,
                size_t& row) {
    const size_t size = fields.rowSize();
    if (first < 0 || first > largestObjectNumber || count < 0 || size == 0 ||
        static_cast<unsigned long long>(count) > rows.size() / size - row)
      throw UnsoundFile("a cross-reference stream is cut off");
    for (long long index = 0; index < count; ++index, ++row)
      note(first + index, fields.place(std::string_view(rows).substr(row * size, size)));
  }

  /// Later sections of the file are read first and hold.
  void note(long long number, ObjectPlace place) {
    // An object takes at least a byte; otherwise a small file could ask for much memory.
    if (number > largestObjectNumber || number > static_cast<long long>(file_.size()))
      throw UnsoundFile("an object has no proper number");
    const auto index = static_cast<size_t>(number);
    if (index >= found_.places.size()) found_.places.resize(index + 1);
    if (found_.places[index].kind == ObjectPlace::Kind::Unknown) found_.places[index] = place;
  }

  std::string_view file_;
  Arena& arena_;
  std::optional<size_t> previous_;
  CrossReferences found_;
};

}  // namespace

CrossReferences readCrossReferences(std::string_view file, Arena& arena) {
  return Reader(file, arena).read();
}

}  // namespace pdf
