#include "platform/browsers/BrowserScripts.h"

#include "platform/browsers/PagePrograms.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

/// Runs a page program in Safari's front document and returns its value by the variable's name.
QString safariScript(const QString& variable, const QString& program) {
  return u"tell application \"Safari\"\n"
         u"tell document 1\n"
         u"set "_s +
         variable + u" to do JavaScript \""_s + program +
         u"\"\n"
         u"end tell\n"
         u"end tell\n"
         u"return "_s +
         variable + u'\n';
}

/// The same in Chrome's active tab; the script's result is the value of its last statement.
QString chromeScript(const QString& indent, const QString& program) {
  return u"tell application \"Google Chrome\"\n"_s + indent +
         u"set source to execute front window's active tab javascript \""_s + program +
         u"\"\n"
         u"end tell\n"_s;
}

QString programScript(ScriptedBrowser browser, const QString& program) {
  if (browser == ScriptedBrowser::Safari) return safariScript(u"sourceStyles"_s, program);
  return chromeScript({}, program);
}

}  // namespace

QString documentScript(ScriptedBrowser browser) {
  if (browser == ScriptedBrowser::Safari) return safariScript(u"sourceHTML"_s, documentProgram());
  return chromeScript(u"   "_s, documentProgram());
}

QString stylesScript(ScriptedBrowser browser) {
  return programScript(browser, stylesProgram());
}

QString framesScript(ScriptedBrowser browser) {
  return programScript(browser, framesProgram());
}

QString addressScript(ScriptedBrowser browser) {
  const QString front = browser == ScriptedBrowser::Safari
                            ? u"tell application \"Safari\"\n set s to URL of document 1\n"_s
                            : u"tell application \"Google Chrome\"\n"
                              u" set s to URL of active tab of front window\n"_s;
  return front + u"end tell\nreturn s\n"_s;
}

QString safariSourceScript() {
  return u"tell application \"Safari\"\n"
         u"   set sourceHTML to source of document 1\n"
         u"end tell\n"
         u"return sourceHTML\n"_s;
}

}  // namespace browsers
