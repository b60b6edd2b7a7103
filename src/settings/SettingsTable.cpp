#include "settings/SettingsTable.h"

#include <charconv>
#include <functional>
#include <vector>

#include "platform/defaults/UserDefaults.h"
#include "platform/fonts/FontName.h"
#include "settings/CVDefaultPreferences.h"

using namespace Qt::StringLiterals;

namespace {

using Text = std::optional<QString>;

/// What the store's text becomes when its key is missing.
enum class WhenMissing { ReadsAsNone, KeepsDefault };

/// The number at the front of the text; 0 where there is none.
template <class Number>
Number leadingNumber(const Text& text) {
  const QByteArray bytes = text.value_or(QString()).trimmed().toLatin1();
  const char* first = bytes.constData();
  const char* last = first + bytes.size();
  if (first != last && *first == '+') ++first;
  Number number = 0;
  std::from_chars(first, last, number);
  return number;
}

std::int64_t integerValue(const Text& text) {
  return leadingNumber<std::int64_t>(text);
}

bool isYes(const Text& text) {
  return text && text->compare("yes"_L1, Qt::CaseInsensitive) == 0;
}

Text textOf(bool flag) {
  return flag ? u"yes"_s : u"no"_s;
}

constexpr QLatin1StringView fontSeparator("$$$");

Text textOf(const std::optional<Font>& font) {
  if (!font) return std::nullopt;
  return font->name + fontSeparator + QString::number(font->pointSize, 'f', 6);
}

std::optional<Font> fontOf(const Text& text) {
  const QStringList pieces = text.value_or(QString()).split(fontSeparator);
  if (pieces.size() < 2 || !fonts::isKnown(pieces[0])) return std::nullopt;
  return Font{pieces[0], leadingNumber<double>(pieces[1])};
}

Text textOf(const std::optional<QUrl>& location) {
  if (!location) return std::nullopt;
  return location->toString(QUrl::FullyEncoded);
}

std::optional<QUrl> locationOf(const Text& text) {
  if (!text || text->isEmpty()) return std::nullopt;
  return QUrl(*text);
}

}  // namespace

struct SettingsTable::Row {
  QString key;
  WhenMissing whenMissing;
  std::function<Text(const CVDefaultPreferences&)> text;
  std::function<void(CVDefaultPreferences&, const Text&)> apply;
  Text defaultText = std::nullopt;
};

namespace {

using Settings = CVDefaultPreferences;
using enum WhenMissing;

template <class Row, class Getter, class Setter>
Row flag(QString key, WhenMissing whenMissing, Getter getter, Setter setter,
         Text defaultText = {}) {
  return {std::move(key), whenMissing,
          [getter](const Settings& settings) { return textOf((settings.*getter)()); },
          [setter](Settings& settings, const Text& text) { (settings.*setter)(isYes(text)); },
          std::move(defaultText)};
}

template <class Row, class Getter, class Setter>
Row number(QString key, WhenMissing whenMissing, Getter getter, Setter setter,
           Text defaultText = {}) {
  return {
      std::move(key), whenMissing,
      [getter](const Settings& settings) -> Text {
        return QString::number(static_cast<std::uint64_t>((settings.*getter)()));
      },
      [setter](Settings& settings, const Text& text) { (settings.*setter)(integerValue(text)); },
      std::move(defaultText)};
}

template <class Row, class Getter, class Setter>
Row string(QString key, WhenMissing whenMissing, Getter getter, Setter setter,
           Text defaultText = {}) {
  return {std::move(key), whenMissing,
          [getter](const Settings& settings) { return (settings.*getter)(); },
          [setter](Settings& settings, const Text& text) { (settings.*setter)(text); },
          std::move(defaultText)};
}

template <class Row>
Row fontRow() {
  return {
      u"headerAndFooterFont"_s, ReadsAsNone,
      [](const Settings& settings) { return textOf(settings.headerAndFooterFont()); },
      [](Settings& settings, const Text& text) { settings.setHeaderAndFooterFont(fontOf(text)); }};
}

template <class Row>
Row locationRow() {
  return {
      u"downloadLocation"_s, ReadsAsNone,
      [](const Settings& settings) { return textOf(settings.downloadLocation()); },
      [](Settings& settings, const Text& text) { settings.setDownloadLocation(locationOf(text)); }};
}

template <class Row>
Row compressionRow() {
  return {u"compression"_s, ReadsAsNone,
          [](const Settings& settings) -> Text {
            return QString::number(static_cast<double>(settings.compression()), 'f', 6);
          },
          [](Settings& settings, const Text& text) {
            settings.setCompression(leadingNumber<float>(text));
          }};
}

/// The marker that tells a full set from an empty store.
template <class Row>
Row savedMarkerRow() {
  return {u"preferencesSaved"_s, KeepsDefault, [](const Settings&) -> Text { return u"yes"_s; },
          [](Settings&, const Text&) {}};
}

}  // namespace

