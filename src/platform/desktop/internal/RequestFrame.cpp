#include "platform/desktop/internal/RequestFrame.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

void writeTexts(QDataStream& stream, const QStringList& texts) {
  stream << static_cast<quint32>(texts.size());
  for (const QString& text : texts)
    stream << text.toUtf8();
}

/// Read one by one: a list's own operator would reserve whatever number the peer claims.
QStringList readTexts(QDataStream& stream) {
  quint32 count = 0;
  stream >> count;
  QStringList texts;
  while (texts.size() < count && stream.status() == QDataStream::Ok) {
    QByteArray text;
    stream >> text;
    texts << QString::fromUtf8(text);
  }
  return texts;
}

QStringList flattened(const QVariantMap& map) {
  QStringList texts;
  for (auto item = map.cbegin(); item != map.cend(); ++item)
    texts << item.key() << item.value().toString();
  return texts;
}

QVariantMap mapFrom(const QStringList& texts) {
  QVariantMap map;
  for (qsizetype i = 0; i + 1 < texts.size(); i += 2)
    map.insert(texts[i], texts[i + 1]);
  return map;
}

}  // namespace

QByteArray frame(const InstanceRequest& request) {
  QByteArray bytes(frameHeaderSize, '\0');
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream.setVersion(QDataStream::Qt_6_0);
  stream << quint64(0) << static_cast<quint8>(request.kind);
  writeTexts(stream, request.texts);
  writeTexts(stream, flattened(request.platformData));
  qToBigEndian<quint64>(bytes.size() - frameHeaderSize, bytes.data());
  return bytes;
}

quint64 frameBodyLength(const QByteArray& header) {
  return qFromBigEndian<quint64>(header.constData());
}

std::optional<InstanceRequest> requestFromBody(const QByteArray& body) {
  QDataStream stream(body);
  stream.setVersion(QDataStream::Qt_6_0);
  quint8 kind = 0;
  stream >> kind;
  InstanceRequest request{static_cast<InstanceRequest::Kind>(kind), readTexts(stream), {}};
  request.platformData = mapFrom(readTexts(stream));
  const bool known = kind <= static_cast<quint8>(InstanceRequest::Kind::Action);
  const bool named = request.kind != InstanceRequest::Kind::Action || request.texts.size() == 1;
  if (stream.status() != QDataStream::Ok || !stream.atEnd() || !known || !named)
    return std::nullopt;
  return request;
}

}  // namespace desktop
