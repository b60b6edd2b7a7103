#pragma once

#include <QString>

namespace rendering {

/// The page scripts, one after the other, as they are built into the program.
const QString& pageScriptText();

/// Notices a page's observers, run in each new document.
const QString& observersScriptText();

/// Settles one frame of another origin, run in the frame itself.
const QString& frameScriptText();

}  // namespace rendering
