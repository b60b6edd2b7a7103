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

/// Without escapes, if what remains is UTF-8.
std::optional<QByteArray> withoutEscapes(QByteArray utf8) {
  if (!removeEscapes(utf8) || !utf8.isValidUtf8()) return std::nullopt;
  return utf8;
}

QString textOf(const QByteArray& utf8) {
  // A leading byte order mark is part of the document: converting in one piece would drop it.
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
  return decoder.decode(utf8);
}

std::optional<QByteArray> bytesOf(QByteArrayView base64) {
  // The library accepts a text whose padding was left off.
  if (base64.size() % 4 != 0) return std::nullopt;
  const QByteArray text = QByteArray::fromRawData(base64.data(), base64.size());
  auto result = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
  if (!result) return std::nullopt;
  return std::move(result.decoded);
}

template <class View>
Split<View> splitAtFirstTwo(View text, View marker) {
  const qsizetype first = text.indexOf(marker);
  if (first < 0) return {text, std::nullopt};
  const View rest = text.sliced(first + marker.size());
  const qsizetype second = rest.indexOf(marker);
  return {text.first(first), second < 0 ? rest : rest.first(second)};
}

}  // namespace

std::optional<QByteArray> percentDecoded(QStringView text) {
  return withoutEscapes(text.toUtf8());
}

std::optional<QString> decoded(QByteArrayView base64) {
  std::optional<QByteArray> bytes = bytesOf(base64);
  if (!bytes || !bytes->isValidUtf8()) return std::nullopt;
  const auto document = withoutEscapes(*std::move(bytes));
  return document ? std::optional(textOf(*document)) : std::nullopt;
}

QString replaced(QStringView text, QStringView what, QStringView replacement) {
  QString result;
  result.reserve(text.size());
  qsizetype copied = 0;
  for (qsizetype found = text.indexOf(what); found >= 0; found = text.indexOf(what, copied)) {
    result.append(text.sliced(copied, found - copied)).append(replacement);
    copied = found + what.size();
  }
  return result.append(text.sliced(copied));
}

Split<QStringView> splitAt(QStringView text, QStringView marker) {
  return splitAtFirstTwo(text, marker);
}

Split<QByteArrayView> splitAt(QByteArrayView text, QByteArrayView marker) {
  return splitAtFirstTwo(text, marker);
}

}  // namespace CaptureText
