#pragma once

#include <QByteArray>
#include <QFile>
#include <memory>
#include <vector>

#include "platform/base/Error.h"
#include "platform/pdf/internal/merge/CrossReferences.h"
#include "platform/pdf/internal/merge/Value.h"

namespace pdf {

/// A page as it is found in a document's page tree.
struct SourcePage {
  int number = 0;  ///< of its object
  /// Keys and values in turn, of what it has from the nodes above it.
  std::vector<Value> inherited;
};

/// A document that is to be joined to others or updated, read and checked completely: what uses it
/// meets no damage. Reads on several threads are safe.
class SourceFile {
 public:
  /// Throws `UnsoundFile` when the file has to be mended first, and other exceptions when it
  /// cannot be read. Large files stay mapped and must not be cut short while they are in use.
  explicit SourceFile(const QString& path);
  /// The same of a document in memory.
  explicit SourceFile(const QByteArray& bytes);

  std::string_view bytes() const { return bytes_; }

  /// Where its newest cross-reference section begins, which is a table unless the trailer is a
  /// stream's dictionary.
  size_t crossReferencesStart() const { return crossReferencesStart_; }

  /// One more than the largest object number.
  int objectCount() const { return static_cast<int>(objects_.size()); }

  /// The null value when there is no such object. Never a reference.
  const Value& object(int number) const;
  const Value& resolved(const Value& value) const {
    return value.isReference() ? object(value.reference) : value;
  }

  /// The bytes of a stream as they are packed; nothing for other objects.
  std::optional<std::string_view> data(int number) const;
  /// Equal for equal bytes of streams; unequal ones can have the same.
  size_t dataHash(int number) const { return objects_[static_cast<size_t>(number)].hash; }

  const Value& trailer() const { return trailer_; }
  const Value& root() const { return resolved(trailer_["/Root"]); }
  /// An entry of the catalog.
  const Value& rootEntry(std::string_view key) const { return resolved(root()[key]); }
  const std::vector<SourcePage>& pages() const { return pages_; }
  /// An entry of a page, its own or inherited. It can be a reference.
  const Value& pageEntry(const SourcePage& page, std::string_view key) const;

  /// As "1.7".
  std::string version() const;

 private:
  struct Object {
    Value value;
    size_t begin = 0;  ///< of a stream's bytes in the file; 0 for other objects
    size_t length = 0;
    size_t hash = 0;
  };

  void openBytes();
  void read();
  void readObjects(const CrossReferences& references);
  void readStreams();
  void unpackObjects(const CrossReferences& references);
  void unpack(int container, const CrossReferences& references);
  void readTop();

  QFile file_;
  QByteArray held_;
  std::string_view bytes_;
  Arena arena_;
  std::vector<std::string> unpacked_;  ///< contents of object streams
  size_t unpackedSize_ = 0;
  std::vector<Object> objects_;
  Value trailer_;
  size_t crossReferencesStart_ = 0;
  std::vector<SourcePage> pages_;
};

/// The pages in their order. Throws `UnsoundFile` when the tree is damaged or names a page twice.
std::vector<SourcePage> readPages(const SourceFile& source);

}  // namespace pdf
