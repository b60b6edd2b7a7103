#include "platform/dropbox/AsciiJson.h"

#include <QJsonDocument>

namespace dropbox {

QByteArray asciiJson(const QJsonObject& object) {
  // Outside of strings compact JSON is plain ASCII, so every other character may be escaped where
  // it is.
  const QString text = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
  QByteArray ascii;
  ascii.reserve(text.size());
  for (const QChar character : text) {
    const char16_t unit = character.unicode();
    if (unit >= 0x20 && unit < 0x7f)
      ascii.append(static_cast<char>(unit));
    else
      ascii.append("\\u" + QByteArray::number(unit, 16).rightJustified(4, '0'));
  }
  return ascii;
}

}  // namespace dropbox
