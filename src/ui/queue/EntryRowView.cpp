#include "ui/queue/EntryRowView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QUrl>

#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"
#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"
#include "ui_CVEntryViewController.h"

using namespace Qt::StringLiterals;

namespace ui {
namespace {

constexpr double thumbnailRadius = 6;
constexpr int stateIconSize = 16;

struct StateSign {
  const char16_t* glyph;
  QColor Theme::*colour;
};

StateSign signOf(StateShape shape) {
  switch (shape) {
    case StateShape::Waiting:
      return {u"state-waiting", &Theme::secondaryText};
    case StateShape::Downloading:
      return {u"state-downloading", &Theme::secondaryText};
    case StateShape::Ready:
      return {u"state-ready", &Theme::accent};
    case StateShape::Processing:
      return {u"state-processing", &Theme::secondaryText};
    case StateShape::Done:
      return {u"state-done", &Theme::done};
    case StateShape::Failed:
      return {u"state-failed", &Theme::failed};
  }
  return {u"state-waiting", &Theme::secondaryText};
}

QString themeSuffix() {
  const auto preferences = CVObjectRepository::singleton().getPreferences();
  const bool dark = preferences && preferences->theme() == u"dark"_s;
  return dark ? u"dark@2x.png"_s : u"light@2x.png"_s;
}

void setIcons(CVHoverButton& button, const QString& glyph) {
  const QString suffix = themeSuffix();
  const QIcon idle = namedIcon(u"icon-%1-inactive-%2"_s.arg(glyph, suffix));
  button.setIcon(idle);
  button.setDefaultImage(idle);
  button.setHoverImage(namedIcon(u"icon-%1-active-%2"_s.arg(glyph, suffix)));
}

void name(QWidget& control, const QString& name, const QString& toolTip) {
  control.setAccessibleName(name);
  control.setToolTip(toolTip);
}

}  // namespace

EntryRowView::EntryRowView(QWidget* parent)
    : QWidget(parent), layout_(std::make_unique<Ui::CVEntryViewController>()) {
  layout_->setupUi(this);
  layout_->thumbnailImageView->setCornerRadius(thumbnailRadius);
  setTextFonts();
  nameControls();
  connectControls();
  connect(qApp, &QApplication::focusChanged, this, [this] { showLesserActions(); });
}

/// The focus moves once more while the widgets go, when the layout is gone already.
EntryRowView::~EntryRowView() {
  disconnect(qApp, nullptr, this, nullptr);
  layout_->titleTextField->disconnect(this);
}

void EntryRowView::setTextFonts() {
  layout_->titleTextField->setFont(textFont(TextSize::Title));
  layout_->urlButton->setFont(textFont(TextSize::Body));
  layout_->stateLabel->setFont(textFont(TextSize::Body));
}

void EntryRowView::nameControls() {
  name(*layout_->processButton, tr("Process"), tr("Process this page"));
  name(*layout_->removeButton, tr("Remove"), tr("Remove this page from the queue"));
  name(*layout_->revealButton, tr("Show file"), tr("Show the file in its folder"));
  name(*layout_->adjustButton, tr("Adjust"), tr("Adjust this page in the browser"));
  name(*layout_->upButton, tr("Move up"), tr("Move this page up"));
  name(*layout_->downButton, tr("Move down"), tr("Move this page down"));
  layout_->titleTextField->setAccessibleName(tr("Title"));
  layout_->urlButton->setAccessibleDescription(tr("Opens the page in the browser for adjustment"));
}

void EntryRowView::connectControls() {
  const auto forward = [this](QAbstractButton* button, void (EntryRowView::*signal)()) {
    connect(button, &QAbstractButton::clicked, this, [this, signal] { Q_EMIT(this->*signal)(); });
  };
  forward(layout_->processButton, &EntryRowView::processRequested);
  forward(layout_->removeButton, &EntryRowView::removeRequested);
  forward(layout_->revealButton, &EntryRowView::revealRequested);
  forward(layout_->adjustButton, &EntryRowView::adjustRequested);
  forward(layout_->urlButton, &EntryRowView::adjustRequested);
  forward(layout_->upButton, &EntryRowView::upRequested);
  forward(layout_->downButton, &EntryRowView::downRequested);
  connect(layout_->titleTextField, &QLineEdit::editingFinished, this,
          &EntryRowView::titleEditingFinished);
  connect(layout_->titleTextField, &QLineEdit::returnPressed, this, [this] { setFocus(); });
}

/// Leaving the field without having typed is no edit.
void EntryRowView::titleEditingFinished() {
  if (!layout_->titleTextField->isModified()) return;
  layout_->titleTextField->setModified(false);
  Q_EMIT titleEdited(layout_->titleTextField->text());
}

void EntryRowView::show(const EntryAppearance& appearance, const QString& title,
                        bool titleEditable) {
  appearance_ = appearance;
  TitleField& field = *layout_->titleTextField;
  if (field.text() != title && !field.isModified()) field.setText(title);
  if (!field.hasFocus()) field.setCursorPosition(0);
  field.setReadOnly(!titleEditable);
  field.setFocusPolicy(titleEditable ? Qt::StrongFocus : Qt::NoFocus);
  field.setPlaceholderText(QUrl(appearance.address.value_or(QString())).host());
  layout_->urlButton->setVisible(appearance.address.has_value());
  layout_->urlButton->setAddress(appearance.address.value_or(QString()));
  layout_->urlButton->setEnabled(appearance.addressEnabled);
  layout_->processButton->setVisible(appearance.actionsShown);
  layout_->removeButton->setVisible(appearance.actionsShown);
  layout_->revealButton->setVisible(appearance.revealShown);
  showState();
  setSpinning(appearance.spinning);
  showLesserActions();
  describe();
}

void EntryRowView::showState() {
  const Theme& theme = Theme::current();
  const StateSign sign = signOf(appearance_.shape);
  const QColor colour = theme.*sign.colour;
  layout_->stateLabel->setText(appearance_.stateText);
  QPalette palette = layout_->stateLabel->palette();
  palette.setColor(QPalette::WindowText, appearance_.dimmed ? theme.secondaryText : theme.text);
  layout_->stateLabel->setPalette(palette);
  layout_->stateIcon->setPixmap(
      glyphIcon(QString::fromUtf16(sign.glyph), colour)
          .pixmap(QSize(stateIconSize, stateIconSize), devicePixelRatioF()));
}

void EntryRowView::setThumbnail(const QImage& image) {
  layout_->thumbnailImageView->setImage(image);
}

void EntryRowView::setSpinning(bool spinning) {
  layout_->thumbnailProgressIndicator->setVisible(spinning);
  layout_->busyVeil->setVisible(spinning);
  layout_->thumbnailProgressIndicator->setIndeterminate(spinning && isVisible());
  appearance_.spinning = spinning;
}

/// A spinner that nobody sees does not turn. A style sheet takes a widget's own colours away when
/// it comes into its window.
void EntryRowView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  showState();
  layout_->thumbnailProgressIndicator->setIndeterminate(appearance_.spinning);
}

