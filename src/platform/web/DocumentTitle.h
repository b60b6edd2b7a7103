#pragma once

#include <QString>
#include <functional>

#include "platform/web/PageObservers.h"
#include "platform/web/Session.h"

namespace web {

/// The title of the document that a page shows. The browser does not tell when a script changes it,
/// so it is read whenever the page comes to rest. Part of its page.
class DocumentTitle {
 public:
  DocumentTitle(Page& page, Session& session, PageObservers& observers);

  const QString& text() const { return text_; }

  /// The page shows another document. What was being read is dropped.
  void clear();

  /// Tells the observers of a new title that is not empty, then calls `then`, which may be empty.
  void read(std::function<void()> then);

 private:
  void take(const Result<QJsonObject>& reply);

  Page& page_;
  Session& session_;
  PageObservers& observers_;
  QString text_;
  /// Number of the document.
  int document_ = 0;
};

}  // namespace web
