// Sends broken requests through decoding, merging and the search for addresses. Ends with 1 when a
// result breaks one of the rules that hold whatever comes in; a crash or a sanitizer's finding ends
// it too. `--count <requests> --seed <number>`; a failing seed and number can be run again.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <optional>

#include "RequestMutator.h"
#include "intake/CapturePayload.h"
#include "intake/LinkDetector.h"
#include "intake/PageMerging.h"

using namespace Qt::StringLiterals;

namespace {

bool isWebAddress(const QUrl& url) {
  return url.scheme().isEmpty() || url.scheme() == u"http"_s || url.scheme() == u"https"_s;
}

/// The name of the broken rule.
const char* brokenMergingRule(const CapturePayload& payload) {
  const QString styled = PageMerging::withStyles(*payload.page, *payload.styles);
  const qsizetype opening = styled.indexOf(u"<noscript>");
  const bool stripped = opening < 0 || styled.indexOf(u"</noscript>", opening) < 0 ||
                        payload.styles->contains(u"noscript");
  if (!stripped) return "a noscript element stayed";
  if (!payload.frames) return nullptr;
  const QString merged = PageMerging::withFrames(styled, *payload.frames);
  return merged.size() < styled.size() ? "filling frames lost text" : nullptr;
}

const char* brokenRule(const QString& request, const CapturePayload& payload) {
  if (payload.address && !isWebAddress(*payload.address)) return "a local address came in";
  if (payload.address && !payload.address->userInfo().isEmpty()) return "a password came in";
  for (const QUrl& url : LinkDetector::linksIn(request)) {
    if (!isWebAddress(url) || url.host().isEmpty()) return "a found address is none of the web";
  }
  return payload.page && payload.styles ? brokenMergingRule(payload) : nullptr;
}

struct Counts {
  quint64 pages = 0;
  quint64 merged = 0;
};

void count(const CapturePayload& payload, Counts& counts) {
  counts.pages += payload.page ? 1 : 0;
  counts.merged += payload.page && payload.styles ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addOptions({{u"count"_s, u"How many requests."_s, u"requests"_s, u"1000000"_s},
                     {u"seed"_s, u"Where the sequence begins."_s, u"number"_s, u"1"_s}});
  parser.process(application);
  const quint64 requests = parser.value(u"count"_s).toULongLong();
  RequestMutator mutator(parser.value(u"seed"_s).toULongLong());
  Counts counts;
  for (quint64 number = 0; number < requests; ++number) {
    const QString request = mutator.next();
    const CapturePayload payload = CapturePayload::decode(request);
    if (const char* rule = brokenRule(request, payload)) {
      std::fprintf(stderr, "request %llu: %s\n%s\n", number, rule, qPrintable(request));
      return 1;
    }
    count(payload, counts);
  }
  std::printf("%llu requests: %llu with a readable page, %llu merged\n", requests, counts.pages,
              counts.merged);
  // A sequence that never gets as far as merging would prove nothing.
  return counts.merged * 20 > requests ? 0 : 1;
}
