#pragma once

#include <QString>

namespace capture {

/// The document that is loaded for a captured source: a doctype before it, and every noscript
/// element whose opening tag is bare taken out ("<noscript>" in any capitals, to the nearest
/// "</noscript>"; one that has no end stays). Linear in the length of the source.
QString documentOfCapturedSource(const QString& source);

}  // namespace capture
