#include "settings/CVPreferences.h"

#include <QFontDatabase>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct FormatRow {
  QLatin1StringView format;
  QLatin1StringView extension;
  unsigned bitmapFileType;
};

constexpr unsigned pngFileType = 4;

constexpr std::array formatTable{
    FormatRow{"PDF"_L1, "pdf"_L1, pngFileType}, FormatRow{"BMP"_L1, "bmp"_L1, 1},
    FormatRow{"GIF"_L1, "gif"_L1, 2},           FormatRow{"JPEG"_L1, "jpg"_L1, 3},
    FormatRow{"JP2"_L1, "jp2"_L1, 5},           FormatRow{"PNG"_L1, "png"_L1, pngFileType},
    FormatRow{"TIFF"_L1, "tiff"_L1, 0},
};

const FormatRow* rowForFormat(const std::optional<QString>& format) {
  for (const FormatRow& row : formatTable) {
    if (format == row.format) return &row;
  }
  return nullptr;
}

Font systemFont(double pointSize) {
  return Font{QFontDatabase::systemFont(QFontDatabase::GeneralFont).family(), pointSize};
}

}  // namespace

CVPreferences::CVPreferences() {
  CVPreferences::initDefaults();
}

CVPreferences::~CVPreferences() = default;

QStringList CVPreferences::getConversionFormats() {
  QStringList formats;
  for (const FormatRow& row : formatTable)
    formats.append(row.format);
  return formats;
}

QStringList CVPreferences::getConversionModes() {
  return {u"Vector"_s, u"Image"_s};
}

QStringList CVPreferences::getDestinations() {
  return {u"Disk"_s, u"Printer"_s, u"E-Mail"_s, u"Pasteboard"_s, u"Evernote"_s, u"DropBox"_s};
}

std::optional<QString> CVPreferences::getExtensionForConversionFormat(
    const std::optional<QString>& format) {
  const FormatRow* row = rowForFormat(format);
  if (!row) return std::nullopt;
  return QString(row->extension);
}

unsigned CVPreferences::getFileTypeForConversionFormat(const std::optional<QString>& format) {
  const FormatRow* row = rowForFormat(format);
  return row ? row->bitmapFileType : pngFileType;
}

void CVPreferences::initDefaults() {
  setFormat(u"PDF"_s);
  setUsePagination(false);
  setMargin(50);
  setIncludeHeadersAndFooters(false);
  setHeaderAndFooterFont(systemFont(10.0));
  setNotes(std::nullopt);
  setDestination(u"Disk"_s);
  setOrientation(0);
  setCompression(1.0F);
  setConversionMode(u"Image"_s);
  setRiskyConversion(false);
}

QStringList CVPreferences::getValidFormats() const {
  return usePagination() ? QStringList{u"PDF"_s} : getConversionFormats();
}

std::shared_ptr<CVPreferences> CVPreferences::copyWithZone() const {
  auto copy = std::make_shared<CVPreferences>();
  // The setters tie the fields together, so the order decides the outcome.
  copy->setFormat(format());
  copy->setUsePagination(usePagination());
  copy->setMargin(margin());
  copy->setIncludeHeadersAndFooters(includeHeadersAndFooters());
  copy->setHeaderAndFooterFont(headerAndFooterFont());
  copy->setNotes(notes());
  copy->setDownloadLocation(downloadLocation());
  copy->setDestination(destination());
  copy->setOrientation(orientation());
  copy->setCompression(compression());
  copy->setConversionMode(conversionMode());
  copy->setRiskyConversion(riskyConversion());
  return copy;
}

bool CVPreferences::usePagination() const {
  return read(usePagination_);
}

void CVPreferences::setUsePagination(bool paginate) {
  store(usePagination_, paginate);
  if (paginate && format() != u"PDF"_s) setFormat(u"PDF"_s);
  if (!paginate && destination() == u"Printer"_s) setDestination(u"Disk"_s);
}

bool CVPreferences::includeHeadersAndFooters() const {
  return read(includeHeadersAndFooters_);
}

void CVPreferences::setIncludeHeadersAndFooters(bool include) {
  store(includeHeadersAndFooters_, include);
}

bool CVPreferences::riskyConversion() const {
  return read(riskyConversion_);
}

void CVPreferences::setRiskyConversion(bool risky) {
  store(riskyConversion_, risky);
}

float CVPreferences::compression() const {
  return read(compression_);
}

void CVPreferences::setCompression(float factor) {
  store(compression_, factor);
}

std::optional<QString> CVPreferences::format() const {
  return read(format_);
}

void CVPreferences::setFormat(std::optional<QString> format) {
  store(format_, std::move(format));
}

std::uint64_t CVPreferences::margin() const {
  return read(margin_);
}

void CVPreferences::setMargin(std::uint64_t points) {
  store(margin_, points);
}

std::optional<Font> CVPreferences::headerAndFooterFont() const {
  return read(headerAndFooterFont_);
}

void CVPreferences::setHeaderAndFooterFont(std::optional<Font> font) {
  store(headerAndFooterFont_, std::move(font));
}

std::optional<QString> CVPreferences::notes() const {
  return read(notes_);
}

void CVPreferences::setNotes(std::optional<QString> notes) {
  store(notes_, std::move(notes));
}

std::optional<QUrl> CVPreferences::downloadLocation() const {
  return read(downloadLocation_);
}

void CVPreferences::setDownloadLocation(std::optional<QUrl> location) {
  store(downloadLocation_, std::move(location));
}

std::optional<QString> CVPreferences::destination() const {
  return read(destination_);
}

void CVPreferences::setDestination(std::optional<QString> destination) {
  store(destination_, destination);
  if (destination != u"Printer"_s) return;
  setUsePagination(true);
  setConversionMode(u"Image"_s);
}

std::int64_t CVPreferences::orientation() const {
  return read(orientation_);
}

void CVPreferences::setOrientation(std::int64_t orientation) {
  store(orientation_, orientation);
}

std::optional<QString> CVPreferences::conversionMode() const {
  if (format() != u"PDF"_s) return u"Image"_s;
  return storedConversionMode();
}

std::optional<QString> CVPreferences::storedConversionMode() const {
  return read(conversionMode_);
}

void CVPreferences::setConversionMode(std::optional<QString> mode) {
  store(conversionMode_, std::move(mode));
}
