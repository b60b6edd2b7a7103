#include "Tools.h"

#include <sys/resource.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <csignal>

using namespace Qt::StringLiterals;

namespace tools {

Outcome run(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.start(program, arguments);
  if (!process.waitForFinished(60'000)) return {-1, process.errorString()};
  return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

QString complaints(const QString& path) {
  const Outcome outcome = run(u"qpdf"_s, {u"--check"_s, path});
  return outcome.code == 0 ? QString() : outcome.output;
}

QString text(const QString& path, const QStringList& options) {
  static const QRegularExpression directionMarks(u"[\u200e\u200f\u202a-\u202e]"_s);
  QString output = run(u"pdftotext"_s, options + QStringList{path, u"-"_s}).output;
  return output.remove(directionMarks).simplified();
}

std::vector<Word> words(const QString& path) {
  static const QRegularExpression form(
      u"<page |<word xMin=\"([\\d.-]+)\" yMin=\"([\\d.-]+)\" xMax=\"([\\d.-]+)\" yMax=\"([\\d.-]+)\">(.*?)</word>"_s);
  std::vector<Word> found;
  int page = 0;
  const QString output = run(u"pdftotext"_s, {u"-bbox"_s, u"-cropbox"_s, path, u"-"_s}).output;
  auto matches = form.globalMatch(output);
  while (matches.hasNext()) {
    const QRegularExpressionMatch match = matches.next();
    if (match.captured(5).isEmpty()) {
      ++page;
      continue;
    }
    const auto number = [&match](int index) { return match.captured(index).toDouble(); };
    found.push_back({match.captured(5),
                     QRectF(QPointF(number(1), number(2)), QPointF(number(3), number(4))), page});
  }
  return found;
}

QRectF boxOf(const QString& path, const QString& word) {
  QRectF box;
  for (const Word& candidate : words(path)) {
    // Words of right-to-left scripts come in visual order here.
    QString reversed;
    for (const char32_t character : candidate.text.toUcs4())
      reversed.prepend(QString::fromUcs4(&character, 1));
    if (candidate.text != word && reversed != word) continue;
    if (!box.isNull()) return {};
    box = candidate.box;
  }
  return box;
}

QImage pixels(const QString& path, double dotsPerInch, int page, const QString& program) {
  const QString number = QString::number(page);
  const QString stem = fresh(u"page"_s);
  run(program, {u"-r"_s, QString::number(dotsPerInch), u"-f"_s, number, u"-l"_s, number,
                u"-singlefile"_s, u"-png"_s, path, stem});
  return QImage(stem + u".png"_s).convertToFormat(QImage::Format_RGB32);
}

QString fresh(const QString& name) {
  static const QTemporaryDir folder;
  static int count = 0;
  return folder.filePath(QString::number(++count) + u'-' + name);
}

QString file(const QString& name, const QByteArray& bytes) {
  const QString path = fresh(name);
  QFile file(path);
  if (file.open(QIODevice::WriteOnly)) file.write(bytes);
  return path;
}

QByteArray contents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void onFullDisk(quint64 bytes, const std::function<void()>& work) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit small{bytes, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  work();
  setrlimit(RLIMIT_FSIZE, &before);
}

}  // namespace tools
