#include "SeenPage.h"

#include <gmock/gmock.h>

#include <QFile>

using namespace Qt::StringLiterals;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

namespace addon_test {
namespace {

constexpr char frameText[] =
    "<!DOCTYPE html><head><style>body { color: rgb(3, 3, 3) }</style></head><body>"
    "Frame \"one\" &amp;lt;kept&amp;gt;<iframe src='/inner'></iframe>";

/// The names stand for the pictures: nobody looks at them here.
std::string embedded(const char* picture) {
  return "data:image/png;base64," + QByteArray(picture).toBase64().toStdString();
}

}  // namespace

void serveSeenPage(HttpServer& server) {
  QFile file(QStringLiteral(CORVALIS_SOURCE_DIR "/tests/browser-addon/fixtures/seen.html"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QByteArray page = file.readAll();
  page.replace("%1", QByteArray::number(server.url(u"/"_s).port()));
  server.set(u"/page"_s,
             {page, "text/html; charset=utf-8", "200 OK", "Set-Cookie: member=yes\r\n"});
  server.set(u"/sheets/linked.css"_s, {".linked { background: url(deep.png) }", "text/css"});
  server.set(u"/sheets/foreign.css"_s,
             {".foreign { background: url( 'far.png' ) } </style>", "text/css"});
  server.setPage(u"/frame"_s, frameText);
  server.setPage(u"/inner"_s, "<p>Innermost");
  server.setPage(u"/stranger?src=1"_s, "<p>Of another origin");
  server.set(u"/own.png"_s, {"of a rule", "image/png"});
  server.set(u"/own.png?member"_s, {"of an element", "image/png"});
  server.set(u"/own.png?inline"_s, {"of an attribute", "image/png"});
}

void expectPageAsSeen(const std::string& merged, const HttpServer& server) {
  const std::string origin = server.url(u""_s).toString().toStdString();
  EXPECT_THAT(merged,
              AllOf(HasSubstr("<!DOCTYPE html>"),
                    HasSubstr(">said by a script: &lt;/head&gt; &lt;script&gt;<"),
                    HasSubstr("value=\"typed &quot;quoted&quot;\""), HasSubstr("checked=\"\""),
                    HasSubstr(">\ntwo\nlines</textarea>"), HasSubstr("<option selected=\"\">two")));
  EXPECT_THAT(merged, AllOf(HasSubstr("src=\"data:image/png;base64,"),
                            HasSubstr("width: 40px !important; height: 20px !important"),
                            HasSubstr("border-radius: 5px"), Not(HasSubstr("<canvas"))));
  EXPECT_THAT(merged, AllOf(HasSubstr("<template shadowrootmode=\"open\"><link rel=\"stylesheet\""),
                            HasSubstr("font-weight%3A%20700"), HasSubstr("<b>In the shadow</b>"),
                            HasSubstr("<i>Behind closed doors</i>")));
  EXPECT_THAT(merged, AllOf(HasSubstr("margin: 7px"), HasSubstr(origin + "/pic.png"),
                            HasSubstr(origin + "/sheets/deep.png"), Not(HasSubstr("linked.css"))));
  EXPECT_THAT(merged, AllOf(HasSubstr("src=\"" + embedded("of an element")),
                            HasSubstr("url(\"" + embedded("of a rule") + "\")"),
                            HasSubstr("url(&quot;" + embedded("of an attribute") + "&quot;)")));
  // The sheet of another origin is where it was among the others, and cannot end the element.
  // (Firefox lets it be read, and its parser has dropped what is no rule.)
  EXPECT_THAT(merged, ContainsRegex("deep.png[^@]*@media \\(min-width: 1px\\) \\{ .foreign "
                                    "[^}]*http://localhost:[0-9]*/sheets/far.png[^}]*\\} "
                                    "(<\\\\/style> )?\\}[^@]*\\.last"));
  EXPECT_THAT(merged, AllOf(HasSubstr("&amp;amp;lt;kept&amp;amp;gt;"), HasSubstr("Innermost"),
                            HasSubstr("Of another origin"), HasSubstr("Given"),
                            Not(HasSubstr("iframe src="))));
  EXPECT_THAT(merged,
              AllOf(Not(HasSubstr("secret")), Not(HasSubstr("onclick")),
                    Not(HasSubstr("Content-Security-Policy")), Not(HasSubstr("no scripts"))));
}

}  // namespace addon_test
