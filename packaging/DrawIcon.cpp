// Draws the mark of the program: corvalis_draw_icon SIDE FILE.png
#include <QFile>
#include <cstdio>
#include <cstdlib>

#include "ui/look/ApplicationMark.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: corvalis_draw_icon SIDE FILE.png\n", stderr);
    return 2;
  }
  const QByteArray picture = ui::applicationMarkAsPng(std::atoi(argv[1]));
  QFile file(QString::fromLocal8Bit(argv[2]));
  const bool written = !picture.isEmpty() && file.open(QIODevice::WriteOnly) &&
                       file.write(picture) == picture.size() && file.flush();
  return written ? 0 : 1;
}
