#pragma once

#include <QDir>
#include <QPointer>
#include <QWidget>

#include "platform/web/PagePromptDelegate.h"

class LivePageView;

/// Puts what a page asks to its user, in sheets on the page's window and in menus. Nothing blocks;
/// a question that is closed counts as a no. Main thread.
class PageQuestions : public web::PagePromptDelegate {
 public:
  /// The view is not owned.
  explicit PageQuestions(LivePageView& view);

  /// A page that the user has silenced may speak again.
  void forgetSilence();

  void pageAsksDialog(web::Page& page, const web::DialogRequest& request,
                      const web::AnswerHandler<web::DialogAnswer>& answer) override;
  void pageAsksCredentials(
      web::Page& page, const web::CredentialsRequest& request,
      const web::AnswerHandler<std::optional<web::Credentials>>& answer) override;
  void pageAsksFiles(web::Page& page, const web::FileRequest& request,
                     const web::AnswerHandler<QStringList>& answer) override;
  void pageAsksChoice(web::Page& page, const web::ChoiceRequest& request,
                      const web::AnswerHandler<std::optional<int>>& answer) override;
  void pageAsksWindow(web::Page& page, const QUrl& url) override;

 private:
  QPointer<LivePageView> view_;
  int dialogs_ = 0;
  std::shared_ptr<bool> silenced_ = std::make_shared<bool>(false);
  /// Where files were chosen last.
  std::shared_ptr<QString> folder_ = std::make_shared<QString>(QDir::homePath());
};
