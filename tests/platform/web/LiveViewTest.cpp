#include "platform/web/LiveView.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QTemporaryDir>

#include "EngineFixture.h"

using namespace Qt::StringLiterals;

namespace {

class Watcher : public web::LiveViewDelegate {
 public:
  QImage picture;
  std::optional<Qt::CursorShape> cursor;
  web::TextInput textInput;

  void liveViewReceivedPicture(web::LiveView&, const QImage& image) override { picture = image; }
  void liveViewChangedCursor(web::LiveView&, Qt::CursorShape shape) override { cursor = shape; }
  void liveViewChangedTextInput(web::LiveView&, const web::TextInput& input) override {
    textInput = input;
  }
};

/// A user who answers everything, and one who forgets every question.
class User : public web::PagePromptDelegate {
 public:
  enum class Manner { Answers, Forgets } manner = Manner::Answers;
  QStringList asked;
  QString file;
  web::ChoiceRequest choice;

  void pageAsksDialog(web::Page&, const web::DialogRequest& request,
                      const web::AnswerHandler<web::DialogAnswer>& answer) override {
    asked << request.message;
    if (manner == Manner::Answers) answer({web::DialogAnswer::Choice::Accepted, u"typed"_s});
  }
  void pageAsksCredentials(
      web::Page&, const web::CredentialsRequest& request,
      const web::AnswerHandler<std::optional<web::Credentials>>& answer) override {
    asked << request.realm;
    if (manner == Manner::Answers) answer(web::Credentials{u"name"_s, u"secret"_s});
  }
  void pageAsksFiles(web::Page&, const web::FileRequest&,
                     const web::AnswerHandler<QStringList>& answer) override {
    asked << u"file"_s;
    answer({file});
  }
  void pageAsksChoice(web::Page&, const web::ChoiceRequest& request,
                      const web::AnswerHandler<std::optional<int>>& answer) override {
    asked << u"choice"_s;
    choice = request;
    if (manner == Manner::Answers) answer(2);
  }
  void pageAsksWindow(web::Page&, const QUrl& url) override { asked << u"window:"_s + url.path(); }
};

class LiveViewTest : public EngineTest {
 protected:
  void SetUp() override {
    openPage();
    watcher = std::make_shared<Watcher>();
    user = std::make_shared<User>();
    view = web::LiveView::create(page);
    view->setDelegate(watcher);
    page->setPromptDelegate(user);
    view->setSize(QSizeF(400, 300), 1);
  }
  void show(const QByteArray& body) {
    server.setPage(
        u"/live"_s,
        "<!DOCTYPE html><style>* {margin:0} body > * {position:absolute}</style>" + body);
    load({server.url(u"/live"_s)});
    ASSERT_FALSE(recorder->failure);
  }
  void click(const QPointF& position) {
    using Type = web::MouseInput::Type;
    view->send({Type::Press, position, Qt::LeftButton, Qt::LeftButton});
    view->send({Type::Release, position, Qt::LeftButton, Qt::NoButton});
  }
  bool pageHas(const QString& condition) {
    return support::waitFor([&] { return evaluate(condition).value_or(QJsonValue()).toBool(); },
                            std::chrono::seconds(10));
  }
  bool pictureShows(const QPoint& place, const QColor& color) {
    return support::waitFor([&] {
      const QImage& picture = watcher->picture;
      if (!picture.rect().contains(place)) return false;
      const QColor seen = picture.pixelColor(place);
      return std::abs(seen.red() - color.red()) + std::abs(seen.green() - color.green()) +
                 std::abs(seen.blue() - color.blue()) <
             40;
    });
  }

