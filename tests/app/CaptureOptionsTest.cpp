#include <gtest/gtest.h>

#include "app/CaptureOptions.h"
#include "app/CaptureSettings.h"
#include "app/OutputName.h"
#include "platform/defaults/UserDefaults.h"
#include "settings/CVDefaultPreferences.h"

using namespace Qt::StringLiterals;

namespace {

Result<CaptureOptions::Parsed> parse(const QString& line) {
  return CaptureOptions::parse(line.split(u' ', Qt::SkipEmptyParts));
}

TEST(CaptureOptions, EveryOptionArrives) {
  const auto parsed = parse(
      u"-o out --format jpeg --mode image --width 1280 --scale 2 --compression 0.25 --title-domain "
      "--json --quiet a.html b.html"_s);
  ASSERT_TRUE(parsed);
  const CaptureOptions& options = parsed->options;
  EXPECT_EQ(options.sources, (QStringList{u"a.html"_s, u"b.html"_s}));
  EXPECT_EQ(options.output, u"out"_s);
  EXPECT_EQ(options.format, u"JPEG"_s);
  EXPECT_EQ(options.mode, u"Image"_s);
  EXPECT_EQ(options.width, 1280U);
  EXPECT_EQ(options.scale, 2);
  EXPECT_EQ(options.compression, 0.25F);
  EXPECT_TRUE(options.prependDomain);
  EXPECT_EQ(options.report, ReportForm::JsonLines);
  EXPECT_EQ(options.verbosity, Verbosity::Quiet);
}

TEST(CaptureOptions, PaginationArrives) {
  const auto parsed =
      CaptureOptions::parse({u"--paginate"_s, u"--margin"_s, u"36"_s, u"--orientation"_s,
                             u"landscape"_s, u"--headers"_s, u"--font"_s, u"DejaVu Serif, 9.5"_s,
                             u"--notes"_s, u"two words"_s, u"--paper"_s, u"letter"_s, u"a.html"_s});
  ASSERT_TRUE(parsed) << qPrintable(parsed.error().localizedDescription);
  const CaptureOptions& options = parsed->options;
  EXPECT_TRUE(options.paginate && options.headers);
  EXPECT_EQ(options.margin, 36U);
  EXPECT_EQ(options.orientation, 1);
  EXPECT_EQ(options.font, (Font{u"DejaVu Serif"_s, 9.5}));
  EXPECT_EQ(options.notes, u"two words"_s);
  EXPECT_EQ(options.paper, QSizeF(612, 792));
  EXPECT_EQ(parse(u"--paginate --paper 300x500 a"_s)->options.paper, QSizeF(300, 500));
}

TEST(CaptureOptions, AFileNameTellsTheFormat) {
  const std::pair<QString, QString> rows[] = {
      {u"-o page.tiff a.html"_s, u"TIFF"_s},
      {u"-o PAGE.TIF a.html"_s, u"TIFF"_s},
      {u"a.html -o page.jpeg"_s, u"JPEG"_s},
      {u"-o page.v2.J2K a.html"_s, u"JP2"_s},
      {u"-o page.png --format GIF a.html"_s, u"GIF"_s},
      {u"-o page.webp a.html"_s, u"PDF"_s},
      {u"-o folder a.html"_s, u"PDF"_s},
      {u"-o folder.png/ a.html"_s, u"PDF"_s},
      {u"-o folder.png a.html b.html"_s, u"PDF"_s},
  };
  for (const auto& [line, format] : rows)
    EXPECT_EQ(parse(line)->options.format, format) << qPrintable(line);
}

TEST(CaptureOptions, AUsualSpellingOfTheExtensionIsKept) {
  struct Row {
    QString given, format, name;
  };
  for (const Row& row :
       {Row{u"out/x.jpeg"_s, u"JPEG"_s, u"out/x.jpeg"_s}, Row{u"x.Jpg"_s, u"JPEG"_s, u"x.Jpg"_s},
        Row{u"X.PNG"_s, u"PNG"_s, u"X.PNG"_s}, Row{u"x.tif"_s, u"TIFF"_s, u"x.tif"_s},
        Row{u"x.jpf"_s, u"JP2"_s, u"x.jpf"_s}, Row{u"x.jp2"_s, u"JPEG"_s, u"x.jp2.jpg"_s},
        Row{u"x.pdf"_s, u"PNG"_s, u"x.pdf.png"_s}, Row{u"jpeg"_s, u"JPEG"_s, u"jpeg.jpg"_s}}) {
    EXPECT_EQ(OutputName::withExtension(row.given, row.format), row.name);
  }
}

TEST(CaptureOptions, WhatWasAskedForStandsOverWhatADestinationBringsWithIt) {
  struct Row {
    QString line, destination, mode;
    bool paginates;
  };
  for (const Row& row :
       {Row{u"a"_s, u"Disk"_s, u"Vector"_s, false},
        Row{u"--mode Image a"_s, u"Disk"_s, u"Image"_s, false},
        Row{u"--paginate a"_s, u"Disk"_s, u"Vector"_s, true},
        Row{u"--destination Printer a"_s, u"Printer"_s, u"Image"_s, true},
        Row{u"--destination Printer --mode Vector a"_s, u"Printer"_s, u"Vector"_s, true},
        Row{u"--mode Vector --paginate a --destination Printer"_s, u"Printer"_s, u"Vector"_s, true},
        Row{u"--format PNG --destination E-Mail a"_s, u"E-Mail"_s, u"Image"_s, false}}) {
    SCOPED_TRACE(row.line.toStdString());
    CVDefaultPreferences settings(defaults::UserDefaults::inMemory());
    applyOptions(parse(row.line)->options, settings);
    EXPECT_EQ(settings.destination(), row.destination);
    EXPECT_EQ(settings.conversionMode(), row.mode);
    EXPECT_EQ(settings.usePagination(), row.paginates);
  }
}

TEST(CaptureOptions, ARefusedNumberIsToldItsRangeAndWhetherItMustBeWhole) {
  EXPECT_TRUE(
      parse(u"--margin 10.5 a"_s).error().localizedDescription.contains("whole number from 0"_L1));
  EXPECT_FALSE(parse(u"--scale 9 a"_s).error().localizedDescription.contains("whole"_L1));
}

TEST(CaptureOptions, WhatMakesNoSenseIsRefusedInWords) {
  const QString lines[] = {
      QString(),
      u"--format WEBP a"_s,
      u"--mode Other a"_s,
      u"--width 0 a"_s,
      u"--width 10.5 a"_s,
      u"--width wide a"_s,
      u"--scale 0 a"_s,
      u"--scale nan a"_s,
      u"--compression 1.1 a"_s,
      u"--paper 10x10 a"_s,
      u"--paper sheet a"_s,
      u"--font Serif a"_s,
      u"--margin -1 a"_s,
      u"--paginate --format PNG a"_s,
      u"--destination Printer --format PNG a"_s,
      u"--multipage m.pdf -o x a"_s,
      u"--destination Pasteboard a"_s,
      u"--unknown a"_s,
      u"- -"_s,
  };
  for (const QString& line : lines) {
    const auto parsed = parse(line);
    ASSERT_FALSE(parsed) << qPrintable(line);
    EXPECT_FALSE(parsed.error().localizedDescription.isEmpty());
  }
}

TEST(CaptureOptions, TheHelpNamesEveryOption) {
  ASSERT_TRUE(parse(u"--help"_s)->helpWanted);
  for (const char* option :
       {"--output", "--format", "--mode", "--width", "--scale", "--compression", "--title-domain",
        "--json", "--quiet", "--verbose", "--paginate"}) {
    EXPECT_TRUE(CaptureOptions::help().contains(QLatin1StringView(option))) << option;
  }
}

}  // namespace
