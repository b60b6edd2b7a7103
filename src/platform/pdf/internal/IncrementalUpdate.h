#pragma once

#include <QString>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/base/Error.h"
#include "platform/pdf/internal/merge/SourceFile.h"

namespace pdf {

/// Opens a document that is to be updated. One that is damaged, or whose cross-references are a
/// stream, is read from a plain copy.
Result<std::unique_ptr<SourceFile>> openForUpdate(const QString& path);

/// Changes to a document, added behind its end (ISO 32000-1, 7.5.6): what stays is copied byte by
/// byte and not looked at, however large it is.
class IncrementalUpdate {
 public:
  /// `source` comes from `openForUpdate`.
  explicit IncrementalUpdate(const SourceFile& source);

  /// The number of a new object, to refer to before it is written.
  int reserve() { return nextObject_++; }

  /// A reserved object, or the one that takes an old one's place.
  void writeObject(int object, std::string_view text);

  /// `dictionary` says how the bytes are packed, but not their length.
  void writeStream(int object, std::string_view dictionary, std::string_view data);

  /// Raises the document's version to at least that, as "1.6".
  void raiseVersion(const std::string& version);

  /// Writes the document with its changes; `target` appears whole or not at all and may be the file
  /// that the document was read from.
  MaybeError write(const QString& target);

 private:
  void begin(int object);
  void appendCrossReferences();
  void appendTrailer(size_t start);
  MaybeError writeTo(const QString& target, std::string_view added) const;

  const SourceFile& source_;
  int nextObject_;
  std::map<int, size_t> positions_;
  std::string added_;
};

}  // namespace pdf
