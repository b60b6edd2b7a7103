#pragma once

#include <QSaveFile>
#include <QString>
#include <deque>
#include <future>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/Error.h"

namespace pdf {

/// A PDF file written from its beginning to its end, its objects packed in object streams
/// (ISO 32000-1, 7.5.7) and its streams' bytes as they are given. Write errors are kept and come
/// out of `finish`; a file that is not finished does not appear.
class CompactFile {
 public:
  explicit CompactFile(const QString& path);

  /// An object number to refer to before the object is written. One that never is stands for null.
  int reserve();

  void writeObject(int object, std::string_view text);
  /// Returns the object's number.
  int add(std::string_view text);

  /// `dictionary` says how the bytes are packed, but not their length. Returns their position.
  qint64 writeStream(int object, std::string_view dictionary, std::string_view data);

  /// Whether these bytes stand at `position` of what has been written.
  bool holds(qint64 position, std::string_view bytes);

  bool hasFailed() const;

  /// Ends the file and moves it to its place. `version` is that of the format, as "1.7";
  /// `trailer` holds entries like /Root.
  MaybeError finish(const std::string& version, const std::string& trailer);

 private:
  enum class Kind : unsigned char { Free = 0, InFile = 1, InStream = 2 };
  struct Place {
    Kind kind = Kind::Free;
    qint64 position = 0;  ///< or the number of the object stream
    int index = 0;        ///< in the object stream
  };

  /// An object stream that is being deflated on a thread of its own.
  struct Pack {
    int container = 0;
    std::string dictionary;
    std::future<std::string> data;
  };

  void write(std::string_view bytes);
  void pack();
  void writePack();
  void writeCrossReferences(const std::string& trailer);
  std::string crossReferenceRows() const;

  QSaveFile file_;
  qint64 position_ = 0;
  qint64 flushed_ = 0;
  std::vector<Place> places_{1};
  int container_ = 0;  ///< the object stream that is being filled; 0 for none
  int packedCount_ = 0;
  std::string packedIndex_, packed_;
  std::deque<Pack> packs_;
};

}  // namespace pdf
