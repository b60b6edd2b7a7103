#pragma once

#include <QSizeF>
#include <QUrl>
#include <QVariantMap>

namespace printing {

enum class JobDisposition { Spool, Save };
enum PaperOrientation { PaperOrientationPortrait = 0, PaperOrientationLandscape = 1 };
enum PaginationMode { PaginationModeAutomatic = 0, PaginationModeFit = 1, PaginationModeClip = 2 };

/// The names of the settings in `PrintInfo::dictionary`.
inline constexpr QLatin1StringView PrintJobDisposition{"PrintJobDisposition"};
inline constexpr QLatin1StringView PrintJobSavingURL{"PrintJobSavingURL"};
/// The values of the first.
inline constexpr QLatin1StringView PrintSpoolJob{"PrintSpoolJob"};
inline constexpr QLatin1StringView PrintSaveJob{"PrintSaveJob"};

/// How a document is laid on pages. A value: copies are independent. Lengths are in points.
class PrintInfo {
 public:
  /// A copy of the program's own settings: at first the paper of the locale (LC_PAPER), portrait,
  /// spooled, margins of 72 at the sides and 90 above and below. Any thread.
  static PrintInfo sharedPrintInfo();
  static void setSharedPrintInfo(const PrintInfo& info);

  /// The settings by name, as a copy. Names that this class does not know are kept and come back.
  explicit PrintInfo(const QVariantMap& dictionary);
  QVariantMap dictionary() const { return settings_; }

  JobDisposition jobDisposition() const;
  void setJobDisposition(JobDisposition disposition);
  /// The file that a saved job is written to.
  QUrl jobSavingURL() const;
  void setJobSavingURL(const QUrl& url);

  bool isHorizontallyCentered() const;
  void setHorizontallyCentered(bool centered);
  bool isVerticallyCentered() const;
  void setVerticallyCentered(bool centered);
  PaginationMode horizontalPagination() const;
  void setHorizontalPagination(PaginationMode mode);

  PaperOrientation orientation() const;
  /// Turns the paper where its longer side does not fit the orientation.
  void setOrientation(PaperOrientation orientation);
  /// The sheet as it is read: wider than tall in landscape.
  QSizeF paperSize() const;
  /// Leaves the orientation as it is.
  void setPaperSize(const QSizeF& size);

  double topMargin() const;
  double bottomMargin() const;
  double leftMargin() const;
  double rightMargin() const;
  void setTopMargin(double margin);
  void setBottomMargin(double margin);
  void setLeftMargin(double margin);
  void setRightMargin(double margin);

 private:
  QVariantMap settings_;
};

/// The sheet that the locale's LC_PAPER names, portrait, in whole points: A4 is 595 x 842, Letter
/// 612 x 792.
QSizeF localePaperSize();

}  // namespace printing
