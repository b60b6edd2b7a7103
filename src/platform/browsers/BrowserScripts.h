#pragma once

#include <QString>

/// The fixed script texts (AppleScript) that read the front page of a browser on macOS.
namespace browsers {

enum class ScriptedBrowser { Safari, Chrome };

QString documentScript(ScriptedBrowser browser);
QString stylesScript(ScriptedBrowser browser);
QString framesScript(ScriptedBrowser browser);
QString addressScript(ScriptedBrowser browser);

/// The front document's source as it was loaded; Safari alone can tell.
QString safariSourceScript();

}  // namespace browsers
