#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "platform/rendering/CapturePicture.h"
#include "platform/rendering/DocumentSize.h"
#include "platform/rendering/Print.h"
#include "platform/rendering/Settle.h"
#include "platform/rendering/TextLayer.h"
#include "platform/web/Engine.h"
#include "support/Wait.h"

/// Puts the strips of a picture together.
class Canvas : public rendering::PictureReceiver {
 public:
  MaybeError began(QSize devicePixels) override;
  MaybeError rows(const QImage& strip) override;

  QImage picture;
  int row = 0;
  int strips = 0;
  int beginnings = 0;
};

/// Tests that share one real browser. Each loads its pages from the fixtures folder or from markup.
class RenderingTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    engine() =
        std::make_unique<web::Engine>(web::EngineOptions{.use = web::EngineUse::Conversions});
  }
  static void TearDownTestSuite() { engine().reset(); }
  static std::unique_ptr<web::Engine>& engine();

  void openFixture(const QString& name, const web::PageConfiguration& configuration = {});
  void openMarkup(const QString& markup, const web::PageConfiguration& configuration = {});
  void open(const web::PageRequest& request, const web::PageConfiguration& configuration);

  /// Runs an operation that ends in a callback, and waits for that.
  template <class Value, class Operation>
  static Value await(Operation operation) {
    std::optional<Value> value;
    operation([&value](Value result) { value = std::move(result); });
    EXPECT_TRUE(support::waitFor([&value] { return value.has_value(); }, std::chrono::seconds(60)));
    return std::move(value).value();
  }

  MaybeError settle(const rendering::SettleOptions& options = {});
  QSizeF size();
  QImage picture(const rendering::PictureOptions& options = {});
  QJsonValue evaluate(const QString& script);
  /// Prints into the test's folder; gives the path, empty after a failure.
  QString printTall();
  QString printPaginated(const rendering::PageSetup& setup);
  rendering::TextLayer textLayer();

  QTemporaryDir folder;
  std::shared_ptr<web::Page> page;
  std::shared_ptr<Canvas> canvas;
  std::optional<rendering::CapturedPicture> captured;
  std::optional<rendering::PrintedDocument> printed;
};

/// The output of a program of the system, for reading PDFs; standard error included.
QString outputOf(const QString& program, const QStringList& arguments);

/// Points to a unit of the printed file's pages.
double userUnit(const QString& path);

/// A PDF page as a picture of one pixel per point, over the whole page or a part of it.
QImage pdfPixels(const QString& path, int number = 1, QRect part = {});

/// "rrggbb" of a pixel, for messages that can be read.
std::string colour(const QImage& image, int x, int y);
