#include <QDir>

#include "PrintingTest.h"

using namespace Qt::StringLiterals;
using printing::PageRange;
using printing::PrintSettings;
using printing::Sides;

namespace {

using PrintServiceTest = PrintingTest;

TEST_F(PrintServiceTest, QueuesAreListedWithTheDefaultOneAndThoseThatTakeNothing) {
  const auto queues = service->queues();
  ASSERT_TRUE(queues);
  QStringList lines;
  for (const auto& queue : *queues)
    lines.append(queue.name + u" | "_s + queue.description +
                 (queue.isDefault ? u" | default"_s : QString()) +
                 (queue.acceptsJobs ? QString() : u" | closed"_s));
  lines.sort();
  EXPECT_EQ(lines, QStringList({u"attic | Attic"_s, u"broken | Broken | closed"_s,
                                u"office | Büro “oben” | default"_s}));
}

TEST_F(PrintServiceTest, TheDocumentArrivesByteForByteWithTheChosenSettings) {
  struct Case {
    PrintSettings settings;
    QMap<QString, QString> expected;
  };
  const Case cases[] = {
      {{},
       {{u"copies"_s, u"1"_s},
        {u"page-ranges"_s, {}},
        {u"sides"_s, {}},
        {u"media"_s, {}},
        {u"orientation-requested"_s, {}}}},
      {{.queue = u"attic"_s, .copies = 3, .title = u"Größe “x” – 日本"_s},
       {{u"copies"_s, u"3"_s}, {u"job-name"_s, u"Größe “x” – 日本"_s}}},
      {{.pageRanges = {PageRange{7, 9}, PageRange{2, 2}, PageRange{8, 12}}},
       {{u"page-ranges"_s, u"2-2,7-12"_s}}},
      {{.sides = Sides::OneSided, .media = u"iso_a4_210x297mm"_s},
       {{u"sides"_s, u"one-sided"_s}, {u"media"_s, u"iso_a4_210x297mm"_s}}},
      {{.sides = Sides::TwoSidedLongEdge, .orientation = printing::PaperOrientationLandscape},
       {{u"sides"_s, u"two-sided-long-edge"_s}, {u"orientation-requested"_s, u"landscape"_s}}},
      {{.sides = Sides::TwoSidedShortEdge,
        .options = {{u"copies"_s, u"5"_s}, {u"fit-to-page"_s, u"true"_s}}},
       {{u"sides"_s, u"two-sided-short-edge"_s},
        {u"copies"_s, u"5"_s},
        {u"fit-to-page"_s, u"true"_s}}},
  };
  const QString path = file(u"Größe 'and' \"quotes\".pdf"_s, pdf());
  for (const Case& each : cases) {
    const auto job = service->submitDocument(path, each.settings);
    ASSERT_TRUE(job) << job.error().localizedDescription.toStdString();
    EXPECT_EQ(scheduler->document(*job), pdf());
    const auto attributes = scheduler->attributes(*job);
    EXPECT_TRUE(attributes.value(u"job-printer-uri"_s)
                    .endsWith(u"/printers/"_s + each.settings.queue.value_or(u"office"_s)));
    EXPECT_EQ(attributes.value(u"document-format"_s), u"application/pdf"_s);
    for (const auto& [name, value] : each.expected.asKeyValueRange())
      EXPECT_EQ(attributes.value(name).toStdString(), value.toStdString()) << name.toStdString();
  }
}

TEST_F(PrintServiceTest, WhatCannotBePrintedIsRefusedWithItsCauseAndLeavesNoJob) {
  struct Case {
    QString path;
    PrintSettings settings;
    int code;
  };
  const QString good = file(u"good.pdf"_s, pdf());
  const Case cases[] = {
      {good, {.queue = u"nowhere"_s}, printing::ErrorUnknownQueue},
      {good, {.queue = u"broken"_s}, printing::ErrorRejected},
      {good, {.copies = 0}, printing::ErrorSettings},
      {good, {.pageRanges = {PageRange{0, 3}}}, printing::ErrorSettings},
      {good, {.pageRanges = {PageRange{1, 1}, PageRange{5, 4}}}, printing::ErrorSettings},
      {folder.filePath(u"missing.pdf"_s), {}, printing::ErrorFile},
      {folder.path(), {}, printing::ErrorFile},
      {file(u"empty.pdf"_s, ""), {}, printing::ErrorFile},
      // Refused when part of it has arrived.
      {file(u"large.pdf"_s, pdf(3 * Scheduler::kMostBytes)), {}, printing::ErrorRejected},
  };
  const QList<int> before = scheduler->jobs();
  for (const Case& each : cases) {
    const auto job = service->submitDocument(each.path, each.settings);
    ASSERT_FALSE(job) << each.path.toStdString();
    EXPECT_EQ(job.error().code, each.code) << job.error().localizedDescription.toStdString();
    EXPECT_EQ(scheduler->jobs(), before) << each.path.toStdString();
  }
}

TEST_F(PrintServiceTest, AMissingPrintServiceIsTold) {
  const auto nobody = printing::makePrintService(folder.filePath(u"no-socket"_s));
  EXPECT_EQ(nobody->queues().error().code, printing::ErrorNoServer);
  EXPECT_EQ(nobody->submitDocument(file(u"x.pdf"_s, pdf()), {}).error().code,
            printing::ErrorNoServer);
}

TEST_F(PrintServiceTest, PrintingToAFileCopiesTheDocumentWholeOrNotAtAll) {
  const QString path = file(u"page.pdf"_s, pdf());
  const QString target = file(u"target.pdf"_s, "an older, shorter one");
  EXPECT_EQ(deliverDocument(*service, path, {.outputFile = target}).value_or(-1), 0);
  EXPECT_EQ(contents(target), pdf());

  const auto missing =
      deliverDocument(*service, folder.filePath(u"missing"_s), {.outputFile = target});
  EXPECT_EQ(missing.error().code, printing::ErrorFile);
  EXPECT_EQ(contents(target), pdf()) << "the older copy was harmed";
  const auto nowhere =
      deliverDocument(*service, path, {.outputFile = folder.filePath(u"no/folder.pdf"_s)});
  EXPECT_EQ(nowhere.error().code, printing::ErrorFile);
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 2) << "a part of a copy was left";
}

}  // namespace
