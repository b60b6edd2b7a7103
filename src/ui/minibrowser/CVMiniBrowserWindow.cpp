#include "ui/minibrowser/CVMiniBrowserWindow.h"

#include <QCloseEvent>
#include <QJsonArray>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

#include "delivery/CVUtils.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/web/Engine.h"
#include "settings/CVObjectRepository.h"
#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"
#include "ui/minibrowser/PageQuestions.h"
#include "ui/minibrowser/PageReader.h"
#include "ui_CVMiniBrowserWindowController.h"

using namespace Qt::StringLiterals;

std::shared_ptr<CVMiniBrowserWindow> CVMiniBrowserWindow::create(
    std::shared_ptr<web::Engine> engine) {
  std::shared_ptr<CVMiniBrowserWindow> window(new CVMiniBrowserWindow(std::move(engine)));
  window->makePage();
  return window;
}

CVMiniBrowserWindow::CVMiniBrowserWindow(std::shared_ptr<web::Engine> engine)
    : layout_(std::make_unique<Ui::CVMiniBrowserWindowController>()), engine_(std::move(engine)) {
  layout_->setupUi(this);
  windowDidLoad();
}

CVMiniBrowserWindow::~CVMiniBrowserWindow() = default;

void CVMiniBrowserWindow::windowDidLoad() {
  setWindowIcon(ui::applicationIcon());
  setUpSnapButton();
  setUpMenu();
  layout_->messageLabel->setFont(ui::textFont(ui::TextSize::Secondary));
  layout_->messageLabel->hide();
  questions_ = std::make_shared<PageQuestions>(*layout_->webView);
  connect(layout_->urlTextField, &QLineEdit::returnPressed, this,
          &CVMiniBrowserWindow::onURLEditingEnded);
  connect(layout_->snapButton, &CVHoverButton::clicked, this, &CVMiniBrowserWindow::onSnap);
  connect(layout_->webView, &LivePageView::backRequested, this, &CVMiniBrowserWindow::onBack);
  connect(layout_->webView, &LivePageView::reloadRequested, this, &CVMiniBrowserWindow::onReload);
}

void CVMiniBrowserWindow::setUpSnapButton() {
  const QIcon image = ui::namedIcon(u"icon-save-inactive-light@2x.png"_s);
  layout_->snapButton->setIcon(image);
  layout_->snapButton->setDefaultImage(image);
  layout_->snapButton->setHoverImage(ui::namedIcon(u"icon-save-active-light@2x.png"_s));
  layout_->snapButton->setEnabled(false);
}

/// The commands belong to the window as well, so that their keys work while the menu is closed.
void CVMiniBrowserWindow::setUpMenu() {
  auto* menu = new QMenu(this);
  LivePageView* page = layout_->webView;
  const auto add = [this, menu](const QString& text, const QList<QKeySequence>& keys, auto* object,
                                auto operation) {
    QAction* action = menu->addAction(text);
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, object, operation);
    addAction(action);
  };
  add(tr("Back"), {Qt::ALT | Qt::Key_Left, Qt::Key_Back}, this, &CVMiniBrowserWindow::onBack);
  add(tr("Reload"), {Qt::CTRL | Qt::Key_R, Qt::Key_F5}, this, &CVMiniBrowserWindow::onReload);
  menu->addSeparator();
  add(tr("Zoom in"), {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal}, page,
      &LivePageView::zoomIn);
  add(tr("Zoom out"), {Qt::CTRL | Qt::Key_Minus}, page, &LivePageView::zoomOut);
  add(tr("Actual size"), {Qt::CTRL | Qt::Key_0}, page, &LivePageView::resetZoom);
  menu->addSeparator();
  add(tr("Edit address"), {Qt::CTRL | Qt::Key_L, Qt::Key_F6}, this, [this] {
    layout_->urlTextField->setFocus(Qt::ShortcutFocusReason);
    layout_->urlTextField->selectAll();
  });
  add(tr("Clear cookies…"), {}, this, &CVMiniBrowserWindow::onClearCookies);
  add(tr("Close"), {QKeySequence(QKeySequence::Close)}, this, &QWidget::close);
  layout_->menuButton->setMenu(menu);
  layout_->menuButton->setIcon(ui::glyphIcon(u"settings"_s, ui::Theme::current().secondaryText));
}

void CVMiniBrowserWindow::setDelegate(
    std::weak_ptr<CVMiniBrowserWindowControllerDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void CVMiniBrowserWindow::makeKeyAndOrderFront() {
  show();
  raise();
  activateWindow();
}

void CVMiniBrowserWindow::closeEvent(QCloseEvent* event) {
  webView_->stopLoading();
  QWidget::closeEvent(event);
}

/// The theme may change while the window stands.
void CVMiniBrowserWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::StyleChange) {
    layout_->menuButton->setIcon(ui::glyphIcon(u"settings"_s, ui::Theme::current().secondaryText));
    showAddressLook(addressLook_, layout_->messageLabel->text());
  }
  QWidget::changeEvent(event);
}

void CVMiniBrowserWindow::onSnap() {
  webView_->stopLoading();
  hide();
  const auto delegate = delegate_.lock();
  if (!delegate) return;
  readPage(webView_, [self = shared_from_this(), delegate](const PageContents& contents) {
    const QUrl url = self->webView_->mainFrameURL();
    const auto utils = CVObjectRepository::singleton().getUtils();
    // Merging a large page takes its time.
    dispatch::globalAsync(dispatch::Priority::High, [=] {
      const auto document =
          utils ? utils->mergePageCode(contents.markup, contents.styles, contents.frames)
                : contents.markup;
      dispatch::mainAsync(
          [=] { delegate->miniBrowserSnapWithURL(*self, url, document, contents.size); });
    });
  });
}

void CVMiniBrowserWindow::onClearCookies() {
  auto* question = new QMessageBox(this);
  question->setAttribute(Qt::WA_DeleteOnClose);
  question->setWindowTitle(tr("Clear cookies"));
  question->setText(tr("Clear the cookies of all sites?"));
  question->setInformativeText(
      tr("You will be logged out of every site that you use in Corvalis."));
  QPushButton* clear = question->addButton(tr("Clear"), QMessageBox::DestructiveRole);
  question->setDefaultButton(question->addButton(QMessageBox::Cancel));
  connect(clear, &QPushButton::clicked, this, [this] {
    if (const auto& live = layout_->webView->liveView()) live->clearCookies();
  });
  question->open();
}

/// The page before this one, where the engine remembers one.
void CVMiniBrowserWindow::onBack() {
  webView_->page()->send(
      u"Page.getNavigationHistory"_s, {},
      [weak = std::weak_ptr(webView_->page())](const Result<QJsonObject>& history) {
        const auto page = weak.lock();
        if (!page || !history) return;
        const int before = (*history)[u"currentIndex"].toInt() - 1;
        const QJsonObject entry = (*history)[u"entries"].toArray().at(before).toObject();
        // The first entry is the empty page that every page of the engine begins with.
        if (before < 0 || entry[u"url"].toString() == u"about:blank") return;
        page->send(u"Page.navigateToHistoryEntry"_s, {{u"entryId"_s, entry[u"id"]}});
      });
}
