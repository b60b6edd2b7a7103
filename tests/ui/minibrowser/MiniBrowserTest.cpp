#include "ui/minibrowser/CVMiniBrowserWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>

#include "delivery/CVUtils.h"
#include "platform/web/Engine.h"
#include "settings/CVObjectRepository.h"
#include "support/HttpServer.h"
#include "support/Wait.h"
#include "ui/controls/CVHoverButton.h"
#include "ui/look/Theme.h"
#include "ui/minibrowser/LivePageView.h"

using namespace Qt::StringLiterals;

namespace {

class Snaps : public CVMiniBrowserWindowControllerDelegate {
 public:
  QUrl url;
  std::optional<QString> source;
  QSizeF size;
  int count = 0;

  void miniBrowserSnapWithURL(CVMiniBrowserWindowController&, const QUrl& address,
                              const std::optional<QString>& document,
                              const QSizeF& pageSize) override {
    url = address;
    source = document;
    size = pageSize;
    ++count;
  }
};

class MiniBrowserTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    engine() = std::make_shared<web::Engine>();
    utils() = std::make_shared<CVUtils>(CVUtils::Services{});
    CVObjectRepository::singleton().addObject(utils(), u"utils"_s);
    ui::applyTheme(ui::Theme::light());
  }
  static void TearDownTestSuite() {
    engine().reset();
    CVObjectRepository::singleton().addObject(nullptr, u"utils"_s);
    utils().reset();
  }
  static std::shared_ptr<web::Engine>& engine() {
    static std::shared_ptr<web::Engine> shared;
    return shared;
  }
  static std::shared_ptr<CVUtils>& utils() {
    static std::shared_ptr<CVUtils> shared;
    return shared;
  }

  void SetUp() override {
    window = CVMiniBrowserWindow::create(engine());
    window->setDelegate(snaps);
    window->resize(700, 500);
    page = child<LivePageView>("webView");
  }

  template <class Widget>
  Widget* child(const char* name) {
    return window->findChild<Widget*>(QString::fromLatin1(name));
  }
  QLineEdit& address() { return *child<QLineEdit>("urlTextField"); }
  CVHoverButton& snapButton() { return *child<CVHoverButton>("snapButton"); }
  QColor addressColour() { return address().palette().color(QPalette::Text); }

  void show(const QByteArray& body) {
    server.setPage(u"/page"_s,
                   "<!DOCTYPE html><style>* {margin:0; padding:0; border:0}"
                   "body > * {position:absolute}</style>" +
                       body);
    open(u"/page"_s);
  }
  void open(const QString& path) {
    window->loadURL(server.url(path));
    window->makeKeyAndOrderFront();
    ASSERT_TRUE(loaded()) << qPrintable(child<QLabel>("messageLabel")->text());
  }
  bool loaded() {
    return support::waitFor([this] { return snapButton().isEnabled(); });
  }
  bool failed() {
    return support::waitFor([this] { return addressColour() == ui::Theme::light().failed; });
  }
  QJsonValue evaluate(const QString& script) {
    std::optional<QJsonValue> value;
    window->webView()->evaluateJavaScript(script, [&value](const Result<QJsonValue>& result) {
      value = result.value_or(QJsonValue());
    });
    support::waitFor([&value] { return value.has_value(); });
    return value.value_or(QJsonValue());
  }
  bool pageHas(const QString& condition) {
    return support::waitFor([&] { return evaluate(condition).toBool(); });
  }
  void snap() {
    QTest::mouseClick(&snapButton(), Qt::LeftButton);
    ASSERT_TRUE(support::waitFor([this] { return snaps->count > 0; }));
  }
  /// The open sheet of the page.
  QDialog* sheet() {
    QDialog* found = nullptr;
    support::waitFor([&] {
      for (auto* dialog : window->findChildren<QDialog*>())
        if (dialog->isVisible()) found = dialog;
      return found != nullptr;
    });
    return found;
  }

  HttpServer server;
  std::shared_ptr<Snaps> snaps = std::make_shared<Snaps>();
  std::shared_ptr<CVMiniBrowserWindow> window;
  LivePageView* page = nullptr;
};

