#include <gmock/gmock.h>

#include "EngineFixture.h"
#include "platform/web/WKWebView.h"
#include "platform/web/WebView.h"

using namespace Qt::StringLiterals;

namespace {

/// Both delegates in one, as the owner of the two views has it; one word per call.
class Delegate : public web::WebFrameLoadDelegate,
                 public web::WebResourceLoadDelegate,
                 public web::WKNavigationDelegate {
 public:
  QStringList calls;
  bool allowAction = true;
  double progressAtData = -1;

  void webViewDidStartProvisionalLoadForFrame(web::WebView&, const web::WebFrame& frame) override {
    note("start", frame);
  }
  void webViewDidReceiveServerRedirectForProvisionalLoadForFrame(
      web::WebView&, const web::WebFrame& frame) override {
    note("redirect:" + frame.provisionalURL().path().toLatin1(), frame);
  }
  void webViewDidCommitLoadForFrame(web::WebView&, const web::WebFrame& frame) override {
    note("commit", frame);
  }
  void webViewDidReceiveTitleForFrame(web::WebView&, const QString& title,
                                      const web::WebFrame& frame) override {
    note("title:" + title.toLatin1(), frame);
  }
  void webViewDidFinishLoadForFrame(web::WebView&, const web::WebFrame& frame) override {
    note("finish", frame);
  }
  void webViewDidFailProvisionalLoadWithErrorForFrame(web::WebView&, const Error&,
                                                      const web::WebFrame& frame) override {
    note("failProvisional", frame);
  }
  void webViewResourceDidReceiveContentLengthFromDataSource(web::WebView& view, const QString&,
                                                            qint64,
                                                            const web::WebFrame& frame) override {
    if (frame.isMainFrame()) progressAtData = view.estimatedProgress();
  }
  void webViewDidFinishNavigation(web::WKWebView&) override { calls << u"wkFinish"_s; }
  void webViewDidFailNavigationWithError(web::WKWebView&, const Error&) override {
    calls << u"wkFail"_s;
  }
  void webViewDecidePolicyForNavigationAction(web::WKWebView&, const QUrl&,
                                              const web::WKPolicyHandler& handler) override {
    handler(allowAction ? web::WKNavigationPolicy::Allow : web::WKNavigationPolicy::Cancel);
  }

 private:
  void note(const QByteArray& call, const web::WebFrame& frame) {
    if (frame.isMainFrame()) calls << QString::fromLatin1(call);
  }
};

class ViewsTest : public EngineTest {
 protected:
  void SetUp() override {
    openPage();
    delegate = std::make_shared<Delegate>();
    legacy = web::WebView::create(page, QRectF(-16000, -16000, 1024, 100));
    modern = web::WKWebView::create(page, QRectF(-16000, -16000, 1024, 100));
    legacy->setFrameLoadDelegate(delegate);
    legacy->setResourceLoadDelegate(delegate);
    modern->setNavigationDelegate(delegate);
    observation = modern->observeLoading(
        [this](bool loading) { delegate->calls << (loading ? u"wkLoading"_s : u"wkIdle"_s); });
  }
  bool waitForCall(const char* call) {
    return support::waitFor([&] { return delegate->calls.contains(QString::fromLatin1(call)); });
  }

  std::shared_ptr<Delegate> delegate;
  std::shared_ptr<web::WebView> legacy;
  std::shared_ptr<web::WKWebView> modern;
  std::shared_ptr<const web::WKWebView::LoadingObserver> observation;
};

TEST_F(ViewsTest, TheSameRequestLoadsOnceAndSignalsBothViews) {
  server.redirect(u"/from"_s, u"/to"_s);
  server.setPage(u"/to"_s, "<title>T</title><iframe srcdoc='<title>inner</title>'></iframe>");
  const web::PageRequest request{server.url(u"/from"_s)};
  legacy->mainFrame().loadRequest(request);
  modern->loadRequest(request);
  ASSERT_TRUE(waitForCall("wkIdle"));
  EXPECT_EQ(delegate->calls.join(u' ').toStdString(),
            "wkLoading start redirect:/to commit title:T finish wkFinish wkIdle");
  EXPECT_EQ(server.requests(), QStringList({u"/from"_s, u"/to"_s}));
  EXPECT_GT(delegate->progressAtData, 0);
  EXPECT_EQ(legacy->estimatedProgress(), 1);
  EXPECT_EQ(legacy->mainFrame().url(), server.url(u"/to"_s));

  // The same view asked again loads again.
  delegate->calls.clear();
  modern->loadRequest(request);
  ASSERT_TRUE(waitForCall("wkIdle"));
  EXPECT_EQ(server.requests().size(), 4);
}

TEST_F(ViewsTest, TheSameDocumentLoadsOnceAndItsScriptsCanBeAsked) {
  legacy->loadHTMLString(u"<!DOCTYPE html><title>Given</title>"_s, server.url(u"/base"_s));
  modern->loadHTMLString(u"<!DOCTYPE html><title>Given</title>"_s, server.url(u"/base"_s));
  ASSERT_TRUE(waitForCall("wkIdle"));
  EXPECT_EQ(delegate->calls.count(u"finish"_s), 1);
  std::optional<Result<QJsonValue>> value;
  modern->evaluateJavaScript(u"location.pathname"_s,
                             [&value](auto result) { value = std::move(result); });
  ASSERT_TRUE(support::waitFor([&value] { return value.has_value(); }));
  EXPECT_EQ((*value)->toString().toStdString(), "/base");
}

TEST_F(ViewsTest, AProvisionalFailureGoesToBothViewsBeforeLoadingEnds) {
  const web::PageRequest request{QUrl(u"http://no-such-name.example/"_s)};
  legacy->loadRequest(request);
  modern->loadRequest(request);
  ASSERT_TRUE(waitForCall("wkIdle"));
  EXPECT_EQ(delegate->calls.join(u' ').toStdString(),
            "wkLoading start failProvisional wkFail wkIdle");
}

TEST_F(ViewsTest, DetachedDelegatesAndDroppedViewsHearNothing) {
  server.setPage(u"/"_s, "<p>");
  legacy->setFrameLoadDelegate({});
  modern->setNavigationDelegate({});
  observation.reset();
  load({server.url(u"/"_s)});
  EXPECT_TRUE(delegate->calls.isEmpty());
  legacy.reset();
  modern.reset();
  recorder->events.clear();
  load({server.url(u"/"_s)});
  EXPECT_TRUE(recorder->finished());
}

TEST_F(ViewsTest, ARefusedActionDoesNotLoad) {
  delegate->allowAction = false;
  modern->loadRequest({server.url(u"/"_s)});
  EXPECT_FALSE(
      support::waitFor([&] { return !delegate->calls.isEmpty(); }, std::chrono::milliseconds(200)));
  EXPECT_TRUE(server.requests().isEmpty());
}

}  // namespace
