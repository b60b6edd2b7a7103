#pragma once

#include <array>
#include <vector>

#include "platform/imaging/Palette.h"

namespace imaging {

/// Draws a picture's rows, from the top to the bottom, with the colours of a palette. What a
/// pixel's colour is off goes to its neighbours (Floyd and Steinberg's error diffusion, each row in
/// the other direction), but for the palette's exact colours, which stay even. One thread at a
/// time.
class PaletteMapper {
 public:
  /// The palette has at least one colour.
  PaletteMapper(Palette palette, int width);

  /// Takes red, green and blue bytes and gives the number of a colour for each pixel.
  void mapRow(const uchar* rgb, uchar* indices);

 private:
  using Offsets = std::array<int, 3>;

  void addExact(QRgb colour, int index);
  int exactIndex(QRgb colour) const;
  int nearestIndex(const Offsets& value);
  int search(const Offsets& value) const;
  int drawPixel(const uchar* rgb, int x, int step);
  void spread(const Offsets& error, int x, int step);

  struct ExactColour {
    QRgb colour = 0;
    int index = -1;
  };

  const Palette palette_;
  const int width_;
  bool leftwards_ = false;
  /// A hash table with open places.
  std::vector<ExactColour> exact_;
  /// By the upper seven bits of each channel; -1 where nobody has asked yet.
  std::vector<qint16> nearest_;
  /// In sixteenths, with one pixel more at either end.
  std::vector<Offsets> errors_;
  std::vector<Offsets> errorsBelow_;
};

}  // namespace imaging