TEST_F(MiniBrowserTest, ASnapHoldsWhatWasTypedAndChosenButNoPassword) {
  show(
      "<input id=name style='left:0;top:0;width:200px;height:30px'>"
      "<input id=key type=password style='left:0;top:40px;width:200px;height:30px'>"
      "<input id=box type=checkbox style='left:0;top:80px;width:30px;height:30px'>"
      "<textarea style='left:0;top:120px'></textarea>"
      "<p style='top:3000px;height:20px'>End</p><script>document.write('<b>written</b>')</script>");
  EXPECT_EQ(child<QProgressBar>("loadIndicator")->value(), 1000);
  QTest::mouseClick(page, Qt::LeftButton, {}, {50, 15});
  QTest::keyClicks(page, u"Typed in"_s);
  QTest::keyClick(page, Qt::Key_Tab);
  QTest::keyClicks(page, u"hush"_s);
  QTest::mouseClick(page, Qt::LeftButton, {}, {15, 95});
  ASSERT_TRUE(pageHas(u"document.querySelector('#box').checked"_s));
  evaluate(u"document.querySelector('textarea').value = 'Longer text'; scrollTo(0, 900)"_s);
  snap();
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(snaps->url, server.url(u"/page"_s));
  const QString source = snaps->source.value_or(QString());
  for (const auto& part :
       {u"value=\"Typed in\""_s, u"checked"_s, u">Longer text<"_s, u"<b>written"_s})
    EXPECT_TRUE(source.contains(part)) << qPrintable(part);
  EXPECT_FALSE(source.contains(u"hush"_s));
  EXPECT_EQ(snaps->size, QSizeF(page->width(), 3020));
}

TEST_F(MiniBrowserTest, ALoginByFormIsSnappedAndKeptForOtherPages) {
  server.setPage(u"/login"_s,
                 "<form method=post action=/session style='margin:0'><input name=user autofocus>"
                 "</form>");
  server.set(u"/session"_s, {"", "text/html", "303 See Other",
                             "Location: /account\r\nSet-Cookie: login=ada; Path=/\r\n"});
  server.setPage(u"/account"_s,
                 "<title>Account</title><p></p><script>document.querySelector('p').textContent = "
                 "'Cookie ' + document.cookie</script>");
  open(u"/login"_s);
  QTest::mouseClick(page, Qt::LeftButton, {}, {20, 10});
  QTest::keyClicks(page, u"ada"_s);
  QTest::keyClick(page, Qt::Key_Return);
  ASSERT_TRUE(support::waitFor([this] { return window->windowTitle() == u"Account"_s; }));
  ASSERT_TRUE(pageHas(u"document.body.innerText.includes('login=ada')"_s));
  EXPECT_EQ(address().text(), server.url(u"/account"_s).toString());
  snap();
  EXPECT_TRUE(snaps->source.value_or(QString()).contains(u"Cookie login=ada"_s));

  auto other = CVMiniBrowserWindow::create(engine());
  other.swap(window);
  page = child<LivePageView>("webView");
  open(u"/account"_s);
  EXPECT_TRUE(pageHas(u"document.body.innerText.includes('login=ada')"_s));
  window->onClearCookies();
  auto* question = qobject_cast<QMessageBox*>(sheet());
  ASSERT_TRUE(question);
  for (auto* button : question->buttons())
    if (button->text() == u"Clear"_s) button->click();
  EXPECT_TRUE(pageHas(u"document.cookie === ''"_s));
}

