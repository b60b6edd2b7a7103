#pragma once

#include <QRectF>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <optional>
#include <vector>

namespace web {

class Page;

/// What a script asks the user (HTML Standard, 8.8 Timers and user prompts, 7.4.4 beforeunload).
struct DialogRequest {
  enum class Kind { Alert, Confirm, Prompt, LeavePage };
  Kind kind = Kind::Alert;
  QString message;
  QString defaultText;
  QUrl url;
};
struct DialogAnswer {
  enum class Choice { Accepted, Dismissed };
  Choice choice = Choice::Dismissed;
  /// Of a prompt.
  QString text = {};
};

/// A server or proxy asks for a name and a password (RFC 9110, section 11).
struct CredentialsRequest {
  enum class Asker { Server, Proxy };
  Asker asker = Asker::Server;
  QUrl url;
  QString realm;
};
struct Credentials {
  QString name;
  QString password;
};

struct FileRequest {
  enum class Count { One, Many };
  Count count = Count::One;
};

/// A `select` element wants its list shown. The area is in CSS pixels of the viewport.
struct ChoiceRequest {
  struct Option {
    QString text;
    bool enabled = true;
    bool selected = false;
  };
  QRectF area;
  std::vector<Option> options;
};

template <class Answer>
using AnswerHandler = std::function<void(const Answer&)>;

/// Answers for the user of a page that is looked at. Called on the main queue; each answer is given
/// once, now or later, and an answer handler that is dropped unused counts as a no. What is left
/// out is answered as for a page that nobody sees: alerts are taken note of, questions get a no.
class PagePromptDelegate {
 public:
  virtual ~PagePromptDelegate() = default;

  virtual void pageAsksDialog(Page&, const DialogRequest& request,
                              const AnswerHandler<DialogAnswer>& answer) {
    using Kind = DialogRequest::Kind;
    const bool accept = request.kind == Kind::Alert || request.kind == Kind::LeavePage;
    answer({accept ? DialogAnswer::Choice::Accepted : DialogAnswer::Choice::Dismissed});
  }
  virtual void pageAsksCredentials(Page&, const CredentialsRequest&,
                                   const AnswerHandler<std::optional<Credentials>>& answer) {
    answer(std::nullopt);
  }
  /// An empty list is a no. Paths of files on this computer.
  virtual void pageAsksFiles(Page&, const FileRequest&, const AnswerHandler<QStringList>& answer) {
    answer({});
  }
  /// The index of the chosen option.
  virtual void pageAsksChoice(Page&, const ChoiceRequest&,
                              const AnswerHandler<std::optional<int>>& answer) {
    answer(std::nullopt);
  }
  /// The page wants to open another window; none is opened.
  virtual void pageAsksWindow(Page&, const QUrl&) {}
};

}  // namespace web
