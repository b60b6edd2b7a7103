#include "platform/pdf/internal/merge/SourceFile.h"

#include <algorithm>
#include <functional>
#include <set>

#include "platform/pdf/internal/merge/Deflate.h"
#include "platform/pdf/internal/merge/ValueParser.h"

namespace pdf {
namespace {

/// Mapping costs no memory but needs trust in the file's length.
constexpr qint64 largestInMemory = 64 << 20;

/// Of a document's object streams together, so that a small file cannot take all memory.
constexpr size_t largestUnpacked = 256 << 20;

}  // namespace

SourceFile::SourceFile(const QString& path) : file_(path) {
  openBytes();
  read();
}

SourceFile::SourceFile(const QByteArray& bytes) : held_(bytes) {
  bytes_ = {held_.constData(), static_cast<size_t>(held_.size())};
  read();
}

void SourceFile::read() {
  const bool hasHeader = bytes_.substr(0, 5) == "%PDF-" && bytes_.size() > 8 && bytes_[5] >= '1' &&
                         bytes_[5] <= '2' && bytes_[6] == '.';
  if (!hasHeader) throw UnsoundFile("the file does not begin with its header");
  const CrossReferences references = readCrossReferences(bytes_, arena_);
  trailer_ = references.trailer;
  crossReferencesStart_ = references.start;
  objects_.resize(references.places.size());
  readObjects(references);
  readStreams();
  unpackObjects(references);
  readTop();
}

void SourceFile::openBytes() {
  if (!file_.open(QIODevice::ReadOnly)) throw std::runtime_error(file_.errorString().toStdString());
  const qint64 size = file_.size();
  if (size <= largestInMemory) {
    held_ = file_.readAll();
    file_.close();
    bytes_ = {held_.constData(), static_cast<size_t>(held_.size())};
  } else if (const uchar* mapped = file_.map(0, size)) {
    bytes_ = {reinterpret_cast<const char*>(mapped), static_cast<size_t>(size)};
  }
}

void SourceFile::readObjects(const CrossReferences& references) {
  for (size_t number = 0; number < objects_.size(); ++number) {
    const ObjectPlace& place = references.places[number];
    if (place.kind != ObjectPlace::Kind::InFile) continue;
    const NumberedObject read = readNumberedObject(bytes_, place.position, arena_);
    if (static_cast<size_t>(read.number) != number)
      throw UnsoundFile("an object has another's place");
    objects_[number].value = read.value;
    objects_[number].begin = read.data;
  }
}

void SourceFile::readStreams() {
  for (Object& object : objects_) {
    if (object.begin == 0) continue;
    const Value& length = resolved(object.value["/Length"]);
    const std::string_view bytes = streamData(bytes_, object.begin, length.integer());
    object.length = bytes.size();
    object.hash = std::hash<std::string_view>()(bytes);
  }
}

void SourceFile::unpackObjects(const CrossReferences& references) {
  std::set<int> containers;
  for (const ObjectPlace& place : references.places) {
    if (place.kind != ObjectPlace::Kind::InStream) continue;
    if (place.position >= objects_.size()) throw UnsoundFile("an object stream is missing");
    containers.insert(static_cast<int>(place.position));
  }
  // The values refer to the text, which stays where it is.
  unpacked_.reserve(containers.size());
  for (const int container : containers)
    unpack(container, references);
}

void SourceFile::unpack(int container, const CrossReferences& references) {
  const auto bytes = data(container);
  const Value& entries = object(container);
  const auto count = entries["/N"].integer(), first = entries["/First"].integer();
  if (!bytes || !entries["/Filter"].isName("/FlateDecode") || !entries["/DecodeParms"].isNull() ||
      !count || !first || *first < 0 || *first > static_cast<long long>(largestUnpacked))
    throw UnsoundFile("an object stream is of a strange kind");
  const std::string& text =
      unpacked_.emplace_back(inflated(*bytes, largestUnpacked - unpackedSize_));
  unpackedSize_ += text.size();
  ValueParser index(text, 0, arena_);
  for (long long object = 0; object < *count; ++object) {
    const auto number = static_cast<size_t>(index.objectNumber());
    const auto offset = static_cast<size_t>(index.objectNumber() + *first);
    if (number >= objects_.size()) continue;
    const ObjectPlace& place = references.places[number];
    const bool isHere = place.kind == ObjectPlace::Kind::InStream &&
                        place.position == static_cast<std::uint64_t>(container);
    if (isHere) objects_[number].value = ValueParser(text, offset, arena_).value();
  }
}

void SourceFile::readTop() {
  for (const Object& object : objects_) {
    if (object.value.isReference()) throw UnsoundFile("an object is a reference");
  }
  if (!root().isDictionary()) throw UnsoundFile("the file has no catalog");
  pages_ = readPages(*this);
}

const Value& SourceFile::object(int number) const {
  static const Value none;
  const auto index = static_cast<size_t>(number);
  return index < objects_.size() ? objects_[index].value : none;
}

std::optional<std::string_view> SourceFile::data(int number) const {
  const auto index = static_cast<size_t>(number);
  if (index >= objects_.size() || objects_[index].begin == 0) return std::nullopt;
  return bytes_.substr(objects_[index].begin, objects_[index].length);
}

const Value& SourceFile::pageEntry(const SourcePage& page, std::string_view key) const {
  for (size_t index = 0; index < page.inherited.size(); index += 2) {
    if (page.inherited[index].text == key) return page.inherited[index + 1];
  }
  return object(page.number)[key];
}

std::string SourceFile::version() const {
  std::string version(bytes_.substr(5, 3));
  const Value& later = rootEntry("/Version");
  return later.isName() ? std::max(version, later.bytes()) : version;
}

}  // namespace pdf
