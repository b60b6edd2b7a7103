#include "platform/pdf/internal/SequentialFile.h"

#include <QRandomGenerator>

#include "platform/pdf/PDFDocument.h"

using namespace Qt::StringLiterals;

namespace pdf {

SequentialFile::SequentialFile(const QString& path) : file_(path) {
  if (!file_.open(QIODevice::WriteOnly)) return;
  // The second line marks the file as binary for programs that look (ISO 32000-1, 7.5.2).
  append("%PDF-1.6\n%\xE2\xE3\xCF\xD3\n");
}

int SequentialFile::reserve() {
  offsets_.push_back(-1);
  return static_cast<int>(offsets_.size());
}

void SequentialFile::append(const QByteArray& bytes) {
  position_ += bytes.size();
  if (file_.isOpen() && file_.error() == QFileDevice::NoError) file_.write(bytes);
}

void SequentialFile::beginObject(int object) {
  offsets_.at(static_cast<size_t>(object - 1)) = position_;
  append(QByteArray::number(object) + " 0 obj\n");
}

void SequentialFile::writeObject(int object, const QByteArray& body) {
  beginObject(object);
  append(body + "\nendobj\n");
}

void SequentialFile::writeStream(int object, const QByteArray& entries, const QByteArray& data) {
  // Qt puts four bytes of length before the zlib stream.
  const QByteArray deflated = qCompress(data).mid(4);
  beginStream(object, entries + " /Filter /FlateDecode", deflated.size());
  append(deflated);
  endStream();
}

void SequentialFile::beginStream(int object, const QByteArray& entries, qint64 length) {
  beginObject(object);
  append("<< " + entries + " /Length " + QByteArray::number(length) + " >>\nstream\n");
}

void SequentialFile::endStream() {
  append("\nendstream\nendobj\n");
}

void SequentialFile::writeCrossReferences(int catalog) {
  const qint64 start = position_;
  const QByteArray size = QByteArray::number(static_cast<qint64>(offsets_.size()) + 1);
  append("xref\n0 " + size + "\n0000000000 65535 f \n");
  for (const qint64 offset : offsets_) {
    append(offset < 0 ? QByteArray("0000000000 65535 f \n")
                      : QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n");
  }
  QByteArray identifier(16, '\0');
  QRandomGenerator::global()->generate(identifier.begin(), identifier.end());
  const QByteArray hex = "<" + identifier.toHex() + ">";
  append("trailer\n<< /Size " + size + " /Root " + reference(catalog) + " /ID [" + hex + hex +
         "] >>\nstartxref\n" + QByteArray::number(start) + "\n%%EOF\n");
}

MaybeError SequentialFile::finish(int catalog) {
  if (file_.isOpen()) writeCrossReferences(catalog);
  // What waits in the buffer is not looked at by commit.
  if (file_.error() == QFileDevice::NoError && file_.flush() && file_.commit()) return std::nullopt;
  return Error{
      QString::fromUtf16(errorDomain), PDFErrorWrite,
      u"The document \"%1\" cannot be written: %2"_s.arg(file_.fileName(), file_.errorString())};
}

QByteArray literalString(const QByteArray& bytes) {
  QByteArray escaped = "(";
  for (const char byte : bytes) {
    if (byte == '(' || byte == ')' || byte == '\\') escaped += '\\';
    if (byte == '\r') {
      escaped += "\\r";
    } else {
      escaped += byte;
    }
  }
  return escaped + ")";
}

QByteArray textString(const QString& text) {
  QByteArray hex = "<FEFF";
  for (const QChar unit : text) {
    hex += QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
  }
  return hex + ">";
}

QByteArray number(double value, int decimals) {
  QByteArray digits = QByteArray::number(value, 'f', decimals);
  while (digits.endsWith('0'))
    digits.chop(1);
  if (digits.endsWith('.')) digits.chop(1);
  return digits == "-0" ? QByteArray("0") : digits;
}

}  // namespace pdf
