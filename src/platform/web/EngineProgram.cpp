#include "platform/web/EngineProgram.h"

#include <unistd.h>

#include <QFileInfo>
#include <QStandardPaths>

#include "platform/base/Log.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

/// Paths before names: the distribution's start scripts add the user's own flags, and one of them
/// stays as a parent process in between. The headless shell comes first, it starts in half the
/// time.
constexpr const char16_t* knownPrograms[] = {
    u"/usr/lib/chromium/chromium-headless-shell",
    u"chrome-headless-shell",
    u"headless_shell",
    u"chromium-headless-shell",
    u"/usr/lib/chromium/chromium",
    u"/usr/lib64/chromium-browser/chromium-browser",
    u"/usr/lib/chromium-browser/chromium-browser",
    u"/opt/google/chrome/chrome",
    u"google-chrome-stable",
    u"google-chrome",
    u"chromium",
    u"chromium-browser",
};

bool isHeadlessShell(const QString& path) {
  const QString name = QFileInfo(path).fileName();
  return name.contains(u"headless") && name.contains(u"shell");
}

QStringList commonArguments() {
  return {
      u"--remote-debugging-pipe"_s,
      u"--no-first-run"_s,
      u"--no-default-browser-check"_s,
      // Nothing goes out but what a page asks for.
      u"--disable-background-networking"_s,
      u"--disable-client-side-phishing-detection"_s,
      u"--disable-component-update"_s,
      u"--disable-default-apps"_s,
      u"--disable-domain-reliability"_s,
      u"--disable-extensions"_s,
      u"--disable-field-trial-config"_s,
      u"--disable-sync"_s,
      u"--metrics-recording-only"_s,
      u"--no-pings"_s,
      u"--disable-breakpad"_s,
      // Pages that nobody sees run at full speed.
      u"--disable-background-timer-throttling"_s,
      u"--disable-backgrounding-occluded-windows"_s,
      u"--disable-renderer-backgrounding"_s,
      u"--disable-hang-monitor"_s,
      u"--block-new-web-contents"_s,
      u"--disable-prompt-on-repost"_s,
      // Containers give /dev/shm a few megabytes.
      u"--disable-dev-shm-usage"_s,
      u"--force-color-profile=srgb"_s,
      // Text keeps its spacing at every scale and on paper.
      u"--font-render-hinting=none"_s,
      u"--hide-scrollbars"_s,
      u"--mute-audio"_s,
      u"--password-store=basic"_s,
      u"--use-mock-keychain"_s,
      u"--disable-features=Translate,MediaRouter,OptimizationHints,HttpsUpgrades,PaintHolding,"
      "AcceptCHFrame,DialMediaRouteProvider"_s,
  };
}

}  // namespace

Result<EngineProgram> engineProgramAt(const QString& path) {
  const QString found = path.startsWith(u'/') ? path : QStandardPaths::findExecutable(path);
  const QFileInfo file(found);
  if (found.isEmpty() || !file.isFile() || !file.isExecutable())
    return tl::make_unexpected(makeError(
        EngineNotFound, u"The browser “%1” is not a program on this computer."_s.arg(path)));
  EngineProgram program{found, {}};
  if (!isHeadlessShell(found)) program.arguments = QStringList{u"--headless=new"_s};
  return program;
}

Result<EngineProgram> findEngineProgram() {
  const QString chosen = qEnvironmentVariable("CORVALIS_ENGINE");
  if (!chosen.isEmpty()) return engineProgramAt(chosen);
  for (const char16_t* path : knownPrograms)
    if (Result<EngineProgram> program = engineProgramAt(QString::fromUtf16(path))) return program;
  return tl::make_unexpected(makeError(EngineNotFound,
                                       u"No browser was found to render pages with. Install the "
                                       u"package “chromium-headless-shell” or "
                                       "“chromium”, or name one in CORVALIS_ENGINE."_s));
}

QStringList splitShellWords(const QString& text) {
  QStringList words;
  QString word;
  bool inWord = false;
  QChar quote;
  for (qsizetype index = 0; index < text.size(); ++index) {
    const QChar character = text[index];
    const QChar next = index + 1 < text.size() ? text[index + 1] : QChar();
    if (character == u'\\' && quote != u'\'' && (quote.isNull() || next == u'"' || next == u'\\')) {
      word += next;
      inWord = true;
      ++index;
    } else if (!quote.isNull()) {
      if (character == quote)
        quote = QChar();
      else
        word += character;
    } else if (character == u'\'' || character == u'"') {
      quote = character;
      inWord = true;
    } else if (character.isSpace()) {
      if (inWord) words.append(std::exchange(word, {}));
      inWord = false;
    } else {
      word += character;
      inWord = true;
    }
  }
  if (inWord) words.append(word);
  return words;
}

QStringList engineArguments(const EngineProgram& program, EngineUse use) {
  QStringList arguments = commonArguments() + program.arguments;
  if (use == EngineUse::Conversions)
    arguments.append(u"--blink-settings=mainFrameClipsContent=false"_s);
  if (::geteuid() == 0) {
    logLine(u"The browser runs without its sandbox: it refuses one for the super-user."_s);
    arguments.append(u"--no-sandbox"_s);
  }
  return arguments + splitShellWords(qEnvironmentVariable("CORVALIS_ENGINE_ARGS"));
}

}  // namespace web
