#pragma once

#include <QString>
#include <QStringView>
#include <optional>

/// Makes one self-contained document of a captured page, its styles and its frames. Time and memory
/// are linear in the input.
namespace PageMerging {

/// A few letters can ask for any number of copies of the styles, and quotes in a frame grow
/// sixfold. Beyond these bounds, in UTF-16 units, further head ends and frames stay as they are:
/// all copies of the styles after the second together, and the text with its frames.
constexpr qsizetype maximumStyleCopies = 32LL * 1024 * 1024;
constexpr qsizetype maximumSize = 256LL * 1024 * 1024;

/// The page without its scripts, style elements and bare noscript elements, with the styles at the
/// end of its head.
QString withStyles(QStringView page, QStringView styles);

/// The page with frame documents filled into the frame elements that have no source address.
/// Elements and items are paired by position.
QString withFrames(QStringView page, QStringView frames);

}  // namespace PageMerging