  std::shared_ptr<Watcher> watcher;
  std::shared_ptr<User> user;
  std::shared_ptr<web::LiveView> view;
};

TEST_F(LiveViewTest, PicturesFollowThePageItsSizeAndItsZoom) {
  view->start();
  show(
      "<body style='background:#0000ff'><div "
      "style='left:100px;top:100px;width:50px;height:50px;background:#ff0000'>");
  EXPECT_TRUE(pictureShows({120, 120}, Qt::red));
  EXPECT_EQ(watcher->picture.size(), QSize(400, 300));
  view->setZoom(2);
  EXPECT_TRUE(pictureShows({290, 290}, Qt::red));
  EXPECT_EQ(watcher->picture.size(), QSize(400, 300));
  view->setZoom(1);
  view->setSize(QSizeF(500, 400), 2);
  EXPECT_TRUE(support::waitFor([this] { return watcher->picture.size() == QSize(1000, 800); }));
  EXPECT_TRUE(pictureShows({240, 240}, Qt::red));
}

TEST_F(LiveViewTest, PicturesFollowZoomOnDenseScreens) {
  view->setSize(QSizeF(800, 595), 2);
  view->start();
  show(
      "<body style='background:#0000ff'><div "
      "style='left:100px;top:100px;width:50px;height:50px;background:#ff0000'>");
  for (const double zoom : {1.0, 1.1, 1.25, 1.5, 1.75, 1.0}) {
    view->setZoom(zoom);
    EXPECT_TRUE(support::waitFor([&] {
      const double width = watcher->picture.width();
      if (std::abs(width - 1600) > 2) return false;
      const auto red = [&](double place) {
        const double scale = width / 800 * zoom;
        return watcher->picture.pixelColor(int(place * scale), int(125 * scale)).red() > 128;
      };
      return !red(97) && red(103) && red(147) && !red(153);
    })) << zoom;
    // Only a page that has come to rest tells whether a new size alone makes a picture.
    support::waitFor([] { return false; }, std::chrono::milliseconds(300));
  }
}

TEST_F(LiveViewTest, InputReachesWhatItPointsAt) {
  show(
      "<input id=field style='left:50px;top:50px;width:200px;height:20px'>"
      "<div style='top:2000px;height:10px;width:10px'></div>"
      "<script>window.keys=[]; addEventListener('keydown', e => keys.push(e.key + '/' + "
      "e.code))</script>");
  view->setZoom(1.5);
  click({150, 90});
  view->send(web::KeyInput{web::KeyInput::Type::Press, Qt::Key_A, u"a"_s});
  view->send(web::KeyInput{web::KeyInput::Type::Release, Qt::Key_A, u"a"_s});
  view->insertText(u"\u00e9\u65e5"_s);
  view->send(web::KeyInput{web::KeyInput::Type::Press, Qt::Key_Left});
  view->send(web::KeyInput{web::KeyInput::Type::Press, Qt::Key_Backspace, u"\b"_s});
  view->setComposition(u"x"_s, 1);
  EXPECT_TRUE(pageHas(u"field.value === 'ax\\u65e5'"_s)) << text(u"field.value"_s).toStdString();
  EXPECT_EQ(text(u"keys.join(' ')"_s).toStdString(),
            "a/KeyA ArrowLeft/ArrowLeft Backspace/Backspace");
  view->insertText(u"x"_s);
  view->send(
      web::KeyInput{web::KeyInput::Type::Press, Qt::Key_A, u"\u0001"_s, Qt::ControlModifier});
  std::optional<QString> selected;
  view->readSelectedText([&selected](const QString& found) { selected = found; });
  ASSERT_TRUE(support::waitFor([&selected] { return selected.has_value(); }));
  EXPECT_EQ(*selected, u"ax\u65e5"_s);
  view->send(web::WheelInput{{100, 100}, {0, 300}});
  EXPECT_TRUE(pageHas(u"scrollY === 200"_s));
}

TEST_F(LiveViewTest, DraggingSelectsText) {
  using Type = web::MouseInput::Type;
  show("<p style='left:10px;top:10px;width:385px;font:20px/30px sans-serif'>Words to select");
  view->send({Type::Press, {11, 25}, Qt::LeftButton, Qt::LeftButton});
  view->send({Type::Move, {60, 25}, Qt::NoButton, Qt::LeftButton});
  view->send({Type::Move, {390, 25}, Qt::NoButton, Qt::LeftButton});
  view->send({Type::Release, {390, 25}, Qt::LeftButton, Qt::NoButton});
  EXPECT_TRUE(pageHas(u"String(getSelection()).trim() === 'Words to select'"_s));
}

TEST_F(LiveViewTest, InputMethodsLearnWhereTheCaretIs) {
  using Kind = web::TextInput::Kind;
  show(
      "<style>* {font:20px/30px monospace; padding:0; border:0}</style>"
      "<input autofocus style='left:40px;top:0;width:300px;height:30px'>"
      "<textarea style='left:40px;top:40px;width:300px;height:90px'>one\ntwo\n</textarea>"
      "<input type=password style='left:40px;top:140px;width:300px;height:30px'>"
      "<p contenteditable style='left:40px;top:180px;width:300px;height:30px'></p>"
      "<iframe style='left:20px;top:220px;width:300px;height:50px' "
      "srcdoc='<input style=\"position:absolute;left:20px;top:5px;width:200px\">'></iframe>"
      "<button style='left:350px;top:0;width:40px;height:30px'>B</button>");
  const auto caretAt = [this](const QPointF& place, Kind kind) {
    const bool found = support::waitFor([&] {
      const QPointF off = watcher->textInput.caret.center() - place;
      return watcher->textInput.kind == kind && std::abs(off.x()) < 12 && std::abs(off.y()) < 12;
    });
    EXPECT_TRUE(found) << place.x() << ' ' << place.y() << ", is "
                       << watcher->textInput.caret.center().x() << ' '
                       << watcher->textInput.caret.center().y();
  };
  const double letter = evaluate(
                            u"(() => {const c = new OffscreenCanvas(1, 1).getContext('2d'); c.font "
                            u"= '20px monospace';"
                            "return c.measureText('x').width})()"_s)
                            ->toDouble();
  caretAt({40, 15}, Kind::Text);
  view->insertText(u"abcdefgh"_s);
  caretAt({40 + 8 * letter, 15}, Kind::Text);
  click({200, 120});
  view->insertText(u"three"_s);
  caretAt({40 + 5 * letter, 40 + 75}, Kind::Text);
  click({200, 155});
  caretAt({40, 155}, Kind::Password);
  click({200, 195});
  view->insertText(u"ab"_s);
  caretAt({40 + 2 * letter, 195}, Kind::Text);
  click({100, 240});
  caretAt({42, 240}, Kind::Text);
  view->setZoom(2);
  click({720, 30});
  EXPECT_TRUE(support::waitFor([&] { return watcher->textInput.kind == Kind::None; }));
}

TEST_F(LiveViewTest, CursorFollowsWhatLiesUnderThePointer) {
  show(
      "<a href='/' style='left:0;top:0;width:100px;height:50px'>Link</a>"
      "<input style='left:0;top:100px;width:100px;height:20px'>");
  view->send(web::MouseInput{web::MouseInput::Type::Move, {10, 10}});
  EXPECT_TRUE(support::waitFor([this] { return watcher->cursor == Qt::PointingHandCursor; }));
  view->send(web::MouseInput{web::MouseInput::Type::Move, {10, 110}});
  EXPECT_TRUE(support::waitFor([this] { return watcher->cursor == Qt::IBeamCursor; }));
  view->send(web::MouseInput{web::MouseInput::Type::Move, {300, 250}});
  EXPECT_TRUE(support::waitFor([this] { return watcher->cursor == Qt::ArrowCursor; }));
}

TEST_F(LiveViewTest, ListsOfSelectElementsAreOffered) {
  show(
      "<select id=list style='left:20px;top:40px;width:100px;height:20px' "
      "onchange='window.changed=value'>"
      "<option>one<option disabled>two<option>three</select>"
      "<button style='left:20px;top:100px;width:100px;height:20px' "
      "onclick='window.pressed=1'>B</button>");
  click({50, 50});
  EXPECT_TRUE(pageHas(u"window.changed === 'three'"_s));
  EXPECT_EQ(user->choice.area, QRectF(20, 40, 100, 20));
  ASSERT_EQ(user->choice.options.size(), 3u);
  EXPECT_TRUE(user->choice.options[0].selected);
  EXPECT_FALSE(user->choice.options[1].enabled);
  click({50, 110});
  EXPECT_TRUE(pageHas(u"window.pressed === 1"_s));
}

TEST_F(LiveViewTest, DialogsFilesAndWindowsAreOffered) {
  QTemporaryDir folder;
  QFile file(folder.filePath(u"chosen.txt"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  user->file = file.fileName();
  show(
      "<input type=file id=file style='left:0;top:0;width:100px;height:30px'>"
      "<a href='/new' target=_blank style='left:0;top:100px;width:100px;height:30px'>New</a>"
      "<script>window.text = prompt('Your name?')</script>");
  EXPECT_EQ(text(u"window.text"_s).toStdString(), "typed");
  click({10, 10});
  EXPECT_TRUE(pageHas(u"file.files.length === 1 && file.files[0].name === 'chosen.txt'"_s));
  click({10, 110});
  EXPECT_TRUE(support::waitFor([this] { return user->asked.contains(u"window:/new"_s); }));
  EXPECT_EQ(user->asked.join(u' ').toStdString(), "Your name? file window:/new");
}

TEST_F(LiveViewTest, ClearedCookiesAreGone) {
  show("<script>document.cookie = 'kept=1'</script>");
  EXPECT_TRUE(text(u"document.cookie"_s).contains(u"kept"));
  view->clearCookies();
  EXPECT_TRUE(pageHas(u"document.cookie === ''"_s));
}

TEST_F(LiveViewTest, ForgottenQuestionsDoNotHoldUpThePage) {
  user->manner = User::Manner::Forgets;
  show("<script>window.sure = confirm('Sure?')</script><title>Past it</title>");
  EXPECT_EQ(evaluate(u"window.sure"_s)->toBool(true), false);
  EXPECT_EQ(page->title().toStdString(), "Past it");
}

TEST_F(LiveViewTest, ServersThatAskForAPasswordGetIt) {
  server.set(u"/private"_s, {"<title>Inside</title>", "text/html", "401 Unauthorized",
                             "WWW-Authenticate: Basic realm=\"The club\"\r\n"});
  server.setAuthorized(u"/private"_s, "Basic " + QByteArray("name:secret").toBase64());
  load({server.url(u"/private"_s)});
  EXPECT_EQ(user->asked, QStringList(u"The club"_s));
  EXPECT_EQ(recorder->response.status, 200);
  EXPECT_EQ(page->title().toStdString(), "Inside");
}

}  // namespace
