#pragma once

#include <QByteArray>
#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace tools {

struct Outcome {
  int code = -1;
  QString output;  ///< standard output and standard error
};

Outcome run(const QString& program, const QStringList& arguments);

/// What `qpdf --check` finds; empty for a sound file.
QString complaints(const QString& path);

/// The text of the file as a reader copies it, spaces and line ends each made one space.
QString text(const QString& path, const QStringList& options = {});

struct Word {
  QString text;
  QRectF box;  ///< points, y downwards
  int page = 0;
};

std::vector<Word> words(const QString& path);

/// The box of a word that stands once in the file; an empty one when it does not.
QRectF boxOf(const QString& path, const QString& word);

/// A page as pixels, drawn by `pdftoppm`, or by `pdftocairo` when asked.
QImage pixels(const QString& path, double dotsPerInch, int page = 1,
              const QString& program = QStringLiteral("pdftoppm"));

/// A path in the test's own folder, removed with the test program.
QString fresh(const QString& name);

/// Writes `bytes` to a fresh path.
QString file(const QString& name, const QByteArray& bytes);

QByteArray contents(const QString& path);

/// Runs `work` as on a disk that takes no more than `bytes` of a file.
void onFullDisk(quint64 bytes, const std::function<void()>& work);

}  // namespace tools
