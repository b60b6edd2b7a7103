#pragma once

#include <QSizeF>
#include <future>
#include <memory>
#include <optional>
#include <vector>

#include "capture/CVCaptureServices.h"
#include "capture/LoadedPage.h"
#include "capture/PagePicture.h"
#include "platform/dispatch/Timer.h"
#include "platform/printing/PrintOperation.h"
#include "platform/web/WKWebView.h"
#include "platform/web/WebView.h"
#include "queue/CVEntry.h"

class CVPageView;
class CVPreferences;
class CVPrintImageView;
class CVUtils;
namespace capture {
class ConversionAhead;
}

/// What a finished conversion produced, for those who report it.
struct CVConversionFacts {
  /// Points for a PDF (its first page), device pixels for a picture.
  QSizeF size{0, 0};
  int pages = 0;
};

/// The queue entry of one web page.
///
/// Preparing loads the page off screen into two views that stand on one engine page, so it is
/// fetched and rendered once; two success signals end the load, usually one of each view.
/// Processing converts the loaded page and hands the file to its destination. Loading lives on the
/// main thread; conversions run on a pool thread and wait there for the engine, never on the main
/// thread.
class CVURLEntry : public CVEntry,
                   public web::WebFrameLoadDelegate,
                   public web::WebResourceLoadDelegate,
                   public web::WKNavigationDelegate,
                   public CVMiniBrowserWindowControllerDelegate {
 public:
  /// `source` is the captured document, none when the page is fetched from its address. With a
  /// source, scripts run only if they are forced. A size whose width is not 0 forces the layout's
  /// width; its height is not used.
  CVURLEntry(CVCaptureServices services, QUrl url, std::optional<QString> source,
             bool forceJavascript, QSizeF forceSize);
  CVURLEntry(CVCaptureServices services, QUrl url, std::optional<QString> source,
             bool forceJavascript);
  ~CVURLEntry() override;

  bool useJavascript() const;

  void prepareWithCompletion(Completion completion) override;
  void processWithCompletion(Completion completion) override;
  std::optional<QUrl> createTemporaryPDFWithConversionMode(const QString& mode,
                                                           MaybeError& error) override;
  void displayAdjustmentWindow() override;
  bool canBeRevealed() const override;
  void reveal() override;

  /// The one end of a load: each success signal, each failure and the time-out come here. Main
  /// thread.
  void finishedLoadingWithError(const MaybeError& error);

  /// Where the last processing put its file (while the destination is "Disk").
  std::optional<QUrl> resultLocation() const;
  std::optional<CVConversionFacts> conversionFacts() const;

  // --- Conversions: on a pool thread; the result is a temporary file. ---

  QUrl doProcessingForImageConversionModeWithPreferences(
      const std::shared_ptr<CVPreferences>& preferences, MaybeError& error, bool risky);
  QUrl doProcessingForTextConversionModeWithPreferences(
      const std::shared_ptr<CVPreferences>& preferences, MaybeError& error, bool risky);

  /// A ready operation that prints the view through a page view onto pages, into the target file.
  std::shared_ptr<printing::PrintOperation> setupPaginationPrintInfoWithView(
      const std::shared_ptr<printing::PrintableView>& view, const QUrl& targetURL);
  /// A ready operation that prints the view on one page of exactly its size.
  std::shared_ptr<printing::PrintOperation> setupSinglePagePrintInfoWithView(
      const std::shared_ptr<printing::PrintableView>& view, const QUrl& targetURL);

  // --- Delegate operations of the views and of the mini browser: main thread. ---

  void webViewDidReceiveServerRedirectForProvisionalLoadForFrame(
      web::WebView& view, const web::WebFrame& frame) override;
  void webViewDidReceiveTitleForFrame(web::WebView& view, const QString& title,
                                      const web::WebFrame& frame) override;
  void webViewDidFinishLoadForFrame(web::WebView& view, const web::WebFrame& frame) override;
  void webViewDidFailProvisionalLoadWithErrorForFrame(web::WebView& view, const Error& error,
                                                      const web::WebFrame& frame) override;
  void webViewResourceDidReceiveContentLengthFromDataSource(web::WebView& view,
                                                            const QString& resource, qint64 length,
                                                            const web::WebFrame& frame) override;
  void webViewDidFailNavigationWithError(web::WKWebView& view, const Error& error) override;
  void observeValueForKeyPath(bool newValue);
  void miniBrowserSnapWithURL(CVMiniBrowserWindowController& browser, const QUrl& url,
                              const std::optional<QString>& source, const QSizeF& size) override;

 private:
  class ConversionTurn;
  using ImageCompletion = std::function<void(std::shared_ptr<const imaging::Image>)>;
  using LoadEnded = std::function<void(const MaybeError&)>;

  std::shared_ptr<CVURLEntry> self();
  std::shared_ptr<CVUtils> utils() const;

  // Loading (CVURLEntry+Loading.cpp)
  double layoutWidth() const;
  void dropViews();
  void createViews(double width);
  void loadViews();
  void failLoad(const Error& error);
  void completeLoad();
  bool isLoading() const { return cancelSource_ != nullptr; }
  void callWaiting(const MaybeError& error);
  /// The page that has loaded; none while it loads and after a failure. Any thread.
  std::shared_ptr<web::Page> loadedPage() const;
  void stopObservingLoading();
  void workAhead();
  void renderThumbnail();
  void renderImageFromWebView(ImageCompletion completion);
  void renderImageFromWKWebView(ImageCompletion completion);
  void realHeightFromWebView(std::function<void(QRectF)> completion);
  void setWebViewRealHeight();
  void setWKWebViewRealHeight();

  // Processing (CVURLEntry+Processing.cpp)
  void endStep(Completion& completion, const MaybeError& error);
  void startProcessing(Completion completion);
  void usePreferences(const std::shared_ptr<CVPreferences>& preferences);
  void startAutomatically(const std::shared_ptr<CVPreferences>& preferences);
  void startWithSavePanel(const std::shared_ptr<CVPreferences>& preferences);
  void savePanelEnded(const std::shared_ptr<CVPreferences>& preferences,
                      const std::optional<QUrl>& chosen);
  void holdPageForProcessing();
  void doProcessingWithPreferences(const std::shared_ptr<CVPreferences>& preferences);
  void executeProcessingWithPreferences(const std::shared_ptr<CVPreferences>& preferences);
  QUrl convert(const std::shared_ptr<CVPreferences>& preferences, MaybeError& error);
  QUrl convertNow(const std::shared_ptr<CVPreferences>& preferences, MaybeError& error);
  void convertAhead();
  void deliver(const QUrl& temporary, CVPreferences& preferences, MaybeError& error);
  void deliverToDisk(const QUrl& temporary, CVPreferences& preferences, MaybeError& error);
  void deliverElsewhere(const QUrl& temporary, CVPreferences& preferences, MaybeError& error);
  void writeDocument(const QUrl& temporary, const QUrl& target, MaybeError& error);
  void writePicture(const QUrl& temporary, const QUrl& target, const CVPreferences& preferences,
                    MaybeError& error);
  /// False once the entry is loaded anew: its state and error are then that load's.
  bool showsProcessedPage() const;
  void endProcessing(const MaybeError& error);
  void showOutcome(const MaybeError& error);

  // Pictures (CVURLEntry+ImageConversion.cpp)
  Result<PagePicture> picturePage(const CVPreferences& preferences, const QUrl& target);
  MaybeError writePicturePDF(const PagePicture& picture, const QUrl& target);
  MaybeError settlePage();

  // PDF (CVURLEntry+PDFConversion.cpp)
  MaybeError printTallTo(const QUrl& target);
  MaybeError runPrintOperation(const std::shared_ptr<printing::PrintableView>& view,
                               const QUrl& target);
  MaybeError printThroughWorker(const QUrl& target);
  void doPrintPDFFromView();
  /// The page of the conversion whose turn it is. Any thread.
  std::shared_ptr<web::Page> page() const;

  const CVCaptureServices services_;
  std::shared_ptr<web::WebView> webView_;
  std::shared_ptr<web::WKWebView> wkWebView_;
  std::shared_ptr<const web::WKWebView::LoadingObserver> loadingObserver_;
  MaybeError loadError_;
  /// What waits for the step that is under way; each is called once.
  Completion prepareCompletion_;
  Completion processCompletion_;
  /// What was asked for while the page loads and needs it loaded. Called by this entry alone.
  std::vector<LoadEnded> whenLoaded_;
  /// Set on the main thread before the processing that it is for begins on a pool thread.
  capture::LoadedPage processedPage_;
  /// Replaced under both mutexes.
  std::shared_ptr<CVPreferences> preferences_;
  std::shared_ptr<CVPrintImageView> printImageView_;
  std::shared_ptr<CVPageView> pageView_;
  std::shared_ptr<CVMiniBrowserWindowController> miniBrowser_;
  std::unique_ptr<dispatch::Timer> cancelSource_;
  bool forceSize_ = false;
  QSizeF forcedSize_;
  QByteArray printData_;
  /// The hand-shake with the worker that prints on a thread of its own; each can be given once.
  std::promise<void> started_;
  std::promise<MaybeError> finished_;
  quint64 finishedLoadingCount_ = 0;
  bool forceJavascript_ = false;

  /// Held by the worker thread of one conversion; before the other one.
  std::mutex conversionMutex_;
  mutable std::mutex resultMutex_;
  std::shared_ptr<web::Page> loadedPage_;
  std::shared_ptr<web::Page> convertedPage_;
  std::shared_ptr<capture::ConversionAhead> conversionAhead_;
  std::optional<CVConversionFacts> conversionFacts_;
};
