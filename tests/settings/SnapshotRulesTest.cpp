#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/defaults/UserDefaults.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVPreferences.h"

using namespace Qt::StringLiterals;

namespace {

TEST(SnapshotRules, AFreshRecordHasTheDefaults) {
  const CVPreferences record;
  EXPECT_EQ(record.format(), u"PDF"_s);
  EXPECT_FALSE(record.usePagination());
  EXPECT_EQ(record.margin(), 50U);
  EXPECT_FALSE(record.includeHeadersAndFooters());
  ASSERT_TRUE(record.headerAndFooterFont());
  EXPECT_EQ(record.headerAndFooterFont()->pointSize, 10.0);
  EXPECT_FALSE(record.notes());
  EXPECT_EQ(record.destination(), u"Disk"_s);
  EXPECT_EQ(record.orientation(), 0);
  EXPECT_EQ(record.compression(), 1.0F);
  EXPECT_EQ(record.conversionMode(), u"Image"_s);
  EXPECT_FALSE(record.riskyConversion());
  EXPECT_FALSE(record.downloadLocation());
}

TEST(SnapshotRules, ThePrinterWantsPagesOfPictures) {
  CVPreferences record;
  record.setFormat(u"PNG"_s);
  record.setConversionMode(u"Vector"_s);
  record.setDestination(u"Printer"_s);
  EXPECT_EQ(record.format(), u"PDF"_s);
  EXPECT_TRUE(record.usePagination());
  EXPECT_EQ(record.conversionMode(), u"Image"_s);

  record.setUsePagination(false);
  EXPECT_EQ(record.destination(), u"Disk"_s);
  EXPECT_EQ(record.format(), u"PDF"_s);
}

TEST(SnapshotRules, PaginationOffLeavesOtherDestinationsAlone) {
  CVPreferences record;
  record.setDestination(u"E-Mail"_s);
  record.setUsePagination(true);
  record.setUsePagination(false);
  EXPECT_EQ(record.destination(), u"E-Mail"_s);
}

TEST(SnapshotRules, OtherFormatsHideTheModeWithoutForgettingIt) {
  CVPreferences record;
  record.setConversionMode(u"Vector"_s);
  record.setFormat(u"PNG"_s);
  EXPECT_EQ(record.conversionMode(), u"Image"_s);
  record.setFormat(u"PDF"_s);
  EXPECT_EQ(record.conversionMode(), u"Vector"_s);
}

TEST(SnapshotRules, ACopyGoesThroughTheRules) {
  CVPreferences record;
  record.setUsePagination(true);
  record.setFormat(u"GIF"_s);
  record.setNotes(u"first draft"_s);
  record.setOrientation(1);
  record.setDownloadLocation(QUrl(u"file:///tmp/results"_s));
  const auto copy = record.copyWithZone();
  EXPECT_EQ(copy->format(), u"PDF"_s);
  EXPECT_EQ(copy->conversionMode(), u"Image"_s);
  EXPECT_EQ(copy->notes(), u"first draft"_s);
  EXPECT_EQ(copy->orientation(), 1);
  EXPECT_EQ(copy->downloadLocation(), QUrl(u"file:///tmp/results"_s));

  CVPreferences printed;
  printed.setDestination(u"Printer"_s);
  printed.setConversionMode(u"Vector"_s);
  EXPECT_EQ(printed.copyWithZone()->conversionMode(), u"Vector"_s);
}

TEST(SnapshotRules, ACopyOfTheApplicationSettingsNeverSaves) {
  const auto store = defaults::UserDefaults::inMemory();
  const CVDefaultPreferences settings(store);
  const auto copy = settings.copyWithZone();
  EXPECT_EQ(dynamic_cast<CVDefaultPreferences*>(copy.get()), nullptr);
  copy->setFormat(u"TIFF"_s);
  EXPECT_FALSE(store->stringForKey(u"format"_s));
}

TEST(SnapshotRules, FormatsKnowTheirExtensionAndBitmapType) {
  struct Row {
    QString format;
    std::optional<QString> extension;
    unsigned type;
  };
  const Row rows[] = {
      {u"PDF"_s, u"pdf"_s, 4},   {u"BMP"_s, u"bmp"_s, 1}, {u"GIF"_s, u"gif"_s, 2},
      {u"JPEG"_s, u"jpg"_s, 3},  {u"JP2"_s, u"jp2"_s, 5}, {u"PNG"_s, u"png"_s, 4},
      {u"TIFF"_s, u"tiff"_s, 0}, {u"jpeg"_s, {}, 4},      {QString(), {}, 4},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CVPreferences::getExtensionForConversionFormat(row.format), row.extension);
    EXPECT_EQ(CVPreferences::getFileTypeForConversionFormat(row.format), row.type);
  }
  EXPECT_FALSE(CVPreferences::getExtensionForConversionFormat(std::nullopt));
  CVPreferences paginated;
  EXPECT_EQ(paginated.getValidFormats().size(), 7);
  paginated.setUsePagination(true);
  EXPECT_EQ(paginated.getValidFormats(), QStringList{u"PDF"_s});
}

}  // namespace