template <class Visitor>
void SettingsTable::visit(Visitor&& visitor) {
  using S = CVDefaultPreferences;
  using P = CVPreferences;
  static const std::vector<Row> rows{
      string<Row>(u"format"_s, ReadsAsNone, &P::format, &P::setFormat),
      flag<Row>(u"usePagination"_s, ReadsAsNone, &P::usePagination, &P::setUsePagination),
      number<Row>(u"margin"_s, ReadsAsNone, &P::margin, &P::setMargin),
      flag<Row>(u"includeHeadersAndFooters"_s, ReadsAsNone, &P::includeHeadersAndFooters,
                &P::setIncludeHeadersAndFooters),
      fontRow<Row>(),
      string<Row>(u"notes"_s, ReadsAsNone, &P::notes, &P::setNotes),
      locationRow<Row>(),
      string<Row>(u"destination"_s, ReadsAsNone, &P::destination, &P::setDestination),
      number<Row>(u"orientation"_s, ReadsAsNone, &P::orientation, &P::setOrientation),
      compressionRow<Row>(),
      string<Row>(u"conversionMode"_s, ReadsAsNone, &S::storedConversionMode,
                  &P::setConversionMode),
      flag<Row>(u"processAutomatically"_s, ReadsAsNone, &S::processAutomatically,
                &S::setProcessAutomatically, u"no"_s),
      flag<Row>(u"automaticallyRemoveFromQueueOncePrinted"_s, ReadsAsNone,
                &S::automaticallyRemoveFromQueueOncePrinted,
                &S::setAutomaticallyRemoveFromQueueOncePrinted, u"no"_s),
      number<Row>(u"maximumNumberOfConcurrentDonwloads"_s, ReadsAsNone,
                  &S::maximumNumberOfConcurrentDonwloads, &S::setMaximumNumberOfConcurrentDonwloads,
                  u"3"_s),
      flag<Row>(u"prependTitleWithWebsiteDomain"_s, ReadsAsNone, &S::prependTitleWithWebsiteDomain,
                &S::setPrependTitleWithWebsiteDomain, u"no"_s),
      flag<Row>(u"riskyConversion"_s, KeepsDefault, &P::riskyConversion, &P::setRiskyConversion),
      string<Row>(u"theme"_s, KeepsDefault, &S::theme, &S::setTheme, u"light"_s),
      number<Row>(u"queueSize"_s, KeepsDefault, &S::queueSize, &S::setQueueSize, u"3"_s),
      flag<Row>(u"systemNotifications"_s, KeepsDefault, &S::systemNotifications,
                &S::setSystemNotifications, u"yes"_s),
      flag<Row>(u"snapEffect"_s, KeepsDefault, &S::snapEffect, &S::setSnapEffect, u"yes"_s),
      savedMarkerRow<Row>(),
      string<Row>(u"addButtonBehaviour"_s, KeepsDefault, &S::addButtonBehaviour,
                  &S::setAddButtonBehaviour, u"show choices"_s),
      flag<Row>(u"batchMode"_s, KeepsDefault, &S::batchMode, &S::setBatchMode, u"no"_s),
      flag<Row>(u"enableIFrames"_s, KeepsDefault, &S::enableIFrames, &S::setEnableIFrames,
                u"yes"_s),
      number<Row>(u"defaultSnapshotWidth"_s, KeepsDefault, &S::defaultSnapshotWidth,
                  &S::setDefaultSnapshotWidth, u"1024"_s),
  };
  for (const Row& row : rows)
    visitor(row);
}

void SettingsTable::applyDefaults(CVDefaultPreferences& settings) {
  visit([&](const Row& row) {
    if (row.defaultText) row.apply(settings, row.defaultText);
  });
}

void SettingsTable::write(const CVDefaultPreferences& settings, defaults::UserDefaults& store) {
  visit([&](const Row& row) { store.setString(row.text(settings), row.key); });
}

void SettingsTable::readInto(CVDefaultPreferences& settings, const defaults::UserDefaults& store) {
  visit([&](const Row& row) {
    const Text text = store.stringForKey(row.key);
    if (text || row.whenMissing == ReadsAsNone) row.apply(settings, text);
  });
}

bool SettingsTable::isSaved(const defaults::UserDefaults& store) {
  return store.stringForKey(u"preferencesSaved"_s) == u"yes"_s;
}
