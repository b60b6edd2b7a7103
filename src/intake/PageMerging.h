#pragma once

#include <QString>
#include <QStringView>
#include <optional>

/// Makes one self-contained document of a captured page, its styles and its frames. Time and memory
/// are linear in the input.
namespace PageMerging {

/// The merged text stays below this many UTF-16 units as long as the page itself does: a few
/// letters can otherwise ask for any number of copies. A head end or frame that would go beyond
/// stays as it is.
constexpr qsizetype maximumSize = 256LL * 1024 * 1024;

/// The page without its scripts, style elements and bare noscript elements, with the styles at the
/// end of its head.
QString withStyles(QStringView page, QStringView styles);

/// The page with frame documents filled into the frame elements that have no source address.
/// Elements and items are paired by position.
QString withFrames(QStringView page, QStringView frames);

}  // namespace PageMerging
