#include "capture/PictureText.h"

namespace capture {
namespace {

pdf::TextRun textRun(const rendering::TextRun& run) {
  const bool rightToLeft = run.direction == rendering::TextDirection::RightToLeft;
  return {run.text, run.rect, run.fontSize,
          rightToLeft ? pdf::TextDirection::RightToLeft : pdf::TextDirection::LeftToRight,
          run.endsWord};
}

}  // namespace

pdf::PictureText pictureText(const rendering::TextLayer& layer) {
  pdf::PictureText text;
  text.runs.reserve(layer.runs.size());
  for (const auto& run : layer.runs)
    text.runs.push_back(textRun(run));
  for (const auto& link : layer.links)
    text.links.push_back({link.href, link.targetY, link.rects});
  for (const auto& heading : layer.headings) {
    text.headings.push_back({heading.text, heading.level, heading.y});
  }
  text.language = layer.language;
  return text;
}

}  // namespace capture
