#pragma once

#include <QString>
#include <QUrl>

#include "platform/base/Error.h"

namespace web {

class Page;

/// A frame of a page. The main frame's identifier stays the same for the page's life.
struct Frame {
  enum class Kind { Main, Child };

  QString identifier;
  Kind kind = Kind::Main;
  /// Address of the document that the frame shows; before a commit the one that is asked for.
  QUrl url;

  bool isMain() const { return kind == Kind::Main; }
};

/// The answer to a main request.
struct Response {
  QUrl url;
  /// HTTP status; 0 where the scheme has none.
  int status = 0;
  QString mimeType;
};

/// Whether the document that failed had begun to replace the one before it.
enum class LoadPhase { Provisional, Committed };

/// Told what happens to a page, always on the main queue. All operations may be left out. The page
/// holds its observers weakly, and an observer may close or drop the page from within.
class PageObserver {
 public:
  virtual ~PageObserver() = default;

  virtual void pageStartedProvisionalLoad(Page&, const Frame&) {}
  virtual void pageReceivedRedirect(Page&, const Frame&) {}
  /// Main frame only.
  virtual void pageReceivedResponse(Page&, const Response&) {}
  virtual void pageCommittedLoad(Page&, const Frame&) {}
  /// The main document's title; never empty.
  virtual void pageReceivedTitle(Page&, const QString&) {}
  /// `length` bytes of a resource of the frame's document have come; `resource` names the request.
  virtual void pageReceivedData(Page&, const Frame&, const QString& /*resource*/,
                                qint64 /*length*/) {}
  /// 0 to 1; never falls during a load.
  virtual void pageChangedProgress(Page&, double) {}
  /// The load event of the frame's document. The title has been reported before.
  virtual void pageFinishedLoad(Page&, const Frame&) {}
  /// The main document's load has failed; exactly one of this and the finish ends a load.
  virtual void pageFailedLoad(Page&, LoadPhase, const Error&) {}
  virtual void pageChangedLoading(Page&, bool /*loading*/) {}
  /// The page's process has ended. Before this, the failure of a load under way is reported.
  virtual void pageCrashed(Page&, const Error&) {}
};

}  // namespace web
