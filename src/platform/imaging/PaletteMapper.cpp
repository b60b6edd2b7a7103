#include "platform/imaging/PaletteMapper.h"

#include <algorithm>
#include <limits>

namespace imaging {

namespace {

/// A power of two, several times as many as there are colours.
constexpr size_t exactPlaces = 2'048;
/// An eighth of each error is dropped, and what arrives at a pixel has a limit: where the palette
/// has no colour on the other side, errors would pile up until a pixel jumps to a foreign colour.
constexpr std::array<int, 4> shares{6, 3, 4, 1};
constexpr int largestError = 24;

int arriving(int sixteenths) {
  return std::clamp((sixteenths + 8) >> 4, -largestError, largestError);
}

size_t placeOf(QRgb colour) {
  return (colour * 0x9e3779b1U) >> 21;
}

size_t cellOf(const std::array<int, 3>& value) {
  return size_t(value[0] >> 1) << 14 | size_t(value[1] >> 1) << 7 | size_t(value[2] >> 1);
}

}  // namespace

PaletteMapper::PaletteMapper(Palette palette, int width)
    : palette_(std::move(palette)),
      width_(width),
      exact_(exactPlaces),
      nearest_(1 << 21, -1),
      errors_(size_t(width) + 2),
      errorsBelow_(size_t(width) + 2) {
  for (size_t index = 0; index < palette_.exact; ++index)
    addExact(palette_.colours[index], int(index));
}

void PaletteMapper::addExact(QRgb colour, int index) {
  size_t place = placeOf(colour);
  while (exact_[place].index >= 0)
    place = (place + 1) % exactPlaces;
  exact_[place] = {colour, index};
}

int PaletteMapper::exactIndex(QRgb colour) const {
  size_t place = placeOf(colour);
  while (exact_[place].index >= 0 && exact_[place].colour != colour)
    place = (place + 1) % exactPlaces;
  return exact_[place].index;
}

int PaletteMapper::search(const Offsets& value) const {
  int best = 0;
  int least = std::numeric_limits<int>::max();
  for (size_t index = 0; index < palette_.colours.size(); ++index) {
    const QRgb colour = palette_.colours[index];
    const int red = qRed(colour) - value[0];
    const int green = qGreen(colour) - value[1];
    const int blue = qBlue(colour) - value[2];
    const int distance = 7 * red * red + 10 * green * green + 5 * blue * blue;
    if (distance >= least) continue;
    least = distance;
    best = int(index);
  }
  return best;
}

int PaletteMapper::nearestIndex(const Offsets& value) {
  qint16& known = nearest_[cellOf(value)];
  if (known < 0) known = qint16(search(value));
  return known;
}

void PaletteMapper::mapRow(const uchar* rgb, uchar* indices) {
  std::ranges::fill(errorsBelow_, Offsets{});
  const int step = leftwards_ ? -1 : 1;
  const int first = leftwards_ ? width_ - 1 : 0;
  QRgb ground = 0;
  int groundIndex = -1;
  for (int x = first, left = width_; left > 0; --left, x += step) {
    const uchar* pixel = rgb + qptrdiff(x) * 3;
    const QRgb colour = QRgb(pixel[0]) << 16 | QRgb(pixel[1]) << 8 | pixel[2];
    if (groundIndex < 0 || colour != ground) groundIndex = exactIndex(colour);
    ground = colour;
    indices[x] = uchar(groundIndex >= 0 ? groundIndex : drawPixel(pixel, x, step));
  }
  leftwards_ = !leftwards_;
  errors_.swap(errorsBelow_);
}

int PaletteMapper::drawPixel(const uchar* rgb, int x, int step) {
  Offsets value;
  const Offsets& error = errors_[size_t(x + 1)];
  for (size_t channel = 0; channel < 3; ++channel)
    value[channel] = std::clamp(rgb[channel] + arriving(error[channel]), 0, 255);
  const int index = nearestIndex(value);
  const QRgb colour = palette_.colours[size_t(index)];
  spread({value[0] - qRed(colour), value[1] - qGreen(colour), value[2] - qBlue(colour)}, x + 1,
         step);
  return index;
}

void PaletteMapper::spread(const Offsets& error, int x, int step) {
  Offsets& ahead = errors_[size_t(x + step)];
  Offsets& behindBelow = errorsBelow_[size_t(x - step)];
  Offsets& below = errorsBelow_[size_t(x)];
  Offsets& aheadBelow = errorsBelow_[size_t(x + step)];
  for (size_t channel = 0; channel < 3; ++channel) {
    ahead[channel] += error[channel] * shares[0];
    behindBelow[channel] += error[channel] * shares[1];
    below[channel] += error[channel] * shares[2];
    aheadBelow[channel] += error[channel] * shares[3];
  }
}

}  // namespace imaging
