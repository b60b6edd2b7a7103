// How fast the mini browser's live page follows its user: corvalis_ui_live_figures [density
// [page.html]]. The time from a key that is handed over to the first picture that shows it, decoded
// and ready to be painted, and the pictures per second while a wheel turns. The engine needs no
// network: the page is given as markup.

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <cstdio>

#include "platform/dispatch/Dispatch.h"
#include "platform/web/Engine.h"
#include "platform/web/LiveView.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QSizeF area{1000, 745};
constexpr int keys = 40;
constexpr std::chrono::seconds scrollTime{4};

/// A long page of text, with a field at its top that has the focus.
QString plainPage() {
  QString text = u"<!DOCTYPE html><style>body{font:16px sans-serif;margin:40px}</style>"_s;
  for (int line = 0; line < 800; ++line)
    text += u"<p style='background:hsl(%1 60% 90%)'>Line %2 of a page to scroll through</p>"_s
                .arg(line * 7 % 360)
                .arg(line);
  return text;
}

QString pageText(const QString& file) {
  if (file.isEmpty()) return plainPage();
  QFile page(file);
  return page.open(QIODevice::ReadOnly) ? QString::fromUtf8(page.readAll()) : plainPage();
}

class Pictures : public web::LiveViewDelegate {
 public:
  int count = 0;
  QImage last;
  void liveViewReceivedPicture(web::LiveView&, const QImage& picture) override {
    ++count;
    last = picture;
  }
};

class Finish : public web::PageObserver {
 public:
  bool finished = false;
  void pageFinishedLoad(web::Page&, const web::Frame& frame) override {
    if (frame.isMain()) finished = true;
  }
};

void rest(std::chrono::milliseconds time) {
  support::waitFor([] { return false; }, time);
}

/// A key that fills the corner of the page: whether a picture shows it is told by one pixel.
const QString painter =
    uR"((() => {
  const box = document.createElement('div');
  box.style.cssText = 'position:fixed;left:0;top:0;width:60px;height:60px;z-index:2147483647;background:#000';
  document.documentElement.append(box);
  let light = false;
  addEventListener('keydown', () => {
    light = !light;
    box.style.background = light ? '#fff' : '#000';
  }, true);
})())"_s;

void measureKeys(web::LiveView& view, Pictures& pictures) {
  view.page()->evaluate(painter, {});
  rest(std::chrono::milliseconds(800));
  std::vector<double> times;
  for (int key = 0; key < keys; ++key) {
    const bool light = key % 2 == 0;
    QElapsedTimer clock;
    clock.start();
    view.send(web::KeyInput{web::KeyInput::Type::Press, Qt::Key_F9});
    const bool seen = support::waitFor(
        [&] {
          return !pictures.last.isNull() && (pictures.last.pixelColor(20, 20).red() > 128) == light;
        },
        std::chrono::seconds(2));
    if (seen) times.push_back(double(clock.nsecsElapsed()) / 1e6);
    // Pauses of no fixed length: keys do not come in step with the screen.
    rest(std::chrono::milliseconds(180 + key * 7 % 40));
  }
  if (times.empty()) return;
  std::sort(times.begin(), times.end());
  std::printf("key to picture      median %6.1f ms, nine of ten within %6.1f ms (%zu keys)\n",
              times[times.size() / 2], times[times.size() * 9 / 10], times.size());
}

void measureScrolling(web::LiveView& view, Pictures& pictures) {
  pictures.count = 0;
  QElapsedTimer clock;
  clock.start();
  int turns = 0;
  while (!clock.hasExpired(std::chrono::milliseconds(scrollTime).count())) {
    const double step = turns++ / 60 % 2 == 0 ? 40 : -40;
    view.send(web::WheelInput{{300, 300}, {0, step}});
    rest(std::chrono::milliseconds(16));
  }
  const double seconds = double(clock.nsecsElapsed()) / 1e9;
  std::printf("while scrolling     %6.1f pictures a second, %.1f turns of the wheel a second\n",
              pictures.count / seconds, turns / seconds);
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  dispatch::initialize();
  const QStringList arguments = QApplication::arguments();
  {
    web::Engine engine;
    const auto page = engine.createPage();
    const auto finish = std::make_shared<Finish>();
    const auto pictures = std::make_shared<Pictures>();
    page->addObserver(finish);
    const auto view = web::LiveView::create(page);
    view->setDelegate(pictures);
    view->setSize(area, std::max(1.0, arguments.value(1).toDouble()));
    view->start();
    web::PageRequest request;
    request.url = QUrl(u"http://127.0.0.1/"_s);
    request.markup = pageText(arguments.value(2));
    page->load(request);
    support::waitFor([&] { return finish->finished; });
    rest(std::chrono::seconds(1));
    measureKeys(*view, *pictures);
    measureScrolling(*view, *pictures);
  }
  dispatch::finish();
}