void EntryRowView::setMovable(bool up, bool down) {
  movableUp_ = up;
  movableDown_ = down;
  layout_->upButton->setEnabled(up);
  layout_->downButton->setEnabled(down);
}

void EntryRowView::updateTheme() {
  layout_->thumbnailImageView->setFrameColor(Theme::current().hairline);
  setIcons(*layout_->processButton, u"save"_s);
  setIcons(*layout_->removeButton, u"delete"_s);
  setIcons(*layout_->revealButton, u"view"_s);
  setIcons(*layout_->adjustButton, u"adjust"_s);
  setIcons(*layout_->upButton, u"up"_s);
  setIcons(*layout_->downButton, u"down"_s);
  showState();
  update();
}

void EntryRowView::prepareForReuse() {
  layout_->titleTextField->setModified(false);
  setSpinning(false);
  hovered_ = false;
}

bool EntryRowView::holdsFocus() const {
  const QWidget* focused = QApplication::focusWidget();
  return focused && (focused == this || isAncestorOf(focused));
}

void EntryRowView::showLesserActions() {
  const bool shown = hovered_ || holdsFocus();
  layout_->upButton->setVisible(shown);
  layout_->downButton->setVisible(shown);
  layout_->adjustButton->setVisible(shown && appearance_.actionsShown);
  update();
}

void EntryRowView::describe() {
  QStringList parts{layout_->titleTextField->text(), appearance_.address.value_or(QString()),
                    appearance_.stateText};
  parts.removeAll(QString());
  setAccessibleName(parts.join(u", "_s));
}

void EntryRowView::enterEvent(QEnterEvent* event) {
  QWidget::enterEvent(event);
  hovered_ = true;
  showLesserActions();
}

void EntryRowView::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  hovered_ = false;
  showLesserActions();
}

void EntryRowView::keyPressEvent(QKeyEvent* event) {
  const bool alt = event->modifiers() & Qt::AltModifier;
  if (event->key() == Qt::Key_Delete && appearance_.actionsShown) {
    Q_EMIT removeRequested();
  } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
             appearance_.actionsShown) {
    Q_EMIT processRequested();
  } else if (event->key() == Qt::Key_F2 && !layout_->titleTextField->isReadOnly()) {
    layout_->titleTextField->setFocus();
    layout_->titleTextField->selectAll();
  } else if (alt && event->key() == Qt::Key_Up) {
    if (movableUp_) Q_EMIT upRequested();
  } else if (alt && event->key() == Qt::Key_Down) {
    if (movableDown_) Q_EMIT downRequested();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void EntryRowView::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::current();
  QPainter painter(this);
  painter.fillRect(rect(), theme.surface);
  painter.fillRect(QRectF(0, height() - 1 / devicePixelRatioF(), width(), 1), theme.hairline);
  if (!hasFocus()) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(theme.accent, 2));
  painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -3), 6, 6);
}

}  // namespace ui
