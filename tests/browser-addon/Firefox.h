#pragma once

#include <QJsonObject>
#include <QProcess>
#include <QTcpSocket>
#include <QUrl>
#include <optional>

/// The distribution's Firefox, headless, on a profile of its own in the test's home, with our
/// add-on as a temporary one and its button in the toolbar. It is driven over its own Marionette
/// protocol and reaches no host but this one. It ends, with every process that it has started, when
/// the object does.
class Firefox {
 public:
  Firefox();
  ~Firefox();
  Firefox(const Firefox&) = delete;
  Firefox& operator=(const Firefox&) = delete;

  /// What makes `corvalis integrate` take it for one of the user's browsers.
  static QString userFolder();

  /// Whether it has come up in time, add-on and button in place.
  bool isReady();
  /// Until the page has loaded.
  bool show(const QUrl& page);
  /// A click on the add-on's button.
  void press();
  /// The text on the button of the tab in front.
  QString badge();

 private:
  bool connect();
  bool putButtonInToolbar();
  std::optional<QJsonObject> call(const QString& command, const QJsonObject& parameters);
  QJsonValue runInWindow(const QString& program);
  QByteArray receive();

  QProcess process_;
  QTcpSocket socket_;
  QByteArray received_;
  int lastCall_ = 0;
};
