#pragma once

#include <QFile>
#include <vector>

#include "platform/imaging/PictureStrips.h"
#include "platform/pdf/internal/PictureSheet.h"
#include "platform/pdf/internal/SequentialFile.h"

namespace pdf {

/// Puts a picture's strips into a file and says how pages show them.
class StripPainter {
 public:
  StripPainter(SequentialFile& file, const imaging::PictureStrips& picture);

  /// Writes the strips that the sheets show, each once.
  MaybeError write(const std::vector<PictureSheet>& sheets);

  struct Painting {
    QByteArray content;    ///< operators of a content stream
    QByteArray resources;  ///< entries of the resources' /XObject dictionary
  };
  Painting paint(const PictureSheet& sheet) const;

 private:
  MaybeError writeStrip(size_t index);
  MaybeError writeBridge(size_t index);
  bool copyStrip(const imaging::PictureStrip& strip);
  bool copyRange(const imaging::ByteRange& range);
  QByteArray imageEntries(int rows) const;
  Error unreadable() const;

  SequentialFile& file_;
  const imaging::PictureStrips& picture_;
  QFile input_;
  std::vector<int> strips_;   ///< object numbers
  std::vector<int> bridges_;  ///< object numbers
};

}  // namespace pdf
