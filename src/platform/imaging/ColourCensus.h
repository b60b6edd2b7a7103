#pragma once

#include <QRgb>
#include <array>
#include <vector>

namespace imaging {

/// Pixels of colours that lie close together.
struct ColourGroup {
  quint64 pixels = 0;
  /// Red, green and blue, added up over the pixels.
  std::array<quint64, 3> sums{};
};

/// Counts a picture's colours in a few megabytes, however large the picture is. One thread at a
/// time.
class ColourCensus {
 public:
  static constexpr int few = 256;

  ColourCensus();

  /// One row of red, green and blue bytes.
  void addRow(const uchar* rgb, int pixels);

  bool hasFewColours() const { return colours_.size() <= few; }
  /// All colours in the order of their appearance; whole only as long as there are few.
  const std::vector<QRgb>& colours() const { return colours_; }

  /// The colours that fill most of the even grounds, the largest first.
  std::vector<QRgb> groundColours(int most) const;

  /// The picture without the pixels of those grounds, colours grouped by their upper five or six
  /// bits.
  std::vector<ColourGroup> groupsWithout(const std::vector<QRgb>& grounds) const;

 private:
  /// Pixels of one colour side by side. Those that are as the pixel above them belong to an even
  /// ground, while a shade changes from row to row.
  struct Run {
    QRgb colour = 0;
    quint32 pixels = 0;
    quint32 pixelsAsAbove = 0;
  };
  struct Ground {
    QRgb colour = 0;
    quint32 pixels = 0;
  };
  using GroundSet = std::array<Ground, 4>;

  void addRun(const Run& run);
  void addDistinct(QRgb colour);
  void addGround(QRgb colour, quint32 pixels);
  static size_t groundSetOf(QRgb colour);

  std::vector<bool> seen_;
  std::vector<QRgb> colours_;
  std::vector<GroundSet> grounds_;
  std::vector<ColourGroup> groups_;
  quint64 pixels_ = 0;
  std::vector<QRgb> above_;
};

}  // namespace imaging