TEST_F(MiniBrowserTest, FailuresTurnTheAddressRedAndSayWhy) {
  server.set(u"/file"_s, {"PK", "application/zip"});
  const struct {
    QString typed;
    QString reason;
  } rows[] = {{u"  nowhere.test/x \n"_s, u"scheme"_s},
              {u"http://nowhere.test/"_s, u"not found"_s},
              {server.url(u"/file"_s).toString(), u"download"_s}};
  window->makeKeyAndOrderFront();
  for (const auto& row : rows) {
    address().setText(row.typed);
    QTest::keyClick(&address(), Qt::Key_Return);
    EXPECT_TRUE(failed()) << qPrintable(row.typed);
    EXPECT_FALSE(snapButton().isEnabled());
    EXPECT_TRUE(child<QLabel>("messageLabel")->isVisible());
    EXPECT_TRUE(child<QLabel>("messageLabel")->text().contains(row.reason))
        << qPrintable(child<QLabel>("messageLabel")->text());
    show("<p>Fine</p>");
    EXPECT_EQ(addressColour(), ui::Theme::light().text);
    EXPECT_FALSE(child<QLabel>("messageLabel")->isVisible());
  }
}

TEST_F(MiniBrowserTest, RedirectsLinksAndTheWayBackMoveTheAddress) {
  server.redirect(u"/old"_s, u"/first"_s);
  server.setPage(u"/first"_s,
                 "<title>First</title><style>*{margin:0}</style>"
                 "<a href=/second style='display:block;height:40px'>Go</a>");
  server.setPage(u"/second"_s, "<title>Second</title>");
  open(u"/old"_s);
  EXPECT_EQ(address().text(), server.url(u"/first"_s).toString());
  QTest::mouseClick(page, Qt::LeftButton, {}, {10, 20});
  EXPECT_TRUE(support::waitFor([this] { return window->windowTitle() == u"Second"_s; }));
  EXPECT_TRUE(
      support::waitFor([this] { return address().text() == server.url(u"/second"_s).toString(); }));
  window->onBack();
  EXPECT_TRUE(
      support::waitFor([this] { return address().text() == server.url(u"/first"_s).toString(); }));
}

