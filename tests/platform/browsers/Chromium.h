#pragma once

#include <QProcess>
#include <QStringList>
#include <QUrl>

/// The distribution's Chromium, headless, on the test's own profile in the place of a user's. It
/// ends, with every process that it has started, when the object does.
class Chromium {
 public:
  explicit Chromium(const QUrl& start, const QStringList& arguments = {});
  ~Chromium();
  Chromium(const Chromium&) = delete;
  Chromium& operator=(const Chromium&) = delete;

  static QString profileFolder();
  /// Whether its DevTools endpoint has come up in time.
  bool isReady();

 private:
  QProcess process_;
};
