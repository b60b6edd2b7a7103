#include <gtest/gtest.h>

#include <QApplication>
#include <QPageRanges>
#include <QPrintDialog>
#include <QPrinter>

#include "support/Wait.h"
#include "ui/panels/QtPrintPanel.h"

using namespace Qt::StringLiterals;
using printing::PrintInfo;

namespace {

QPrintDialog* openDialog() {
  QPrintDialog* found = nullptr;
  support::waitFor([&found] {
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* dialog = qobject_cast<QPrintDialog*>(widget); dialog && dialog->isVisible())
        found = dialog;
    return found != nullptr;
  });
  return found;
}

PrintInfo landscapeA5() {
  PrintInfo info = PrintInfo::sharedPrintInfo();
  info.setPaperSize(QSizeF(595, 420));
  info.setOrientation(printing::PaperOrientationLandscape);
  info.setLeftMargin(11);
  return info;
}

TEST(QtPrintPanel, PaperTravelsToThePrinterAndBack) {
  QPrinter printer;
  preparePrinter(printer, landscapeA5());
  EXPECT_EQ(printer.pageLayout().pageSize().id(), QPageSize::A5);
  EXPECT_EQ(printer.pageLayout().orientation(), QPageLayout::Landscape);
  printer.setPageSize(QPageSize(QPageSize::A4));
  const auto answer = readPrinter(printer, landscapeA5());
  EXPECT_EQ(answer.info.paperSize().toSize(), QSize(842, 595));
  EXPECT_EQ(answer.info.orientation(), printing::PaperOrientationLandscape);
  EXPECT_EQ(answer.info.leftMargin(), 11);
  printer.setPageOrientation(QPageLayout::Portrait);
  EXPECT_EQ(readPrinter(printer, landscapeA5()).info.paperSize().toSize(), QSize(595, 842));
}

TEST(QtPrintPanel, WhatWasChosenReachesTheJob) {
  QPrinter printer;
  printer.setOutputFileName(u"/tmp/chosen.pdf"_s);
  printer.setCopyCount(3);
  printer.setPrintRange(QPrinter::PageRange);
  printer.setPageRanges(QPageRanges::fromString(u"2-4,7"_s));
  const auto settings = readPrinter(printer, PrintInfo::sharedPrintInfo()).settings;
  EXPECT_EQ(settings.outputFile, u"/tmp/chosen.pdf"_s);
  EXPECT_FALSE(settings.queue);
  EXPECT_EQ(settings.copies, 3);
  EXPECT_EQ(settings.pageRanges, (QList<printing::PageRange>{{2, 4}, {7, 7}}));
  printer.setPrintRange(QPrinter::AllPages);
  EXPECT_TRUE(readPrinter(printer, PrintInfo::sharedPrintInfo()).settings.pageRanges.isEmpty());
}

TEST(QtPrintPanel, EachWayOfClosingAnswersOnce) {
  QtPrintPanel panel(nullptr);
  int accepted = 0;
  int cancelled = 0;
  const auto count = [&](const auto& answer) { answer ? ++accepted : ++cancelled; };
  panel.show(landscapeA5(), count);
  QPrintDialog* dialog = openDialog();
  ASSERT_TRUE(dialog);
  dialog->reject();
  ASSERT_TRUE(support::waitFor([&] { return cancelled == 1; }));
  panel.show(landscapeA5(), count);
  dialog = openDialog();
  ASSERT_TRUE(dialog);
  // Accepting through the dialogue's own button would ask about a file; the answer is what counts.
  dialog->QDialog::done(QDialog::Accepted);
  EXPECT_TRUE(support::waitFor([&] { return accepted == 1; }));
  EXPECT_EQ(cancelled, 1);
}

}  // namespace
