#pragma once

#include <QWidget>
#include <memory>

#include "capture/CVCaptureServices.h"
#include "platform/web/WebView.h"

class CVHoverButton;
class PageQuestions;
namespace Ui {
class CVMiniBrowserWindowController;
}

/// The window of a mini browser: an address, the page as it lives, and the button that snaps it.
/// The page uses the program's own cookies, so that captures are logged in where the user has
/// logged in here. Named apart from `CVMiniBrowserWindowController`, which is what entries and the
/// application delegate see of it. Main thread.
class CVMiniBrowserWindow : public QWidget,
                            public CVMiniBrowserWindowController,
                            public web::WebFrameLoadDelegate,
                            public web::WebResourceLoadDelegate,
                            public web::PageObserver,
                            public std::enable_shared_from_this<CVMiniBrowserWindow> {
  Q_OBJECT

 public:
  /// Hidden at first; the page starts the engine.
  static std::shared_ptr<CVMiniBrowserWindow> create(std::shared_ptr<web::Engine> engine);
  ~CVMiniBrowserWindow() override;

  void setDelegate(std::weak_ptr<CVMiniBrowserWindowControllerDelegate> delegate) override;
  /// An address that cannot be loaded turns red, with the reason below it.
  void loadURL(const QUrl& url) override;
  void makeKeyAndOrderFront() override;

  /// Takes the address as it was typed: no scheme is added.
  void onURLEditingEnded();
  /// Hides the window and hands the page to the delegate, a moment later.
  void onSnap();
  /// Forgets all logins of the program, after asking.
  void onClearCookies();
  void onBack();
  void onReload();

  const std::shared_ptr<web::WebView>& webView() const { return webView_; }

  void webViewDidReceiveServerRedirectForProvisionalLoadForFrame(
      web::WebView& view, const web::WebFrame& frame) override;
  void webViewDidReceiveTitleForFrame(web::WebView& view, const QString& title,
                                      const web::WebFrame& frame) override;
  void webViewDidFailProvisionalLoadWithErrorForFrame(web::WebView& view, const Error& error,
                                                      const web::WebFrame& frame) override;
  void webViewDidFailLoadWithErrorForFrame(web::WebView& view, const Error& error,
                                           const web::WebFrame& frame) override;
  void webViewDidFinishLoadForFrame(web::WebView& view, const web::WebFrame& frame) override;
  void webViewResourceDidReceiveContentLengthFromDataSource(web::WebView& view,
                                                            const QString& resource, qint64 length,
                                                            const web::WebFrame& frame) override;
  /// The address follows links and scripts.
  void pageCommittedLoad(web::Page& page, const web::Frame& frame) override;
  void pageCrashed(web::Page& page, const Error& error) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  explicit CVMiniBrowserWindow(std::shared_ptr<web::Engine> engine);

  void windowDidLoad();
  void setUpSnapButton();
  void setUpMenu();
  void makePage();
  void setProgress(double progress);
  enum class AddressLook { Normal, Failed };
  void showAddressLook(AddressLook look, const QString& reason = {});
  void showFailure(const Error& error);

  const std::unique_ptr<Ui::CVMiniBrowserWindowController> layout_;
  const std::shared_ptr<web::Engine> engine_;
  std::weak_ptr<CVMiniBrowserWindowControllerDelegate> delegate_;
  std::shared_ptr<PageQuestions> questions_;
  std::shared_ptr<web::WebView> webView_;
  AddressLook addressLook_ = AddressLook::Normal;
  /// Of a load that was asked for here, the field keeps the address as it was asked for.
  enum class Navigation { Requested, ByThePage } navigation_ = Navigation::ByThePage;
};
