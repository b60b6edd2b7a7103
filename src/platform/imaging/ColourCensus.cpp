#include "platform/imaging/ColourCensus.h"

#include <algorithm>

namespace imaging {

namespace {

/// No pixel's colour, as it has more than 24 bits.
constexpr QRgb noColour = 0xff000000;
/// Shorter runs of a colour are letters and photographs, where nobody sees whether it is exact.
constexpr quint32 shortestGroundRun = 4;
/// Smaller grounds are not worth a place among 256 colours.
constexpr quint32 smallestGround = 64;
constexpr quint64 smallestGroundShare = 100'000;
constexpr size_t groundSets = 4'096;

size_t groupOf(QRgb colour) {
  return (colour >> 8 & 0xf800) | (colour >> 5 & 0x07e0) | (colour >> 3 & 0x1f);
}

std::array<quint64, 3> sumsOf(QRgb colour, quint64 pixels) {
  return {pixels * uint(qRed(colour)), pixels * uint(qGreen(colour)), pixels * uint(qBlue(colour))};
}

}  // namespace

ColourCensus::ColourCensus() : seen_(1 << 24), grounds_(groundSets), groups_(1 << 16) {}

void ColourCensus::addRow(const uchar* rgb, int pixels) {
  above_.resize(size_t(pixels), noColour);
  Run run;
  for (QRgb& above : above_) {
    const QRgb colour = QRgb(rgb[0]) << 16 | QRgb(rgb[1]) << 8 | rgb[2];
    if (colour != run.colour) {
      if (run.pixels > 0) addRun(run);
      run = {colour};
    }
    ++run.pixels;
    run.pixelsAsAbove += above == colour;
    above = colour;
    rgb += 3;
  }
  if (run.pixels > 0) addRun(run);
}

void ColourCensus::addRun(const Run& run) {
  pixels_ += run.pixels;
  if (hasFewColours()) addDistinct(run.colour);
  if (run.pixelsAsAbove >= shortestGroundRun) addGround(run.colour, run.pixelsAsAbove);
  ColourGroup& group = groups_[groupOf(run.colour)];
  const auto sums = sumsOf(run.colour, run.pixels);
  group.pixels += run.pixels;
  for (size_t channel = 0; channel < 3; ++channel)
    group.sums[channel] += sums[channel];
}

void ColourCensus::addDistinct(QRgb colour) {
  if (seen_[colour]) return;
  seen_[colour] = true;
  colours_.push_back(colour);
}

size_t ColourCensus::groundSetOf(QRgb colour) {
  return (colour * 0x9e3779b1U) >> 20;
}

/// Misra and Gries' counting of frequent items, in sets of four: a colour that finds no place takes
/// as much from all four, so that what is counted is never more than what is there.
void ColourCensus::addGround(QRgb colour, quint32 pixels) {
  GroundSet& set = grounds_[groundSetOf(colour)];
  const auto known = std::ranges::find_if(
      set, [&](const Ground& ground) { return ground.pixels > 0 && ground.colour == colour; });
  if (known != set.end()) {
    known->pixels += pixels;
    return;
  }
  const auto least = std::ranges::min_element(set, {}, &Ground::pixels);
  const quint32 taken = std::min(least->pixels, pixels);
  for (Ground& ground : set)
    ground.pixels -= taken;
  if (pixels > taken) *least = {colour, pixels - taken};
}

std::vector<QRgb> ColourCensus::groundColours(int most) const {
  std::vector<Ground> found;
  const quint64 smallest = std::max<quint64>(smallestGround, pixels_ / smallestGroundShare);
  for (const GroundSet& set : grounds_) {
    std::ranges::copy_if(set, std::back_inserter(found),
                         [&](const Ground& ground) { return ground.pixels >= smallest; });
  }
  std::ranges::sort(found, std::ranges::greater(), &Ground::pixels);
  found.resize(std::min(found.size(), size_t(most)));
  std::vector<QRgb> colours;
  std::ranges::transform(found, std::back_inserter(colours), &Ground::colour);
  return colours;
}

std::vector<ColourGroup> ColourCensus::groupsWithout(const std::vector<QRgb>& grounds) const {
  std::vector<ColourGroup> groups = groups_;
  for (const QRgb colour : grounds) {
    const GroundSet& set = grounds_[groundSetOf(colour)];
    const quint32 pixels = std::ranges::find(set, colour, &Ground::colour)->pixels;
    ColourGroup& group = groups[groupOf(colour)];
    const auto sums = sumsOf(colour, pixels);
    group.pixels -= pixels;
    for (size_t channel = 0; channel < 3; ++channel)
      group.sums[channel] -= sums[channel];
  }
  std::erase_if(groups, [](const ColourGroup& group) { return group.pixels == 0; });
  return groups;
}

}  // namespace imaging
