#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/base/Font.h"

/// The choices that decide how one page is converted and where the result goes.
///
/// Pagination, format, destination and conversion mode are tied together by the setters; callers
/// rely on that instead of keeping the record consistent themselves. Each field is read and written
/// under a lock of its record, so a record may be changed on one thread and read on another; a
/// conversion works on a copy of its own.
class CVPreferences {
 public:
  CVPreferences();
  virtual ~CVPreferences();
  CVPreferences(const CVPreferences&) = delete;
  CVPreferences& operator=(const CVPreferences&) = delete;

  /// The vocabularies, in the order in which menus list them. Compared exactly, capitals included.
  static QStringList getConversionFormats();
  static QStringList getConversionModes();
  static QStringList getDestinations();

  /// The file extension without its dot; none for anything but a conversion format.
  static std::optional<QString> getExtensionForConversionFormat(
      const std::optional<QString>& format);

  /// The bitmap file type (0 TIFF, 1 BMP, 2 GIF, 3 JPEG, 4 PNG, 5 JPEG 2000). Everything that is
  /// not a bitmap format, "PDF" included, gives PNG: callers ask only once they know that a bitmap
  /// is due.
  static unsigned getFileTypeForConversionFormat(const std::optional<QString>& format);

  /// Sets every field to its default, through the setters.
  virtual void initDefaults();

  /// The formats that can be chosen now: with pagination only "PDF".
  QStringList getValidFormats() const;

  /// A plain record with the same choices, whatever the receiver's class: it never saves itself.
  std::shared_ptr<CVPreferences> copyWithZone() const;

  bool usePagination() const;
  /// On: the format becomes "PDF". Off: the destination "Printer" becomes "Disk".
  virtual void setUsePagination(bool paginate);

  bool includeHeadersAndFooters() const;
  virtual void setIncludeHeadersAndFooters(bool include);

  /// Stored with the rest; no conversion step reads it.
  bool riskyConversion() const;
  virtual void setRiskyConversion(bool risky);

  /// 0.0 (smallest file) to 1.0 (no extra compression).
  float compression() const;
  virtual void setCompression(float factor);

  std::optional<QString> format() const;
  virtual void setFormat(std::optional<QString> format);

  /// Points, on all four sides of a page.
  std::uint64_t margin() const;
  virtual void setMargin(std::uint64_t points);

  std::optional<Font> headerAndFooterFont() const;
  virtual void setHeaderAndFooterFont(std::optional<Font> font);

  std::optional<QString> notes() const;
  virtual void setNotes(std::optional<QString> notes);

  /// The target folder; during a conversion, the target file.
  std::optional<QUrl> downloadLocation() const;
  virtual void setDownloadLocation(std::optional<QUrl> location);

  std::optional<QString> destination() const;
  /// "Printer" also sets pagination on (and with it the format "PDF") and the mode "Image".
  virtual void setDestination(std::optional<QString> destination);

  /// 0 portrait, 1 landscape.
  std::int64_t orientation() const;
  virtual void setOrientation(std::int64_t orientation);

  /// The stored mode while the format is "PDF", else "Image"; the stored mode stays as it is.
  std::optional<QString> conversionMode() const;
  virtual void setConversionMode(std::optional<QString> mode);

 protected:
  std::optional<QString> storedConversionMode() const;

  template <class Value>
  Value read(const Value& field) const {
    std::lock_guard lock(mutex_);
    return field;
  }
  template <class Value>
  void store(Value& field, Value value) {
    std::lock_guard lock(mutex_);
    field = std::move(value);
  }

 private:
  mutable std::mutex mutex_;
  bool usePagination_ = false;
  bool includeHeadersAndFooters_ = false;
  bool riskyConversion_ = false;
  float compression_ = 1.0F;
  std::optional<QString> format_;
  std::uint64_t margin_ = 0;
  std::optional<Font> headerAndFooterFont_;
  std::optional<QString> notes_;
  std::optional<QUrl> downloadLocation_;
  std::optional<QString> destination_;
  std::int64_t orientation_ = 0;
  std::optional<QString> conversionMode_;
};