TEST_F(MiniBrowserTest, TheWheelMovesThePageAndItsPicture) {
  show(
      "<div style='width:100%;height:400px;background:#ff0000'></div>"
      "<div style='top:400px;width:100%;height:4000px;background:#0000ff'></div>");
  const auto shows = [this](const QColor& colour) {
    return support::waitFor([&] {
      const QColor seen = page->grab().toImage().pixelColor(200, 20);
      return std::abs(seen.red() - colour.red()) + std::abs(seen.blue() - colour.blue()) < 60;
    });
  };
  EXPECT_TRUE(shows(Qt::red));
  QWheelEvent wheel({200, 200}, page->mapToGlobal(QPointF(200, 200)), {0, -500}, {}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(page, &wheel);
  EXPECT_TRUE(pageHas(u"scrollY === 500"_s));
  EXPECT_TRUE(shows(Qt::blue));
}

TEST_F(MiniBrowserTest, InputMethodsComposeAndTheClipboardIsTheDesktops) {
  show("<input id=field style='left:0;top:0;width:300px;height:30px'>");
  QTest::mouseClick(page, Qt::LeftButton, {}, {50, 15});
  QInputMethodEvent composing(u"に"_s, {});
  QApplication::sendEvent(page, &composing);
  ASSERT_TRUE(pageHas(u"document.querySelector('#field').value === 'に'"_s));
  QInputMethodEvent committed(QString(), {});
  committed.setCommitString(u"日本"_s);
  QApplication::sendEvent(page, &committed);
  EXPECT_TRUE(pageHas(u"document.querySelector('#field').value === '日本'"_s));
  QApplication::clipboard()->setText(u" & paste"_s);
  QTest::keyClick(page, Qt::Key_V, Qt::ControlModifier);
  EXPECT_TRUE(pageHas(u"document.querySelector('#field').value === '日本 & paste'"_s));
  QTest::keyClick(page, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(page, Qt::Key_X, Qt::ControlModifier);
  EXPECT_TRUE(pageHas(u"document.querySelector('#field').value === ''"_s));
  EXPECT_EQ(QApplication::clipboard()->text(), u"日本 & paste"_s);
}

TEST_F(MiniBrowserTest, QuestionsOfThePageAreSheets) {
  server.set(u"/club"_s, {"", "text/html", "401 Unauthorized",
                          "WWW-Authenticate: Basic realm=\"The club\"\r\n"});
  server.setAuthorized(u"/club"_s, "Basic " + QByteArray("ada:secret").toBase64());
  show(
      "<script>onload = () => setTimeout(() => { alert('<b>Mind</b>'); window.sure = "
      "confirm('Sure?');"
      "window.word = prompt('Word?', 'old') })</script>");
  const QStringList messages{u"<b>Mind</b>"_s, u"Sure?"_s, u"Word?"_s};
  for (const QString& message : messages) {
    QDialog* dialog = nullptr;
    ASSERT_TRUE(support::waitFor([&] {
      dialog = sheet();
      return dialog && dialog->findChild<QLabel*>(u"message"_s)->text() == message;
    })) << qPrintable(message);
    EXPECT_EQ(dialog->findChild<QLabel*>(u"message"_s)->textFormat(), Qt::PlainText);
    if (auto* field = dialog->findChild<QLineEdit*>()) field->setText(u"new"_s);
    dialog->accept();
  }
  EXPECT_TRUE(pageHas(u"window.sure === true && window.word === 'new'"_s));
  window->loadURL(server.url(u"/club"_s));
  QDialog* login = sheet();
  ASSERT_TRUE(login);
  const auto fields = login->findChildren<QLineEdit*>();
  ASSERT_EQ(fields.size(), 2);
  EXPECT_EQ(fields[1]->echoMode(), QLineEdit::Password);
  fields[0]->setText(u"ada"_s);
  fields[1]->setText(u"secret"_s);
  login->accept();
  EXPECT_TRUE(loaded());
  EXPECT_TRUE(server.head(u"/club"_s).contains("Authorization: Basic"));
}

TEST_F(MiniBrowserTest, ListsAndTheRightButtonOpenMenus) {
  show(
      "<select id=list style='left:0;top:0;width:100px;height:30px'><option>one<option>a & b"
      "</select><a href='/there' style='left:0;top:100px;width:100px;height:30px'>Link</a>");
  const auto menu = [this](const char* name) {
    QMenu* found = nullptr;
    support::waitFor([&] {
      found = page->findChild<QMenu*>(QString::fromLatin1(name));
      return found && found->isVisible();
    });
    return found;
  };
  QTest::mouseClick(page, Qt::LeftButton, {}, {50, 15});
  QMenu* choices = menu("choices");
  ASSERT_TRUE(choices);
  ASSERT_EQ(choices->actions().size(), 2);
  EXPECT_EQ(choices->actions()[1]->text(), u"a && b"_s);
  choices->actions()[1]->trigger();
  choices->close();
  EXPECT_TRUE(pageHas(u"document.querySelector('#list').value === 'a & b'"_s));
  QContextMenuEvent asked(QContextMenuEvent::Mouse, {20, 110}, page->mapToGlobal(QPoint(20, 110)));
  QApplication::sendEvent(page, &asked);
  QMenu* commands = menu("pageMenu");
  ASSERT_TRUE(commands);
  EXPECT_EQ(commands->actions()[0]->text(), u"Copy link address"_s);
  commands->actions()[0]->trigger();
  commands->close();
  EXPECT_EQ(QApplication::clipboard()->text(), server.url(u"/there"_s).toString());
}

TEST_F(MiniBrowserTest, ZoomKeepsTheShownSize) {
  show("<p>Text</p>");
  page->zoomIn();
  page->zoomIn();
  EXPECT_EQ(page->zoom(), 1.25);
  EXPECT_TRUE(pageHas(u"innerWidth === %1"_s.arg(qRound(page->width() / 1.25))));
  page->zoomOut();
  EXPECT_EQ(page->zoom(), 1.1);
  page->resetZoom();
  EXPECT_TRUE(pageHas(u"innerWidth === %1"_s.arg(page->width())));
}

}  // namespace
