#include "platform/imaging/Palette.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace imaging {

namespace {

/// The eye tells apart shades of green most readily, of blue least; as squares of the weights.
constexpr std::array<double, 3> channelWeights{0.7, 1.0, 0.5};
/// The rest of the places are for photographs and shades.
constexpr int mostGrounds = 64;

/// A group of colours with its mean and its weight. The weight grows slower than the number of
/// pixels, so that a small picture on a long page has colours, too.
struct Shade {
  std::array<double, 3> mean{};
  double weight = 0;
};

struct Moments {
  double weight = 0;
  std::array<double, 3> sums{};
  std::array<double, 3> squares{};

  void add(const Shade& shade, double sign = 1) {
    weight += sign * shade.weight;
    for (size_t channel = 0; channel < 3; ++channel) {
      const double part = sign * shade.weight * shade.mean[channel];
      sums[channel] += part;
      squares[channel] += part * shade.mean[channel];
    }
  }
  /// Of the squares of the distances from the mean, weighted.
  double deviation(size_t channel) const {
    if (weight <= 0) return 0;
    return channelWeights[channel] * (squares[channel] - sums[channel] * sums[channel] / weight);
  }
  double deviation() const { return deviation(0) + deviation(1) + deviation(2); }
};

struct Box {
  std::span<Shade> shades;
  Moments moments;
};

Box boxOf(std::span<Shade> shades) {
  Box box{shades, {}};
  for (const Shade& shade : shades)
    box.moments.add(shade);
  return box;
}

size_t widestChannel(const Moments& moments) {
  size_t widest = 0;
  for (size_t channel = 1; channel < 3; ++channel) {
    if (moments.deviation(channel) > moments.deviation(widest)) widest = channel;
  }
  return widest;
}

/// How many of the sorted shades belong to the first half, so that both halves are as even as can
/// be.
size_t bestCut(const Box& box) {
  Moments lower;
  Moments upper = box.moments;
  size_t best = 1;
  double least = INFINITY;
  for (size_t cut = 1; cut < box.shades.size(); ++cut) {
    lower.add(box.shades[cut - 1]);
    upper.add(box.shades[cut - 1], -1);
    const double deviation = lower.deviation() + upper.deviation();
    if (deviation >= least) continue;
    least = deviation;
    best = cut;
  }
  return best;
}

std::pair<Box, Box> halvesOf(const Box& box) {
  const size_t channel = widestChannel(box.moments);
  std::ranges::sort(box.shades, {}, [channel](const Shade& shade) { return shade.mean[channel]; });
  const size_t cut = bestCut(box);
  return {boxOf(box.shades.first(cut)), boxOf(box.shades.subspan(cut))};
}

/// Boxes of one shade cannot be cut.
double worthOfCutting(const Box& box) {
  return box.shades.size() > 1 ? box.moments.deviation() : -1;
}

QRgb meanOf(const Moments& moments) {
  const auto channel = [&](size_t at) {
    return std::clamp(int(std::lround(moments.sums[at] / moments.weight)), 0, 255);
  };
  return QRgb(channel(0)) << 16 | QRgb(channel(1)) << 8 | QRgb(channel(2));
}

std::vector<Shade> shadesOf(const std::vector<ColourGroup>& groups) {
  std::vector<Shade> shades;
  shades.reserve(groups.size());
  for (const ColourGroup& group : groups) {
    const double pixels = double(group.pixels);
    shades.push_back({{double(group.sums[0]) / pixels, double(group.sums[1]) / pixels,
                       double(group.sums[2]) / pixels},
                      std::pow(pixels, 0.75)});
  }
  return shades;
}

/// The means of at most `most` boxes of shades. The box whose shades differ most is cut in two
/// until there are enough.
std::vector<QRgb> medianCut(std::vector<Shade>& shades, size_t most) {
  if (shades.empty()) return {};
  std::vector<Box> boxes{boxOf(shades)};
  while (boxes.size() < most) {
    const auto widest = std::ranges::max_element(boxes, {}, worthOfCutting);
    if (widest->shades.size() < 2) break;
    const auto [lower, upper] = halvesOf(*widest);
    *widest = lower;
    boxes.push_back(upper);
  }
  std::vector<QRgb> colours;
  std::ranges::transform(boxes, std::back_inserter(colours),
                         [](const Box& box) { return meanOf(box.moments); });
  return colours;
}

size_t nearestTo(const Shade& shade, const std::vector<Shade>& centres) {
  size_t best = 0;
  double least = INFINITY;
  for (size_t at = 0; at < centres.size(); ++at) {
    double distance = 0;
    for (size_t channel = 0; channel < 3; ++channel) {
      const double off = centres[at].mean[channel] - shade.mean[channel];
      distance += channelWeights[channel] * off * off;
    }
    if (distance >= least) continue;
    least = distance;
    best = at;
  }
  return best;
}

std::vector<Shade> centresOf(const Palette& palette) {
  std::vector<Shade> centres;
  for (const QRgb colour : palette.colours) {
    centres.push_back({{double(qRed(colour)), double(qGreen(colour)), double(qBlue(colour))}, 0});
  }
  return centres;
}

/// Boxes have straight walls, and the exact colours take shades away from them: each colour moves
/// to the mean of the shades that are nearest to it (one round of Lloyd's algorithm).
void refine(Palette& palette, const std::vector<Shade>& shades) {
  const std::vector<Shade> centres = centresOf(palette);
  std::vector<Moments> moments(centres.size());
  for (const Shade& shade : shades)
    moments[nearestTo(shade, centres)].add(shade);
  for (size_t index = palette.exact; index < palette.colours.size(); ++index) {
    if (moments[index].weight > 0) palette.colours[index] = meanOf(moments[index]);
  }
}

}  // namespace

Palette paletteFor(const ColourCensus& census) {
  if (census.hasFewColours()) return {census.colours(), census.colours().size()};
  Palette palette{census.groundColours(mostGrounds), 0};
  palette.exact = palette.colours.size();
  std::vector<Shade> shades = shadesOf(census.groupsWithout(palette.colours));
  const auto others = medianCut(shades, ColourCensus::few - palette.exact);
  palette.colours.insert(palette.colours.end(), others.begin(), others.end());
  for (int round = 0; round < 4; ++round)
    refine(palette, shades);
  return palette;
}

}  // namespace imaging
