#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

/// The general pasteboard, read when the user pastes. Main thread.
class CVPasteboard {
 public:
  virtual ~CVPasteboard() = default;

  /// The plain text of every item that carries one.
  virtual QStringList plainTexts() const = 0;

  /// The addresses on the pasteboard that name files; no others.
  virtual QList<QUrl> fileURLs() const = 0;
};
