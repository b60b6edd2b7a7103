#include <gtest/gtest.h>

#include <QSet>

#include "ui/look/NamedImage.h"
#include "ui/look/Theme.h"

using namespace Qt::StringLiterals;

namespace {

/// The colour of the most opaque pixel.
QColor ink(const QImage& image) {
  QColor strongest(0, 0, 0, 0);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor colour = image.pixelColor(x, y);
      if (colour.alpha() > strongest.alpha()) strongest = colour;
    }
  }
  return strongest;
}

bool near(const QColor& one, const QColor& other) {
  return qAbs(one.red() - other.red()) < 6 && qAbs(one.green() - other.green()) < 6 &&
         qAbs(one.blue() - other.blue()) < 6;
}

}  // namespace

TEST(NamedImage, everyIconExistsInItsColoursAndDensities) {
  for (const QString& glyph : {u"view"_s, u"delete"_s, u"save"_s, u"add"_s, u"settings"_s}) {
    for (const QString& theme : {u"dark"_s, u"light"_s}) {
      const auto& colours = theme == u"dark"_s ? ui::Theme::dark() : ui::Theme::light();
      const QString idle = u"icon-%1-inactive-%2@2x.png"_s.arg(glyph, theme);
      const QString active = u"icon-%1-active-%2@2x.png"_s.arg(glyph, theme);
      SCOPED_TRACE(active.toStdString());
      for (const double ratio : {1.0, 2.0}) {
        const QImage image = ui::namedPixmap(idle, ratio).toImage();
        EXPECT_EQ(image.size(), QSize(20, 20) * ratio);
        EXPECT_TRUE(near(ink(image), colours.secondaryText)) << ink(image).name().toStdString();
      }
      EXPECT_FALSE(near(ink(ui::namedPixmap(active, 2).toImage()), colours.secondaryText));
      EXPECT_FALSE(ui::namedIcon(idle).isNull());
    }
  }
}

TEST(NamedImage, singlePicturesHaveTheirSizes) {
  const std::pair<QString, QSize> cases[] = {{u"safari.png"_s, {20, 20}},
                                             {u"chrome.png"_s, {20, 20}},
                                             {u"safari_small.png"_s, {16, 16}},
                                             {u"chrome_small.png"_s, {16, 16}},
                                             {u"error_thumbnail.png"_s, {128, 92}}};
  for (const auto& [name, size] : cases) {
    const QImage image = ui::namedPixmap(name, 1).toImage();
    EXPECT_EQ(image.size(), size) << name.toStdString();
    EXPECT_GT(ink(image).alpha(), 200) << name.toStdString() << " is not empty";
  }
  EXPECT_TRUE(near(ink(ui::namedPixmap(u"icon-paste-light-white@2x.png"_s, 2).toImage()),
                   QColor(Qt::white)));
}

TEST(NamedImage, theArrowHasFifteenPicturesThatMove) {
  QSet<QByteArray> different;
  for (int frame = 1; frame <= 15; ++frame) {
    const QString name = u"arrow-down_%1@2x.png"_s.arg(frame, 2, 10, QChar(u'0'));
    const QImage image = ui::namedPixmap(name, 2).toImage();
    ASSERT_FALSE(image.isNull()) << frame;
    different += QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
  }
  EXPECT_GE(different.size(), 14);
  EXPECT_EQ(ui::namedPixmap(u"arrow-down_01@2X.png"_s, 1).toImage(),
            ui::namedPixmap(u"arrow-down_01@2x.png"_s, 1).toImage());
}

TEST(NamedImage, anUnknownNameIsNoPicture) {
  for (const QString& name :
       {u"icon-view-inactive-blue@2x.png"_s, u"icon-cloud-active-dark@2x.png"_s,
        u"arrow-down_16@2x.png"_s, u"arrow-down_00@2x.png"_s, u""_s, u"../app.svg"_s}) {
    EXPECT_TRUE(ui::namedIcon(name).isNull()) << name.toStdString();
    EXPECT_TRUE(ui::namedPixmap(name, 1).isNull()) << name.toStdString();
  }
}
