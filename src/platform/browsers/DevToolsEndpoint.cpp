#include "platform/browsers/DevToolsEndpoint.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QRegularExpression>
#include <QTcpSocket>

#include "platform/browsers/BrowserError.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

constexpr qint64 longestFile = 4096;
constexpr qsizetype longestList = 16 * 1024 * 1024;

/// Reads until the server has sent as much as it announced, or closes.
Result<QByteArray> readBody(QTcpSocket& socket, QDeadlineTimer deadline) {
  static const QRegularExpression lengthField(u"\r\ncontent-length: *(\\d{1,9})\r\n"_s,
                                              QRegularExpression::CaseInsensitiveOption);
  QByteArray answer;
  while (true) {
    const qsizetype headEnd = answer.indexOf("\r\n\r\n");
    if (headEnd >= 0) {
      const auto length = lengthField.match(QString::fromLatin1(answer.first(headEnd + 2)));
      const qsizetype wanted = length.captured(1).toLongLong();
      if (length.hasMatch() && answer.size() - headEnd - 4 >= wanted)
        return answer.startsWith("HTTP/1.1 200 ")
                   ? Result<QByteArray>(answer.sliced(headEnd + 4, wanted))
                   : browserFailure(NoEndpoint, u"The browser gives no list of its pages."_s);
    }
    const auto left = static_cast<int>(deadline.remainingTime());
    if (answer.size() > longestList || left <= 0 || !socket.waitForReadyRead(left))
      return browserFailure(NoAnswer, u"The browser gave no list of its pages."_s);
    answer += socket.readAll();
  }
}

}  // namespace

QUrl DevToolsEndpoint::address() const {
  return QUrl(u"ws://127.0.0.1:%1%2"_s.arg(port).arg(path));
}

std::optional<DevToolsEndpoint> readEndpoint(const QString& profileFolder) {
  QFile file(profileFolder + u"/DevToolsActivePort"_s);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QStringList lines = QString::fromLatin1(file.read(longestFile)).split(u'\n');
  const quint16 port = lines.value(0).trimmed().toUShort();
  const QString path = lines.value(1).trimmed();
  static const QRegularExpression browserPath(u"^/devtools/browser/[0-9A-Za-z-]{1,100}$"_s);
  if (port == 0 || !browserPath.match(path).hasMatch()) return std::nullopt;
  return DevToolsEndpoint{port, path};
}

Result<QStringList> targetsByUse(const DevToolsEndpoint& endpoint,
                                 std::chrono::milliseconds limit) {
  const QDeadlineTimer deadline(limit);
  QTcpSocket socket;
  socket.setProxy(QNetworkProxy::NoProxy);
  socket.connectToHost(u"127.0.0.1"_s, endpoint.port);
  if (!socket.waitForConnected(static_cast<int>(limit.count())))
    return browserFailure(NoEndpoint, socket.errorString());
  socket.write("GET /json/list HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(endpoint.port) +
               "\r\nConnection: close\r\n\r\n");
  const auto body = readBody(socket, deadline);
  if (!body) return tl::unexpected(body.error());
  QStringList identifiers;
  for (const auto& target : QJsonDocument::fromJson(*body).array())
    identifiers << target.toObject().value(u"id"_s).toString();
  return identifiers;
}

}  // namespace browsers
