#pragma once

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "platform/base/Error.h"
#include "platform/dispatch/Timer.h"
#include "platform/rendering/StyleText.h"
#include "platform/web/Session.h"

namespace web {
class Page;
}

namespace rendering {

/// Freezes what a page's styles take from the viewport at its values on the screen, for the time of
/// a print, where the paper is the viewport: style sheets of every origin, of shadow trees and of
/// scripts, style attributes and media conditions. The page's inline styles come back with
/// `FlatDocument::restore`, its sheets with `restore`. Main thread only.
class SettledStyles : public std::enable_shared_from_this<SettledStyles> {
 public:
  using Settled = std::function<void(Result<std::shared_ptr<SettledStyles>>)>;

  static void settle(const std::shared_ptr<web::Page>& page, const ScreenViewport& viewport,
                     Settled callback);

  void restore(std::function<void()> then);

 private:
  struct Sheet {
    QString identifier;
    QString text;
    std::optional<QString> settled;
  };

  SettledStyles(std::shared_ptr<web::Page> page, ScreenViewport viewport)
      : page_(std::move(page)), viewport_(std::move(viewport)) {}

  void start();
  void follow();
  void noteSheet(const QJsonObject& header);
  void readInlineStyles();
  void readSheets();
  void askConditions();
  void change(const QJsonArray& answers);
  void changeSheets();
  bool knownBefore(size_t index) const;
  void afterSheets();
  void waitForImports(std::function<void()> then);
  void checkImports(QDeadlineTimer deadline, std::function<void()> then);
  void changeInlineStyles();
  void finish(MaybeError error);
  void setText(const Sheet& sheet, const QString& text, std::function<void()> then);

  std::shared_ptr<web::Page> page_;
  ScreenViewport viewport_;
  Settled callback_;
  std::vector<web::Subscription> subscriptions_;
  std::vector<Sheet> sheets_;
  /// Sheets before this one have been settled.
  size_t firstUnsettled_ = 0;
  int rounds_ = 0;
  /// What the page has now, and had at first.
  QSet<QString> live_;
  qsizetype liveAtFirst_ = 0;
  std::unique_ptr<dispatch::Timer> poll_;
  QStringList inlineStyles_;
  QStringList media_;
  QStringList conditions_;
};

}  // namespace rendering
