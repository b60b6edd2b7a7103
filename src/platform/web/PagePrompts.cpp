#include "platform/web/PagePrompts.h"

#include <QJsonArray>

#include "platform/web/AnswerOnce.h"
#include "platform/web/Page.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

DialogRequest::Kind dialogKind(const QString& type) {
  if (type == u"confirm") return DialogRequest::Kind::Confirm;
  if (type == u"prompt") return DialogRequest::Kind::Prompt;
  if (type == u"beforeunload") return DialogRequest::Kind::LeavePage;
  return DialogRequest::Kind::Alert;
}

}  // namespace

/// A page without a delegate has the answers that a delegate gives by default.
std::shared_ptr<PagePromptDelegate> PagePrompts::delegate() const {
  if (auto delegate = delegate_.lock()) return delegate;
  static const auto unseen = std::make_shared<PagePromptDelegate>();
  return unseen;
}

void PagePrompts::on(const std::shared_ptr<Session>& session, const QString& method,
                     Handler handler) {
  subscriptions_.push_back(session->addEventHandler(
      method, [this, weak = std::weak_ptr(session), page = page_.weak_from_this(),
               handler](const QJsonObject& event) {
        const auto asking = weak.lock();
        const auto held = page.lock();
        if (asking && held) (this->*handler)(asking, event);
      }));
}

void PagePrompts::observe(const std::shared_ptr<Session>& session) {
  on(session, u"Page.javascriptDialogOpening"_s, &PagePrompts::askDialog);
  on(session, u"Page.fileChooserOpened"_s, &PagePrompts::askFiles);
  on(session, u"Page.windowOpen"_s, &PagePrompts::askWindow);
}

void PagePrompts::askDialog(const std::shared_ptr<Session>& session, const QJsonObject& event) {
  const DialogRequest request{dialogKind(event[u"type"].toString()), event[u"message"].toString(),
                              event[u"defaultPrompt"].toString(), QUrl(event[u"url"].toString())};
  const auto answer = [weak = std::weak_ptr(session)](const DialogAnswer& given) {
    const auto asking = weak.lock();
    if (!asking) return;
    asking->send(u"Page.handleJavaScriptDialog"_s,
                 {{u"accept"_s, given.choice == DialogAnswer::Choice::Accepted},
                  {u"promptText"_s, given.text}});
  };
  delegate()->pageAsksDialog(page_, request, answerOnce<DialogAnswer>(answer, {}));
}

void PagePrompts::askFiles(const std::shared_ptr<Session>& session, const QJsonObject& event) {
  const bool many = event[u"mode"].toString() == u"selectMultiple";
  const FileRequest request{many ? FileRequest::Count::Many : FileRequest::Count::One};
  const auto answer = [weak = std::weak_ptr(session),
                       node = event[u"backendNodeId"].toInt()](const QStringList& paths) {
    const auto asking = weak.lock();
    if (!asking || paths.isEmpty()) return;
    asking->send(u"DOM.setFileInputFiles"_s,
                 {{u"files"_s, QJsonArray::fromStringList(paths)}, {u"backendNodeId"_s, node}});
  };
  delegate()->pageAsksFiles(page_, request, answerOnce<QStringList>(answer, {}));
}

void PagePrompts::askWindow(const std::shared_ptr<Session>&, const QJsonObject& event) {
  delegate()->pageAsksWindow(page_, QUrl(event[u"url"].toString()));
}

void PagePrompts::askCredentials(const CredentialsRequest& request,
                                 const AnswerHandler<std::optional<Credentials>>& answer) {
  delegate()->pageAsksCredentials(page_, request,
                                  answerOnce<std::optional<Credentials>>(answer, std::nullopt));
}

void PagePrompts::askChoice(const ChoiceRequest& request,
                            const AnswerHandler<std::optional<int>>& answer) {
  delegate()->pageAsksChoice(page_, request, answerOnce<std::optional<int>>(answer, std::nullopt));
}

}  // namespace web
