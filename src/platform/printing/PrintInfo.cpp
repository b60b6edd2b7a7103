#include "platform/printing/PrintInfo.h"

#include <langinfo.h>
#include <locale.h>

#include <mutex>
#include <optional>

namespace printing {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kHorizontallyCentered = "PrintHorizontallyCentered"_L1;
constexpr auto kVerticallyCentered = "PrintVerticallyCentered"_L1;
constexpr auto kHorizontalPagination = "PrintHorizontalPagination"_L1;
constexpr auto kOrientation = "PrintOrientation"_L1;
constexpr auto kPaperSize = "PrintPaperSize"_L1;
constexpr auto kTopMargin = "PrintTopMargin"_L1;
constexpr auto kBottomMargin = "PrintBottomMargin"_L1;
constexpr auto kLeftMargin = "PrintLeftMargin"_L1;
constexpr auto kRightMargin = "PrintRightMargin"_L1;

constexpr QSizeF kLetter(612, 792);
constexpr double kPointsPerMillimetre = 72 / 25.4;

struct SharedInfo {
  std::mutex mutex;
  std::optional<PrintInfo> info;
};

SharedInfo& shared() {
  static SharedInfo info;
  return info;
}

/// glibc hands these two numbers out in the place of a pointer.
int millimetres(nl_item item, locale_t locale) {
  return static_cast<int>(reinterpret_cast<intptr_t>(nl_langinfo_l(item, locale)));
}

}  // namespace

QSizeF localePaperSize() {
  const locale_t locale = newlocale(LC_PAPER_MASK, "", nullptr);
  if (!locale) return {595, 842};
  const int width = millimetres(_NL_PAPER_WIDTH, locale);
  const int height = millimetres(_NL_PAPER_HEIGHT, locale);
  freelocale(locale);
  // The locale's millimetres round 8.5 x 11 inches too coarsely to come out at 792 points.
  if (width == 216 && height == 279) return kLetter;
  return {static_cast<double>(qRound(width * kPointsPerMillimetre)),
          static_cast<double>(qRound(height * kPointsPerMillimetre))};
}

PrintInfo PrintInfo::sharedPrintInfo() {
  SharedInfo& info = shared();
  const std::lock_guard lock(info.mutex);
  if (!info.info) info.info.emplace(QVariantMap());
  return *info.info;
}

void PrintInfo::setSharedPrintInfo(const PrintInfo& info) {
  const std::lock_guard lock(shared().mutex);
  shared().info = info;
}

PrintInfo::PrintInfo(const QVariantMap& dictionary)
    : settings_{{PrintJobDisposition, QString(PrintSpoolJob)},
                {kHorizontallyCentered, true},
                {kVerticallyCentered, true},
                {kHorizontalPagination, PaginationModeClip},
                {kOrientation, PaperOrientationPortrait},
                {kTopMargin, 90.0},
                {kBottomMargin, 90.0},
                {kLeftMargin, 72.0},
                {kRightMargin, 72.0}} {
  settings_.insert(dictionary);
  if (!settings_.contains(kPaperSize)) setPaperSize(localePaperSize());
}

JobDisposition PrintInfo::jobDisposition() const {
  const bool saves = settings_.value(PrintJobDisposition).toString() == PrintSaveJob;
  return saves ? JobDisposition::Save : JobDisposition::Spool;
}

void PrintInfo::setJobDisposition(JobDisposition disposition) {
  const QString name = disposition == JobDisposition::Save ? PrintSaveJob : PrintSpoolJob;
  settings_.insert(PrintJobDisposition, name);
}

QUrl PrintInfo::jobSavingURL() const {
  return settings_.value(PrintJobSavingURL).toUrl();
}
void PrintInfo::setJobSavingURL(const QUrl& url) {
  settings_.insert(PrintJobSavingURL, url);
}

bool PrintInfo::isHorizontallyCentered() const {
  return settings_.value(kHorizontallyCentered).toBool();
}
void PrintInfo::setHorizontallyCentered(bool centered) {
  settings_.insert(kHorizontallyCentered, centered);
}
bool PrintInfo::isVerticallyCentered() const {
  return settings_.value(kVerticallyCentered).toBool();
}
void PrintInfo::setVerticallyCentered(bool centered) {
  settings_.insert(kVerticallyCentered, centered);
}

PaginationMode PrintInfo::horizontalPagination() const {
  return static_cast<PaginationMode>(settings_.value(kHorizontalPagination).toInt());
}

void PrintInfo::setHorizontalPagination(PaginationMode mode) {
  settings_.insert(kHorizontalPagination, mode);
}

PaperOrientation PrintInfo::orientation() const {
  const bool isLandscape = settings_.value(kOrientation).toInt() == PaperOrientationLandscape;
  return isLandscape ? PaperOrientationLandscape : PaperOrientationPortrait;
}

void PrintInfo::setOrientation(PaperOrientation orientation) {
  settings_.insert(kOrientation, orientation);
  const QSizeF size = paperSize();
  const bool isWide = size.width() > size.height();
  const bool isTall = size.width() < size.height();
  const bool fits = orientation == PaperOrientationLandscape ? !isTall : !isWide;
  if (!fits) setPaperSize(size.transposed());
}

QSizeF PrintInfo::paperSize() const {
  return settings_.value(kPaperSize).toSizeF();
}
void PrintInfo::setPaperSize(const QSizeF& size) {
  settings_.insert(kPaperSize, size);
}

double PrintInfo::topMargin() const {
  return settings_.value(kTopMargin).toDouble();
}
double PrintInfo::bottomMargin() const {
  return settings_.value(kBottomMargin).toDouble();
}
double PrintInfo::leftMargin() const {
  return settings_.value(kLeftMargin).toDouble();
}
double PrintInfo::rightMargin() const {
  return settings_.value(kRightMargin).toDouble();
}
void PrintInfo::setTopMargin(double margin) {
  settings_.insert(kTopMargin, margin);
}
void PrintInfo::setBottomMargin(double margin) {
  settings_.insert(kBottomMargin, margin);
}
void PrintInfo::setLeftMargin(double margin) {
  settings_.insert(kLeftMargin, margin);
}
void PrintInfo::setRightMargin(double margin) {
  settings_.insert(kRightMargin, margin);
}

}  // namespace printing
