#include "app/OutputName.h"

#include <QFileInfo>
#include <array>

#include "settings/CVPreferences.h"

using namespace Qt::StringLiterals;

namespace OutputName {
namespace {

struct Spelling {
  QStringView extension;
  QStringView format;
};

/// Beside the formats' own extensions. What reads JPEG 2000 files goes by their contents, not by
/// which of the family's extensions they carry.
constexpr std::array otherSpellings{
    Spelling{u"jpeg", u"JPEG"}, Spelling{u"jpe", u"JPEG"}, Spelling{u"tif", u"TIFF"},
    Spelling{u"jpg2", u"JP2"},  Spelling{u"j2k", u"JP2"},  Spelling{u"jpf", u"JP2"},
};

}  // namespace

std::optional<QString> format(const QString& file) {
  const QString extension = QFileInfo(file).suffix().toLower();
  for (const QString& format : CVPreferences::getConversionFormats()) {
    if (CVPreferences::getExtensionForConversionFormat(format) == extension) return format;
  }
  for (const Spelling& spelling : otherSpellings) {
    if (spelling.extension == extension) return spelling.format.toString();
  }
  return std::nullopt;
}

QString withExtension(const QString& file, const QString& format) {
  if (OutputName::format(file) == format) return file;
  return file + u'.' + CVPreferences::getExtensionForConversionFormat(format).value_or(QString());
}

}  // namespace OutputName
