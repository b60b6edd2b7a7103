#include "platform/web/MarkupSource.h"

#include <QDir>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryFile>

#include "platform/base/Identifier.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

class FileSource : public MarkupSource {
 public:
  explicit FileSource(const QByteArray& markup)
      : file_(QDir::temp().filePath(u"corvalis-document-XXXXXX.html"_s)) {
    // The mark makes the browser read UTF-8, whatever the document says.
    written_ = file_.open() && file_.write("\xEF\xBB\xBF") == 3 &&
               file_.write(markup) == markup.size() && file_.flush();
  }
  bool isReady() const { return written_; }
  QUrl url() const override { return QUrl::fromLocalFile(file_.fileName()); }

 private:
  QTemporaryFile file_;
  bool written_ = false;
};

/// Answers one path that nobody can guess, on loopback, with the document.
class LoopbackSource : public MarkupSource {
 public:
  explicit LoopbackSource(QByteArray markup)
      : markup_(std::move(markup)), path_(u'/' + newUniversallyUniqueIdentifier()) {
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
  }
  bool listen() { return server_.listen(QHostAddress::LocalHost); }
  QUrl url() const override {
    return QUrl(u"http://127.0.0.1:%1%2"_s.arg(QString::number(server_.serverPort()), path_));
  }

 private:
  static constexpr qint64 requestLimit = 64 << 10;

  void accept() {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
      QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
      QObject::connect(socket, &QTcpSocket::readyRead, &server_,
                       [this, socket] { answer(*socket); });
    }
  }

  void answer(QTcpSocket& socket) {
    const QByteArray request = socket.peek(requestLimit);
    if (!request.contains("\r\n\r\n")) {
      if (request.size() >= requestLimit) socket.abort();
      return;
    }
    socket.readAll();
    if (!request.startsWith("GET " + path_.toLatin1() + ' ')) return socket.abort();
    socket.write(
        "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\nCache-Control: no-store\r\n"
        "Connection: close\r\nContent-Length: " +
        QByteArray::number(markup_.size()) + "\r\n\r\n");
    socket.write(markup_);
    socket.disconnectFromHost();
  }

  QByteArray markup_;
  QString path_;
  QTcpServer server_;
};

}  // namespace

std::unique_ptr<MarkupSource> MarkupSource::create(const QByteArray& markup, const QUrl& pageURL) {
  if (pageURL.isLocalFile()) {
    auto source = std::make_unique<FileSource>(markup);
    if (!source->isReady()) return nullptr;
    return source;
  }
  auto source = std::make_unique<LoopbackSource>(markup);
  if (!source->listen()) return nullptr;
  return source;
}

}  // namespace web
