#include "intake/CaptureText.h"

#include <QStringDecoder>

namespace CaptureText {
namespace {

/// The value of a hexadecimal digit; -1 for any other byte.
int hexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const char lower = static_cast<char>(digit | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Replaces the escapes in place; no when one is broken.
bool removeEscapes(QByteArray& bytes) {
  char* const begin = bytes.data();
  const char* const end = begin + bytes.size();
  char* out = begin;
  for (const char* in = begin; in != end; ++in) {
    if (*in != '%') {
      *out++ = *in;
      continue;
    }
    if (end - in < 3) return false;
    const int high = hexValue(in[1]);
    const int low = hexValue(in[2]);
    if (high < 0 || low < 0) return false;
    *out++ = static_cast<char>(high << 4 | low);
    in += 2;
  }
  bytes.truncate(out - begin);
  return true;
}

std::optional<QString> textOfUtf8(const QByteArray& bytes) {
  if (!bytes.isValidUtf8()) return std::nullopt;
  // A leading byte order mark is part of the document: converting in one piece would drop it.
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
  return QString(decoder.decode(bytes));
}

std::optional<QString> withoutEscapes(QByteArray utf8) {
  if (!removeEscapes(utf8)) return std::nullopt;
  return textOfUtf8(utf8);
}

std::optional<QByteArray> bytesOfBase64(QStringView text) {
  // The library accepts a text whose padding was left off.
  if (text.size() % 4 != 0) return std::nullopt;
  auto result =
      QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  if (!result) return std::nullopt;
  return std::move(result.decoded);
}

}  // namespace

std::optional<QString> percentDecoded(QStringView text) {
  return withoutEscapes(text.toUtf8());
}

std::optional<QString> decoded(QStringView text) {
  std::optional<QByteArray> bytes = bytesOfBase64(text);
  if (!bytes || !bytes->isValidUtf8()) return std::nullopt;
  return withoutEscapes(*std::move(bytes));
}

QString replaced(QStringView text, QStringView what, QStringView replacement) {
  QString result;
  qsizetype copied = 0;
  for (qsizetype found = text.indexOf(what); found >= 0; found = text.indexOf(what, copied)) {
    result.append(text.sliced(copied, found - copied)).append(replacement);
    copied = found + what.size();
  }
  return result.append(text.sliced(copied));
}

Split splitAt(QStringView text, QStringView marker) {
  const qsizetype first = text.indexOf(marker);
  if (first < 0) return {text, std::nullopt};
  const QStringView rest = text.sliced(first + marker.size());
  const qsizetype second = rest.indexOf(marker);
  return {text.first(first), second < 0 ? rest : rest.first(second)};
}

}  // namespace CaptureText
