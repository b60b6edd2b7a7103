// What a capture request costs by its size. "time/MB" is the figure to read: it is flat when the
// work is linear.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <QUrl>
#include <limits>

#include "intake/CapturePayload.h"
#include "intake/LinkDetector.h"
#include "intake/PageMerging.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype megabyte = 1024 * 1024;

/// Markup of an everyday mixture.
QString page(qsizetype size) {
  const QString part =
      u"<div class=\"card\"><h2>Überschrift</h2><p>Some text about <a href=\"/x\">this</a>.</p>"
      "<script>window.x = 1 < 2;</script><style>.card { color: red }</style>"
      "<noscript><img src=\"y\"></noscript><iframe id=\"f\"></iframe></div>\n"_s;
  return u"<html><head></head><body>"_s + part.repeated(size / part.size()) + u"</body></html>"_s;
}

QString encoded(const QString& text) {
  return QString::fromLatin1(QUrl::toPercentEncoding(text, "<>\" /=;:'&.{}").toBase64());
}

QString request(qsizetype size) {
  const QString frame = u"iframe::"_s + encoded(u"<html><body class=\"a\">frame</body></html>"_s);
  // Base64 and percent escapes make the text about 1.4 times as long as the page.
  QString data = encoded(page(size * 7 / 10)) + u"corvxstyles::"_s + encoded(u"p { }"_s) +
                 u"iframes::"_s + frame.repeated(100);
  return u"corvxurls://example.com/corvxdata::"_s +
         QString::fromLatin1(QUrl::toPercentEncoding(data));
}

void reportPerMegabyte(benchmark::State& state, qsizetype size) {
  state.counters["time/MB"] = benchmark::Counter(
      static_cast<double>(size) / megabyte,
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

QString decodedAndMerged(const QString& text) {
  const CapturePayload payload = CapturePayload::decode(text);
  const QString styled = PageMerging::withStyles(*payload.page, *payload.styles);
  return PageMerging::withFrames(styled, *payload.frames);
}

QString merged(const QString& text) {
  return PageMerging::withFrames(PageMerging::withStyles(text, u"p { }"), u"iframe::Mg==");
}

/// The first run, which takes the memory from the system, is not measured.
void measure(benchmark::State& state, QString (*work)(const QString&), const QString& text) {
  benchmark::DoNotOptimize(work(text));
  for (auto _ : state)
    benchmark::DoNotOptimize(work(text));
  reportPerMegabyte(state, text.size());
}

void decodeAndMerge(benchmark::State& state) {
  measure(state, decodedAndMerged, request(state.range(0) * megabyte));
}

void merge(benchmark::State& state) {
  measure(state, merged, page(state.range(0) * megabyte));
}

void mergeUnclosedScripts(benchmark::State& state) {
  measure(state, merged, u"<script"_s.repeated(state.range(0) * megabyte / 7));
}

void findAddresses(benchmark::State& state) {
  const QString part =
      u"Some words, e.g. version 1.2.3 of notes.md, (see https://example.com/a?b=c), or "
      "write to name@example.com. More at www.example.org and example.co.uk; then plain text goes "
      "on "
      "and on without any address in it, as most of the text of the world does.\n"_s;
  const QString text = part.repeated(state.range(0) * megabyte / part.size());
  for (auto _ : state)
    benchmark::DoNotOptimize(LinkDetector::linksIn(text));
  reportPerMegabyte(state, text.size());
}

BENCHMARK(decodeAndMerge)->Arg(1)->Arg(4)->Arg(16)->Arg(20)->Arg(64)->Unit(benchmark::kMillisecond);
BENCHMARK(merge)->Arg(1)->Arg(4)->Arg(16)->Arg(64)->Unit(benchmark::kMillisecond);
BENCHMARK(mergeUnclosedScripts)->Arg(1)->Arg(5)->Arg(64)->Unit(benchmark::kMillisecond);
BENCHMARK(findAddresses)->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
