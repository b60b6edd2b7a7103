#include <QFileDialog>
#include <QMenuBar>

#include "delivery/CVUtils.h"
#include "intake/CVAppDelegate.h"
#include "platform/desktop/BrowserOpener.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVObjectRepository.h"
#include "ui/window/CVMainWindowController.h"
#include "ui/window/HelpWindow.h"
#include "ui/window/QueueActions.h"
#include "ui_CVMainWindowController.h"

using namespace Qt::StringLiterals;

namespace {

void capture(const std::shared_ptr<CVAppDelegate>& delegate, void (CVAppDelegate::*command)()) {
  if (!delegate) return;
  dispatch::globalAsync(dispatch::Priority::High,
                        [delegate, command] { ((*delegate).*command)(); });
}

}  // namespace

void CVMainWindowController::createMenus() {
  createCaptureMenu();
  createQueueMenu();
  createHelpMenu();
}

void CVMainWindowController::createCaptureMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Capture"));
  const auto delegate = services_.delegate;
  menu->addAction(tr("&Paste Addresses"), QKeySequence::Paste, this, [delegate] {
    if (delegate) delegate->onPasteURL();
  });
  menu->addAction(tr("&Open Files…"), QKeySequence::Open, this, &CVMainWindowController::openFiles);
  menu->addSeparator();
  QAction* safari = menu->addAction(tr("From &Safari"), QKeySequence(u"Ctrl+Shift+S"_s), this,
                                    &CVMainWindowController::captureFromSafari);
  connect(menu, &QMenu::aboutToShow, safari, [safari] {
    const auto utils = CVObjectRepository::singleton().getUtils();
    safari->setEnabled(utils && utils->applicationIsRunning(u"com.apple.Safari"_s));
  });
  menu->addAction(tr("From &Chrome"), QKeySequence(u"Ctrl+Shift+C"_s), this,
                  &CVMainWindowController::captureFromChrome);
  menu->addAction(tr("&Mini Browser"), QKeySequence(u"Ctrl+L"_s), this, [this] {
    if (services_.showMiniBrowser) services_.showMiniBrowser();
  });
  menu->addSeparator();
  menu->addAction(tr("P&references…"), QKeySequence(u"Ctrl+,"_s), this,
                  &CVMainWindowController::onShowPreferences);
  menu->addSeparator();
  menu->addAction(tr("Close &Window"), QKeySequence::Close, this, &QWidget::close);
  menu->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);
}

void CVMainWindowController::createQueueMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Queue"));
  const auto add = [this, menu](const QString& text, const QString& keys,
                                void (CVAppDelegate::*command)()) {
    return menu->addAction(text, QKeySequence(keys), this, [this, command] {
      if (services_.delegate) ((*services_.delegate).*command)();
    });
  };
  QueueActions& actions = *queueActions_;
  actions.processAll = add(tr("&Process All"), u"Ctrl+Return"_s, &CVAppDelegate::processAll);
  menu->addSeparator();
  actions.saveVector =
      add(tr("&Save All as One PDF…"), u"Ctrl+S"_s, &CVAppDelegate::saveAsMultipagePDFVector);
  actions.emailVector =
      add(tr("&Mail All as One PDF"), u"Ctrl+M"_s, &CVAppDelegate::emailAsMultipagePDFVector);
  actions.saveImage = add(tr("Save All as One PDF of P&ictures…"), u"Ctrl+Alt+S"_s,
                          &CVAppDelegate::saveAsMultipagePDFImage);
  actions.emailImage = add(tr("Mail All as One PDF of Pic&tures"), u"Ctrl+Alt+M"_s,
                           &CVAppDelegate::emailAsMultipagePDFImage);
  menu->addSeparator();
  actions.clearCompleted = add(tr("&Clear Completed"), u"Ctrl+K"_s, &CVAppDelegate::clearCompleted);
  actions.clearAll = add(tr("Clear &All"), u"Ctrl+Shift+K"_s, &CVAppDelegate::clearAll);
  menu->addSeparator();
  actions.warnings = menu->addAction(tr("Show &Warnings"), QKeySequence(u"Ctrl+Shift+W"_s), this,
                                     &CVMainWindowController::showWarnings);
  updateMenus();
}

void CVMainWindowController::updateMenus() {
  const QueueActions& actions = *queueActions_;
  for (QAction* merge :
       {actions.saveVector, actions.emailVector, actions.saveImage, actions.emailImage}) {
    merge->setEnabled(batchState_.enableBatch);
  }
  actions.processAll->setEnabled(batchState_.enableProcessAll);
  actions.clearAll->setEnabled(batchState_.enableClearAll);
  actions.clearCompleted->setEnabled(batchState_.enableClearCompleted);
  actions.warnings->setEnabled(layout_->warningButton->isVisibleTo(this));
}

void CVMainWindowController::createHelpMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Help"));
  menu->addAction(tr("Corvalis &Help"), QKeySequence::HelpContents, this,
                  &CVMainWindowController::onShowHelp);
  if (!services_.feedbackPage.isEmpty()) {
    menu->addAction(tr("Send &Feedback"), this, &CVMainWindowController::onFeedback);
  }
  if (!services_.homePage.isEmpty()) {
    menu->addAction(tr("&Maplebrook on the Web"), this, &CVMainWindowController::onMaplebrook);
  }
}

void CVMainWindowController::onFeedback() {
  if (services_.browser) services_.browser->open(services_.feedbackPage);
}

void CVMainWindowController::onMaplebrook() {
  if (services_.browser) services_.browser->open(services_.homePage);
}

void CVMainWindowController::onShowHelp() {
  if (!helpWindow_) helpWindow_ = new HelpWindow(this);
  helpWindow_->makeKeyAndOrderFront();
}

void CVMainWindowController::captureFromSafari() {
  capture(services_.delegate, &CVAppDelegate::onCaptureFromSafari);
}

void CVMainWindowController::captureFromChrome() {
  capture(services_.delegate, &CVAppDelegate::onCaptureFromChrome);
}

void CVMainWindowController::onShowPreferences() {
  if (!preferencesWindow_) {
    preferencesWindow_ = new CVPreferencesWindowController(services_.dropboxAccount, this);
  }
  preferencesWindow_->makeKeyAndOrderFront();
}

void CVMainWindowController::openFiles() {
  auto* panel = new QFileDialog(this, tr("Open Files"));
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setFileMode(QFileDialog::ExistingFiles);
  panel->setLabelText(QFileDialog::Accept, tr("Capture"));
  connect(panel, &QFileDialog::filesSelected, this, [this](const QStringList& paths) {
    if (services_.delegate) services_.delegate->dragViewFilesWereDropped(paths);
  });
  panel->open();
}
