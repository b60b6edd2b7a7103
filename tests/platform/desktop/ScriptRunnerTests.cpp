#include <gtest/gtest.h>

#include "ProgramRecorder.h"
#include "platform/desktop/ScriptRunner.h"

using namespace Qt::StringLiterals;

TEST(ScriptRunner, GivesTheScriptAsItIsAndReturnsTheTextWithoutItsLastLineFeed) {
  ProgramRecorder programs;
  programs.add(u"osascript"_s, "printf 'first\\n\\303\\244\\n\\n'");
  const auto runner = desktop::ScriptRunner::create();
  ASSERT_TRUE(runner->isAvailable());
  const QString script = u"say \"$(rm)\" 'ü'\n"_s;
  const auto result = runner->run(script);
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(*result, u"first\nä\n"_s);
  EXPECT_EQ(programs.input(u"osascript"_s), script.toUtf8());
}

TEST(ScriptRunner, TellsWhyThereIsNoResult) {
  ProgramRecorder programs;
  const auto runner = desktop::ScriptRunner::create(std::chrono::milliseconds(200));
  EXPECT_FALSE(runner->isAvailable());
  EXPECT_FALSE(runner->run(u"s"_s).has_value());

  programs.add(u"osascript"_s, "echo 'execution error: no (-1743)' >&2; echo out; exit 1");
  const auto failed = runner->run(u"s"_s);
  ASSERT_FALSE(failed.has_value());
  EXPECT_EQ(failed.error().localizedDescription, u"execution error: no (-1743)"_s);

  programs.add(u"osascript"_s, "exec /bin/sleep 60");
  const auto late = runner->run(u"s"_s);
  ASSERT_FALSE(late.has_value());
  EXPECT_EQ(late.error().localizedDescription, u"The script did not end in time."_s);
}
