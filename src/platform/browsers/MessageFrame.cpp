#include "platform/browsers/MessageFrame.h"

#include <QJsonDocument>
#include <cstring>

#include "platform/browsers/BrowserError.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

constexpr qsizetype headerSize = sizeof(quint32);

}  // namespace

QByteArray framed(const QJsonObject& message) {
  const QByteArray text = QJsonDocument(message).toJson(QJsonDocument::Compact);
  const auto length = static_cast<quint32>(text.size());
  QByteArray frame(headerSize, '\0');
  std::memcpy(frame.data(), &length, sizeof length);
  return frame + text;
}

Result<std::optional<QJsonObject>> MessageReader::next() {
  if (bytes_.size() < headerSize) return std::nullopt;
  quint32 length = 0;
  std::memcpy(&length, bytes_.constData(), sizeof length);
  if (length > longest_) return browserFailure(TooLarge, u"A message is too large."_s);
  const qsizetype whole = headerSize + static_cast<qsizetype>(length);
  if (bytes_.size() < whole) return std::nullopt;
  const auto document = QJsonDocument::fromJson(bytes_.sliced(headerSize, length));
  if (!document.isObject()) return browserFailure(BadMessage, u"A message is no JSON object."_s);
  bytes_.remove(0, whole);
  return document.object();
}

}  // namespace browsers
