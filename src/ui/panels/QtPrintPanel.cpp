#include "ui/panels/QtPrintPanel.h"

#include <QPageRanges>
#include <QPrintDialog>
#include <QPrinter>

using namespace Qt::StringLiterals;
using printing::PrintInfo;
using printing::PrintPanel;
using printing::PrintSettings;

namespace {

printing::Sides sidesOf(QPrinter::DuplexMode mode, const QPageLayout& layout) {
  switch (mode) {
    case QPrinter::DuplexLongSide:
      return printing::Sides::TwoSidedLongEdge;
    case QPrinter::DuplexShortSide:
      return printing::Sides::TwoSidedShortEdge;
    case QPrinter::DuplexAuto:
      return layout.orientation() == QPageLayout::Landscape ? printing::Sides::TwoSidedShortEdge
                                                            : printing::Sides::TwoSidedLongEdge;
    default:
      return printing::Sides::OneSided;
  }
}

QList<printing::PageRange> rangesOf(const QPrinter& printer) {
  QList<printing::PageRange> ranges;
  if (printer.printRange() != QPrinter::PageRange) return ranges;
  for (const QPageRanges::Range& range : printer.pageRanges().toRangeList())
    ranges.append({range.from, range.to});
  if (ranges.isEmpty() && printer.fromPage() > 0)
    ranges.append({printer.fromPage(), qMax(printer.fromPage(), printer.toPage())});
  return ranges;
}

void readPrinterOfQueue(const QPrinter& printer, PrintSettings& settings) {
  if (!printer.printerName().isEmpty()) settings.queue = printer.printerName();
  const QString media = printer.pageLayout().pageSize().key();
  // A paper of free size has no name that a queue knows; the document's own size then decides.
  if (!media.isEmpty() && !media.startsWith("Custom"_L1)) settings.media = media;
  // Names of RFC 8011, 5.2 Job Template Attributes, and of the CUPS print options.
  if (printer.copyCount() > 1)
    settings.options[u"collate"_s] = printer.collateCopies() ? u"true"_s : u"false"_s;
  if (printer.colorMode() == QPrinter::GrayScale)
    settings.options[u"print-color-mode"_s] = u"monochrome"_s;
}

}  // namespace

void preparePrinter(QPrinter& printer, const PrintInfo& info) {
  const bool landscape = info.orientation() == printing::PaperOrientationLandscape;
  QSizeF sheet = info.paperSize();
  // The toolkit counts a paper's size upright and turns it.
  if (sheet.width() > sheet.height()) sheet.transpose();
  printer.setPageSize(QPageSize(sheet, QPageSize::Point, {}, QPageSize::FuzzyMatch));
  printer.setPageOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
}

PrintPanel::Answer readPrinter(const QPrinter& printer, const PrintInfo& info) {
  PrintPanel::Answer answer{{}, info};
  const QPageLayout layout = printer.pageLayout();
  answer.settings.copies = qMax(1, printer.copyCount());
  answer.settings.pageRanges = rangesOf(printer);
  answer.settings.sides = sidesOf(printer.duplex(), layout);
  if (printer.outputFileName().isEmpty())
    readPrinterOfQueue(printer, answer.settings);
  else
    answer.settings.outputFile = printer.outputFileName();
  answer.info.setPaperSize(layout.fullRect(QPageLayout::Point).size());
  answer.info.setOrientation(layout.orientation() == QPageLayout::Landscape
                                 ? printing::PaperOrientationLandscape
                                 : printing::PaperOrientationPortrait);
  return answer;
}

void QtPrintPanel::show(const PrintInfo& info,
                        std::function<void(std::optional<Answer>)> completion) {
  const auto printer = std::make_shared<QPrinter>(QPrinter::ScreenResolution);
  preparePrinter(*printer, info);
  auto* dialog = new QPrintDialog(printer.get(), mainWindow_);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowModality(Qt::WindowModal);
  dialog->setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange |
                     QAbstractPrintDialog::PrintCollateCopies |
                     QAbstractPrintDialog::PrintShowPageSize);
  // The dialogue reads the printer until it is destroyed, so the closure keeps it.
  QObject::connect(dialog, &QDialog::finished, dialog,
                   [printer, info, completion = std::move(completion)](int result) {
                     completion(result == QDialog::Accepted
                                    ? std::optional(readPrinter(*printer, info))
                                    : std::nullopt);
                   });
  dialog->open();
}
