#pragma once

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>
#include <QWebSocketServer>

/// A browser's end of the DevTools protocol on loopback, with the pages it is given: just what the
/// search for the front tab and the page programs ask for.
class FakeDevTools {
 public:
  enum Sight { Hidden, Visible, Focused };

  FakeDevTools();

  void addPage(const QString& target, const QString& address, Sight sight);
  /// A target of type "tab", as newer browsers list them.
  void addTab(const QString& address, bool isActive);
  /// The page accepts a session and answers nothing.
  void hang(const QString& target) { hanging_ << target; }

  quint16 port() const { return server_.serverPort(); }
  int connections() const { return connections_; }
  /// The pages that were attached to, each once.
  const QStringList& visited() const { return visited_; }
  void disconnectAll();

 private:
  void take(QWebSocket& socket, const QString& text);
  QJsonObject evaluated(const QString& target, const QString& program) const;

  QWebSocketServer server_;
  QJsonArray targets_;
  QHash<QString, Sight> sights_;
  QStringList hanging_, visited_;
  QList<QWebSocket*> sockets_;
  int connections_ = 0;
};
