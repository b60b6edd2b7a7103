#include "platform/web/Engine.h"
#include "ui/look/Theme.h"
#include "ui/minibrowser/CVMiniBrowserWindow.h"
#include "ui/minibrowser/PageQuestions.h"
#include "ui_CVMiniBrowserWindowController.h"

using namespace Qt::StringLiterals;

/// A page ends with the process behind it; the next load then needs another one.
void CVMiniBrowserWindow::makePage() {
  web::PageConfiguration configuration;
  configuration.layoutWidth = layout_->webView->width();
  configuration.viewportHeight = layout_->webView->height();
  configuration.deviceScaleFactor = devicePixelRatioF();
  const auto page = engine_->createPage(configuration);
  page->addObserver(weak_from_this());
  page->setPromptDelegate(questions_);
  webView_ = web::WebView::create(page, layout_->webView->rect());
  webView_->setMaintainsBackForwardList(false);
  webView_->setFrameLoadDelegate(weak_from_this());
  webView_->setResourceLoadDelegate(weak_from_this());
  webView_->setMediaStyle(u"screen"_s);
  web::WebPreferences& preferences = webView_->preferences();
  preferences.allowsAnimatedImages = false;
  preferences.allowsAnimatedImageLooping = false;
  preferences.plugInsEnabled = false;
  preferences.javaEnabled = false;
  preferences.javaScriptCanOpenWindowsAutomatically = false;
  preferences.javaScriptEnabled = true;
  preferences.shouldPrintBackgrounds = true;
  preferences.loadsImagesAutomatically = true;
  layout_->webView->setPage(page);
}

void CVMiniBrowserWindow::loadURL(const QUrl& url) {
  if (webView_->page()->isClosed()) makePage();
  layout_->urlTextField->setText(url.toString(QUrl::FullyEncoded));
  showAddressLook(AddressLook::Normal);
  setProgress(0);
  layout_->snapButton->setEnabled(false);
  navigation_ = Navigation::Requested;
  questions_->forgetSilence();
  web::PageRequest request;
  request.url = url;
  request.responseTimeout = std::chrono::seconds(5);
  // Only a file that the user names may be read, and no file by a page of the network.
  if (url.isLocalFile()) request.localFiles = web::LocalFiles::Allowed;
  webView_->mainFrame().loadRequest(request);
}

void CVMiniBrowserWindow::onURLEditingEnded() {
  const QString address = layout_->urlTextField->text().trimmed();
  if (address.isEmpty()) return;
  loadURL(QUrl(address));
  layout_->webView->setFocus();
}

void CVMiniBrowserWindow::onReload() {
  const bool failed = addressLook_ == AddressLook::Failed;
  const QUrl shown = webView_->mainFrameURL();
  loadURL(failed || shown.isEmpty() ? QUrl(layout_->urlTextField->text().trimmed()) : shown);
}

void CVMiniBrowserWindow::setProgress(double progress) {
  layout_->loadIndicator->setValue(qRound(progress * layout_->loadIndicator->maximum()));
}

/// Colour alone would not tell everybody, so a failure has its reason in words as well.
void CVMiniBrowserWindow::showAddressLook(AddressLook look, const QString& reason) {
  addressLook_ = look;
  const ui::Theme& theme = ui::Theme::current();
  QPalette palette = layout_->urlTextField->palette();
  palette.setColor(QPalette::Text, look == AddressLook::Failed ? theme.failed : theme.text);
  layout_->urlTextField->setPalette(palette);
  layout_->messageLabel->setText(reason);
  layout_->messageLabel->setVisible(!reason.isEmpty());
  layout_->urlTextField->setAccessibleDescription(reason);
}

void CVMiniBrowserWindow::showFailure(const Error& error) {
  navigation_ = Navigation::ByThePage;
  showAddressLook(AddressLook::Failed, error.localizedDescription);
}

void CVMiniBrowserWindow::webViewDidReceiveServerRedirectForProvisionalLoadForFrame(
    web::WebView&, const web::WebFrame& frame) {
  if (frame.isMainFrame())
    layout_->urlTextField->setText(frame.provisionalURL().toString(QUrl::FullyEncoded));
}

void CVMiniBrowserWindow::webViewDidReceiveTitleForFrame(web::WebView&, const QString& title,
                                                         const web::WebFrame& frame) {
  if (frame.isMainFrame()) setWindowTitle(title);
}

void CVMiniBrowserWindow::webViewDidFailProvisionalLoadWithErrorForFrame(
    web::WebView&, const Error& error, const web::WebFrame& frame) {
  if (frame.isMainFrame()) showFailure(error);
}

void CVMiniBrowserWindow::webViewDidFailLoadWithErrorForFrame(web::WebView&, const Error& error,
                                                              const web::WebFrame& frame) {
  if (frame.isMainFrame()) showFailure(error);
}

void CVMiniBrowserWindow::webViewDidFinishLoadForFrame(web::WebView&, const web::WebFrame& frame) {
  if (!frame.isMainFrame()) return;
  navigation_ = Navigation::ByThePage;
  showAddressLook(AddressLook::Normal);
  setProgress(1);
  layout_->snapButton->setEnabled(true);
}

void CVMiniBrowserWindow::webViewResourceDidReceiveContentLengthFromDataSource(
    web::WebView& view, const QString&, qint64, const web::WebFrame& frame) {
  if (frame.isMainFrame()) setProgress(view.estimatedProgress());
}

void CVMiniBrowserWindow::pageCommittedLoad(web::Page& page, const web::Frame& frame) {
  const bool isEdited = layout_->urlTextField->hasFocus() && layout_->urlTextField->isModified();
  if (!frame.isMain() || navigation_ == Navigation::Requested || isEdited) return;
  layout_->urlTextField->setText(page.currentURL().toString(QUrl::FullyEncoded));
}

void CVMiniBrowserWindow::pageCrashed(web::Page&, const Error& error) {
  layout_->snapButton->setEnabled(false);
  showFailure(error);
}
