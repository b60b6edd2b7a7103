#pragma once

#include <QByteArray>
#include <QFile>
#include <QSaveFile>
#include <QString>
#include <vector>

#include "platform/base/Error.h"

namespace pdf {

/// A PDF file written object by object, from its beginning to its end, so that a picture's data
/// goes through without being held. Write errors are kept and come out of `finish`; a file that is
/// not finished does not appear.
class SequentialFile {
 public:
  explicit SequentialFile(const QString& path);

  /// An object number to refer to before the object is written.
  int reserve();
  static QByteArray reference(int object) { return QByteArray::number(object) + " 0 R"; }

  void writeObject(int object, const QByteArray& body);

  /// A stream, deflated. `entries` are the dictionary's own entries without filter and length.
  void writeStream(int object, const QByteArray& entries, const QByteArray& data);

  /// A stream whose `length` bytes, encoded as `entries` say, follow through `append`.
  void beginStream(int object, const QByteArray& entries, qint64 length);
  void append(const QByteArray& bytes);
  void endStream();

  /// Ends the file and moves it to its place.
  MaybeError finish(int catalog);

 private:
  void beginObject(int object);
  void writeCrossReferences(int catalog);

  QSaveFile file_;
  qint64 position_ = 0;
  std::vector<qint64> offsets_;  ///< of object number index + 1; -1 while not written
};

/// A literal string object of bytes, escaped (ISO 32000-1, 7.3.4.2).
QByteArray literalString(const QByteArray& bytes);

/// A text string object (ISO 32000-1, 7.9.2.2).
QByteArray textString(const QString& text);

/// A number as PDF writes it: no exponent, no more digits than a reader can show.
QByteArray number(double value, int decimals = 4);

}  // namespace pdf
