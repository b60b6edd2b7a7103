#include "intake/PublicHost.h"

#include <libpsl.h>

#include <QList>
#include <QUrl>
#include <algorithm>

namespace PublicHost {
namespace {

constexpr qsizetype longestName = 253;  // RFC 1035, section 2.3.4, without the root's dot
constexpr qsizetype longestLabel = 63;

/// Top-level domains that are better known as file name extensions.
constexpr QStringView fileExtensions[] = {u"ad", u"am", u"bz", u"cab", u"cc", u"gd",  u"la",
                                          u"md", u"mk", u"mm", u"mov", u"pm", u"pub", u"ps",
                                          u"py", u"rs", u"sh", u"so",  u"tf", u"zip"};

bool isDigit(QChar character) {
  return character >= u'0' && character <= u'9';
}

bool isNumber(QStringView label) {
  return std::all_of(label.begin(), label.end(), isDigit);
}

bool isLabel(QStringView label) {
  return !label.isEmpty() && label.size() <= longestLabel && !label.startsWith(u'-') &&
         !label.endsWith(u'-') && !label.contains(u'_');
}

bool isAscii(QStringView text) {
  return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// As the list knows it: lower case, international labels in their ASCII form (RFC 5891).
QByteArray listForm(QStringView name) {
  if (isAscii(name)) return name.toLatin1().toLower();
  return QUrl::toAce(name.toString());
}

bool isPublicSuffix(QStringView name) {
  const QByteArray form = listForm(name);
  return !form.isEmpty() && psl_is_public_suffix2(psl_builtin(), form.constData(),
                                                  PSL_TYPE_ICANN | PSL_TYPE_NO_STAR_RULE);
}

bool isFileExtension(QStringView label) {
  return std::any_of(std::begin(fileExtensions), std::end(fileExtensions),
                     [label](QStringView extension) {
                       return label.compare(extension, Qt::CaseInsensitive) == 0;
                     });
}

/// "the end.It began": the capital begins a sentence.
bool looksLikeSeam(QStringView word, QStringView last) {
  const auto isUpper = [](QChar character) { return character.isUpper(); };
  const auto isLower = [](QChar character) { return character.isLower(); };
  return std::any_of(last.begin(), last.end(), isUpper) &&
         std::any_of(word.begin(), word.end(), isLower);
}

/// "2.0.dev"
bool looksLikeVersion(const QList<QStringView>& labels) {
  return labels.size() > 2 && std::all_of(labels.begin(), labels.end() - 1, isNumber);
}

}  // namespace

bool isHostCharacter(QChar character) {
  const char16_t unit = character.unicode();
  if (unit >= 0x80) return character.isLetterOrNumber() || character.isMark();
  const char16_t lower = unit | 0x20;
  return (lower >= u'a' && lower <= u'z') || isDigit(character) || unit == u'-' || unit == u'.' ||
         unit == u'_';
}

bool isHostName(QStringView word, Surroundings surroundings) {
  if (word.size() > longestName || !word.contains(u'.')) return false;
  const QList<QStringView> labels = word.split(u'.');
  const QStringView last = labels.last();
  if (!std::all_of(labels.begin(), labels.end(), isLabel) || isNumber(last)) return false;
  const bool beginsWithWww = labels.first().compare(u"www", Qt::CaseInsensitive) == 0;
  if (beginsWithWww && labels.size() > 2 && last.size() > 1) return true;
  if (surroundings == Surroundings::Plain &&
      (isFileExtension(last) || looksLikeSeam(word, last) || looksLikeVersion(labels))) {
    return false;
  }
  return isPublicSuffix(last) && !isPublicSuffix(word);
}

bool isIPv4Address(QStringView word) {
  const QList<QStringView> numbers = word.split(u'.');
  return numbers.size() == 4 && std::all_of(numbers.begin(), numbers.end(), [](QStringView number) {
           return !number.isEmpty() && number.size() <= 3 && isNumber(number) &&
                  number.toInt() <= 255;
         });
}

}  // namespace PublicHost
