#include <QFile>

#include "BrowserFixture.h"

using namespace addon_test;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

/// The built bookmark as the browser runs it.
QString bookmarkletProgram() {
  QFile file(QStringLiteral(BOOKMARKLET));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray address = file.readAll().trimmed();
  EXPECT_TRUE(address.startsWith("javascript:"));
  EXPECT_FALSE(address.contains(' ') || address.contains('"') || address.contains('\n'));
  return QString::fromUtf8(QByteArray::fromPercentEncoding(address.sliced(11)));
}

/// Where the browser goes, and what it asks, is caught: there is no program to open.
QString caught(const QString& program) {
  return u"(() => { const told = []; const location = new Proxy({}, {get: () => "
         u"window.location.href,"
         "set: (target, name, value) => { told.push(value); return true; }});"
         "const confirm = text => { told.push(text); return true; };"_s +
         program + u"; return told; })()"_s;
}

TEST(Bookmarklet, SendsThePageAndExplainsItsLimit) {
  HttpServer server;
  server.setPage(u"/page"_s,
                 "<!DOCTYPE html><head><style>p { color: rgb(1, 2, 3) }</style></head><body>"
                 "<p>Text</p><input id='name' value='old'><iframe src='/frame'></iframe>");
  server.setPage(u"/frame"_s, "<p>In the frame");
  Chromium browser(server.url(u"/page"_s));
  ASSERT_TRUE(browser.isReady());
  Inspector inspector;
  ASSERT_TRUE(inspector.open());
  QString page;
  ASSERT_TRUE(support::waitFor([&] {
    page = inspector.target(u"page"_s, server.url(u"/page"_s).toString());
    return !page.isEmpty();
  }));
  ASSERT_TRUE(inspector.waitForPage(page, u"/page"_s));
  inspector.evaluate(page, u"document.getElementById('name').value = 'typed'; 0"_s);

  const auto sent = inspector.evaluate(page, caught(bookmarkletProgram())).toArray();
  ASSERT_EQ(sent.size(), 1);
  EXPECT_TRUE(sent[0].toString().startsWith(u"corvxurl://127.0.0.1:"_s));
  const CapturePayload payload = CapturePayload::decode(sent[0].toString());
  EXPECT_EQ(payload.address, server.url(u"/page"_s));
  ASSERT_TRUE(payload.page && payload.styles && payload.frames);
  EXPECT_THAT(payload.page->toStdString(),
              AllOf(HasSubstr("<!DOCTYPE html>"), HasSubstr("value=\"typed\"")));
  EXPECT_THAT(payload.styles->toStdString(), HasSubstr("rgb(1, 2, 3)"));
  EXPECT_GT(payload.frames->size(), 40);

  inspector.evaluate(page, u"document.querySelector('p').textContent = 'x'.repeat(130000); 0"_s);
  const auto asked = inspector.evaluate(page, caught(bookmarkletProgram())).toArray();
  ASSERT_EQ(asked.size(), 2);
  EXPECT_THAT(asked[0].toString().toStdString(), HasSubstr("at most 131071"));
  EXPECT_EQ(asked[1].toString(),
            server.url(u"/page"_s).toString().replace(u"http:"_s, u"corvxurl:"_s));
}

}  // namespace
