#include "RenderingTest.h"

#include <QFile>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>

#include "platform/rendering/PageTurn.h"

using namespace Qt::StringLiterals;

namespace {

class LoadEnd : public web::PageObserver {
 public:
  bool ended = false;
  std::optional<Error> failure;

  void pageFinishedLoad(web::Page&, const web::Frame& frame) override { ended |= frame.isMain(); }
  void pageFailedLoad(web::Page&, web::LoadPhase, const Error& error) override {
    failure = error;
    ended = true;
  }
};

}  // namespace

MaybeError Canvas::began(QSize devicePixels) {
  picture = QImage(devicePixels, QImage::Format_RGB32);
  picture.fill(Qt::magenta);
  row = strips = 0;
  ++beginnings;
  return {};
}

MaybeError Canvas::rows(const QImage& strip) {
  EXPECT_FALSE(strip.hasAlphaChannel());
  EXPECT_EQ(strip.width(), picture.width());
  QPainter(&picture).drawImage(0, row, strip);
  row += strip.height();
  ++strips;
  return {};
}

std::unique_ptr<web::Engine>& RenderingTest::engine() {
  static std::unique_ptr<web::Engine> shared;
  return shared;
}

void RenderingTest::open(const web::PageRequest& request,
                         const web::PageConfiguration& configuration) {
  page = engine()->createPage(configuration);
  rendering::watchObservers(*page);
  const auto end = std::make_shared<LoadEnd>();
  page->addObserver(end);
  page->load(request);
  ASSERT_TRUE(support::waitFor([&end] { return end->ended; }));
  ASSERT_FALSE(end->failure) << end->failure->localizedDescription.toStdString();
}

void RenderingTest::openFixture(const QString& name, const web::PageConfiguration& configuration) {
  const QString path =
      QStringLiteral(CORVALIS_SOURCE_DIR "/tests/platform/rendering/fixtures/") + name;
  open({.url = QUrl::fromLocalFile(path), .localFiles = web::LocalFiles::Allowed}, configuration);
}

void RenderingTest::openMarkup(const QString& markup, const web::PageConfiguration& configuration) {
  open({.url = QUrl(u"http://127.0.0.1:9/page"_s), .markup = markup}, configuration);
}

MaybeError RenderingTest::settle(const rendering::SettleOptions& options) {
  return await<MaybeError>([&](auto done) { rendering::settle(page, options, done); });
}

QSizeF RenderingTest::size() {
  const auto size = await<Result<QSizeF>>([&](auto done) { rendering::documentSize(page, done); });
  EXPECT_TRUE(size) << size.error().localizedDescription.toStdString();
  return size.value_or(QSizeF());
}

QImage RenderingTest::picture(const rendering::PictureOptions& options) {
  canvas = std::make_shared<Canvas>();
  const auto result = await<Result<rendering::CapturedPicture>>(
      [&](auto done) { rendering::capturePicture(page, options, canvas, done); });
  EXPECT_TRUE(result) << result.error().localizedDescription.toStdString();
  if (!result) return {};
  captured = *result;
  EXPECT_EQ(canvas->picture.size(), captured->devicePixels);
  EXPECT_EQ(canvas->row, captured->devicePixels.height()) << "rows are missing";
  return canvas->picture;
}

/// An operation puts the page back after it has answered: its turn ends with that.
QJsonValue RenderingTest::evaluate(const QString& script) {
  using Turn = std::shared_ptr<rendering::PageTurn>;
  await<Turn>([&](auto done) { rendering::PageTurn::take(page, done); });
  const auto value = await<Result<QJsonValue>>([&](auto done) { page->evaluate(script, done); });
  EXPECT_TRUE(value) << value.error().localizedDescription.toStdString();
  return value.value_or(QJsonValue());
}

QString RenderingTest::printTall() {
  const QString path = folder.filePath(u"tall.pdf"_s);
  const auto result = await<Result<rendering::PrintedDocument>>(
      [&](auto done) { rendering::printTall(page, {}, path, done); });
  EXPECT_TRUE(result) << result.error().localizedDescription.toStdString();
  if (!result) return {};
  printed = *result;
  return path;
}

QString RenderingTest::printPaginated(const rendering::PageSetup& setup) {
  const QString path = folder.filePath(u"pages.pdf"_s);
  const auto result = await<Result<rendering::PrintedDocument>>(
      [&](auto done) { rendering::printPaginated(page, setup, path, done); });
  EXPECT_TRUE(result) << result.error().localizedDescription.toStdString();
  if (!result) return {};
  printed = *result;
  return path;
}

rendering::TextLayer RenderingTest::textLayer() {
  auto layer =
      await<Result<rendering::TextLayer>>([&](auto done) { rendering::textLayer(page, done); });
  EXPECT_TRUE(layer) << layer.error().localizedDescription.toStdString();
  return layer.value_or(rendering::TextLayer());
}

QString outputOf(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.start(program, arguments);
  EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString();
  return QString::fromUtf8(process.readAll());
}

/// Written uncompressed by the last update of a printed file; 1 where there is none.
double userUnit(const QString& path) {
  QFile file(path);
  static const QRegularExpression unit(u"/UserUnit ([0-9.]+)"_s);
  const bool opened = file.open(QIODevice::ReadOnly);
  const auto match = unit.match(opened ? QString::fromLatin1(file.readAll()) : QString());
  return match.hasMatch() ? match.captured(1).toDouble() : 1;
}

QImage pdfPixels(const QString& path, int number, QRect part) {
  const QTemporaryDir folder;
  const QString base = folder.filePath(u"page"_s);
  const QString page = QString::number(number);
  // The program does not know user units.
  QStringList arguments{u"-r"_s,          QString::number(72 * userUnit(path), 'f', 8),
                        u"-singlefile"_s, u"-png"_s,
                        u"-f"_s,          page,
                        u"-l"_s,          page};
  if (!part.isEmpty()) {
    arguments << u"-x"_s << QString::number(part.x()) << u"-y"_s << QString::number(part.y());
    arguments << u"-W"_s << QString::number(part.width()) << u"-H"_s
              << QString::number(part.height());
  }
  const QString complaint = outputOf(u"pdftoppm"_s, arguments << path << base);
  const QImage image(base + u".png"_s);
  EXPECT_FALSE(image.isNull()) << complaint.toStdString();
  return image;
}

std::string colour(const QImage& image, int x, int y) {
  if (!image.rect().contains(x, y)) return "outside";
  return QColor(image.pixel(x, y)).name().mid(1).toStdString();
}
