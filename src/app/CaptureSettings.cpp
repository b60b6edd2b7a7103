#include "app/CaptureSettings.h"

#include "app/CaptureOptions.h"
#include "platform/printing/PrintInfo.h"
#include "settings/CVDefaultPreferences.h"

using namespace Qt::StringLiterals;

namespace {

/// A destination may bring a mode and pages with it; what was asked for in words stands over that,
/// and over the mode that documents have where nothing was said.
void applyWay(const CaptureOptions& options, CVDefaultPreferences& settings) {
  settings.setConversionMode(u"Vector"_s);
  settings.setDestination(options.destination);
  if (options.paginate) settings.setUsePagination(true);
  settings.setFormat(options.format);
  if (options.mode) settings.setConversionMode(options.mode);
}

}  // namespace

void applyOptions(const CaptureOptions& options, CVDefaultPreferences& settings) {
  applyWay(options, settings);
  settings.setDefaultSnapshotWidth(options.width);
  settings.setCompression(options.compression);
  settings.setPrependTitleWithWebsiteDomain(options.prependDomain);
  settings.setProcessAutomatically(true);
  settings.setMargin(options.margin);
  settings.setOrientation(options.orientation);
  settings.setIncludeHeadersAndFooters(options.headers);
  if (options.font) settings.setHeaderAndFooterFont(options.font);
  settings.setNotes(options.notes);
  if (!options.paper) return;
  printing::PrintInfo info = printing::PrintInfo::sharedPrintInfo();
  info.setPaperSize(*options.paper);
  printing::PrintInfo::setSharedPrintInfo(info);
}
