#include "ui/minibrowser/PageQuestions.h"

#include <QActionGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include "platform/web/Page.h"
#include "ui/minibrowser/LivePageView.h"

using namespace Qt::StringLiterals;
using web::DialogAnswer;
using web::DialogRequest;

namespace {

/// From this one on a page's dialogues can be silenced.
constexpr int dialogsBeforeSilence = 3;
constexpr int longestMessage = 4000;
constexpr std::chrono::seconds useBeforeWindow{2};

QString asker(const QUrl& url) {
  return url.host().isEmpty() ? QDialog::tr("This page") : url.host();
}

/// A sheet with a text above and the named buttons below; what lies between is added by its user.
class Sheet : public QDialog {
 public:
  Sheet(QWidget* window, const QString& title, const QString& text) : QDialog(window) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setWindowTitle(title);
    setMinimumWidth(320);
    auto* message = new QLabel(text.left(longestMessage));
    // A page's text is never taken for markup.
    message->setTextFormat(Qt::PlainText);
    message->setWordWrap(true);
    message->setObjectName(u"message"_s);
    rows_ = new QFormLayout(this);
    rows_->setContentsMargins(24, 20, 24, 20);
    rows_->setVerticalSpacing(12);
    rows_->addRow(message);
  }

  QLineEdit* addField(const QString& label, const QString& text = {}) {
    auto* field = new QLineEdit(text);
    field->setAccessibleName(label.isEmpty() ? windowTitle() : label);
    label.isEmpty() ? rows_->addRow(field) : rows_->addRow(label, field);
    return field;
  }
  QCheckBox* addCheckBox(const QString& text) {
    auto* box = new QCheckBox(text);
    rows_->addRow(box);
    return box;
  }

  enum class Buttons { Accept, AcceptAndCancel };
  void open(Buttons offered, const QString& acceptLabel, std::function<void(bool)> closed) {
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(acceptLabel, QDialogButtonBox::AcceptRole);
    if (offered == Buttons::AcceptAndCancel) buttons->addButton(QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::finished, this,
            [closed = std::move(closed)](int result) { closed(result == QDialog::Accepted); });
    rows_->addRow(buttons);
    QDialog::open();
  }

 private:
  QFormLayout* rows_ = nullptr;
};

QString dialogText(const DialogRequest& request) {
  if (request.kind != DialogRequest::Kind::LeavePage) return request.message;
  return QDialog::tr("Leave this page? What you have typed may be lost.");
}

}  // namespace

PageQuestions::PageQuestions(LivePageView& view) : view_(&view) {}

void PageQuestions::forgetSilence() {
  dialogs_ = 0;
  *silenced_ = false;
}

void PageQuestions::pageAsksDialog(web::Page& page, const DialogRequest& request,
                                   const web::AnswerHandler<DialogAnswer>& answer) {
  using Kind = DialogRequest::Kind;
  if (!view_ || !view_->isVisible() || *silenced_)
    return PagePromptDelegate::pageAsksDialog(page, request, answer);
  auto* sheet = new Sheet(view_->window(), asker(request.url), dialogText(request));
  QLineEdit* field =
      request.kind == Kind::Prompt ? sheet->addField({}, request.defaultText) : nullptr;
  QCheckBox* silence = nullptr;
  if (++dialogs_ >= dialogsBeforeSilence)
    silence = sheet->addCheckBox(QDialog::tr("Let this page ask no more"));
  const auto closed = [=, silenced = silenced_, kind = request.kind](bool accepted) {
    if (silence) *silenced = silence->isChecked();
    const bool yes = accepted || kind == Kind::Alert;
    answer({yes ? DialogAnswer::Choice::Accepted : DialogAnswer::Choice::Dismissed,
            field ? field->text() : QString()});
  };
  const QString accept = request.kind == Kind::LeavePage ? QDialog::tr("Leave") : QDialog::tr("Ok");
  const auto buttons =
      request.kind == Kind::Alert ? Sheet::Buttons::Accept : Sheet::Buttons::AcceptAndCancel;
  sheet->open(buttons, accept, closed);
}

void PageQuestions::pageAsksCredentials(
    web::Page&, const web::CredentialsRequest& request,
    const web::AnswerHandler<std::optional<web::Credentials>>& answer) {
  if (!view_ || !view_->isVisible()) return answer(std::nullopt);
  QString text = request.asker == web::CredentialsRequest::Asker::Proxy
                     ? QDialog::tr("The proxy server asks for a name and a password.")
                     : QDialog::tr("“%1” asks for a name and a password.").arg(asker(request.url));
  if (!request.realm.isEmpty()) text += u"\n"_s + request.realm;
  auto* sheet = new Sheet(view_->window(), QDialog::tr("Log in"), text);
  QLineEdit* name = sheet->addField(QDialog::tr("Name:"));
  QLineEdit* password = sheet->addField(QDialog::tr("Password:"));
  password->setEchoMode(QLineEdit::Password);
  sheet->open(Sheet::Buttons::AcceptAndCancel, QDialog::tr("Log in"), [=](bool accepted) {
    if (accepted)
      answer(web::Credentials{name->text(), password->text()});
    else
      answer(std::nullopt);
  });
}

void PageQuestions::pageAsksFiles(web::Page&, const web::FileRequest& request,
                                  const web::AnswerHandler<QStringList>& answer) {
  if (!view_ || !view_->isVisible()) return answer({});
  auto* panel = new QFileDialog(view_->window(), QDialog::tr("Choose"));
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setWindowModality(Qt::WindowModal);
  panel->setDirectory(*folder_);
  panel->setFileMode(request.count == web::FileRequest::Count::Many ? QFileDialog::ExistingFiles
                                                                    : QFileDialog::ExistingFile);
  QObject::connect(panel, &QFileDialog::finished, panel,
                   [panel, answer, folder = folder_](int result) {
                     if (result == QDialog::Accepted) *folder = panel->directory().path();
                     answer(result == QDialog::Accepted ? panel->selectedFiles() : QStringList());
                   });
  panel->open();
}

void PageQuestions::pageAsksChoice(web::Page&, const web::ChoiceRequest& request,
                                   const web::AnswerHandler<std::optional<int>>& answer) {
  if (!view_ || !view_->isVisible()) return answer(std::nullopt);
  auto* menu = new QMenu(view_);
  menu->setObjectName(u"choices"_s);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->setMinimumWidth(qRound(request.area.width()));
  auto* group = new QActionGroup(menu);
  for (int index = 0; index < int(request.options.size()); ++index) {
    const auto& option = request.options[size_t(index)];
    QString text = option.text;
    QAction* action = group->addAction(text.replace(u'&', u"&&"_s));
    action->setCheckable(true);
    action->setChecked(option.selected);
    action->setEnabled(option.enabled);
    // An answer that was not given when the menu is gone counts as a no.
    QObject::connect(action, &QAction::triggered, menu, [answer, index] { answer(index); });
  }
  menu->addActions(group->actions());
  menu->setActiveAction(group->checkedAction());
  menu->popup(view_->mapToGlobal(request.area.bottomLeft().toPoint()));
}

/// There is one window: what the user opens replaces the page, what a script opens by itself does
/// not come.
void PageQuestions::pageAsksWindow(web::Page& page, const QUrl& url) {
  const bool isPage = url.scheme() == u"http" || url.scheme() == u"https";
  if (isPage && view_ && view_->wasUsedWithin(useBeforeWindow)) page.load({url});
}
