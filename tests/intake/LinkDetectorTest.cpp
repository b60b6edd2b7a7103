#include "intake/LinkDetector.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct TextCase {
  const char* text;
  QStringList expected;
};

QStringList found(const QString& text) {
  QStringList addresses;
  for (const QUrl& url : LinkDetector::linksIn(text))
    addresses.append(url.toString());
  return addresses;
}

void expectFinds(std::initializer_list<TextCase> cases) {
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(found(QString::fromUtf8(text)).join(u'\n').toStdString(),
              expected.join(u'\n').toStdString())
        << text;
}

TEST(LinkDetector, AddressesWithAScheme) {
  expectFinds({
      {"see http://example.com/a and HTTPS://example.org:8443/b?c=1#d.",
       {u"http://example.com/a"_s, u"https://example.org:8443/b?c=1#d"_s}},
      {"http://localhost:3000/x http://127.0.0.1/y http://[::1]:8080/z",
       {u"http://localhost:3000/x"_s, u"http://127.0.0.1/y"_s, u"http://[::1]:8080/z"_s}},
      {"http://example.com/a?u=http://b.example/c",
       {u"http://example.com/a?u=http://b.example/c"_s}},
      {"https://web.example/2020/http://a.example/",
       {u"https://web.example/2020/http://a.example/"_s}},
      {"http://a.example/1,http://b.example/2;http://c.example/3",
       {u"http://a.example/1"_s, u"http://b.example/2"_s, u"http://c.example/3"_s}},
      {"1.https://a.example/ 2.http://b.example/",
       {u"https://a.example/"_s, u"http://b.example/"_s}},
      {"http://", {}},
      {"http:// https:///x", {}},
      {"file:///etc/passwd ftp://ftp.example.com/x chrome://example.com corvxurl://example.com/",
       {}},
      {"mailto:a@example.com", {}},
  });
}

TEST(LinkDetector, MarksAroundAnAddressAreNotPartOfIt) {
  expectFinds({
      {"(http://example.com/a_(b)).", {u"http://example.com/a_(b)"_s}},
      {"[text](https://example.com/x) [http://a.example](http://a.example)",
       {u"https://example.com/x"_s, u"http://a.example"_s, u"http://a.example"_s}},
      {"<http://example.com/a> \"http://example.com/b\" 'http://example.com/c'",
       {u"http://example.com/a"_s, u"http://example.com/b"_s, u"http://example.com/c"_s}},
      {"<a href=\"http://example.com/?a=1&amp;b=2\">x</a>", {u"http://example.com/?a=1&b=2"_s}},
      {"&lt;http://example.com/a&gt;", {u"http://example.com/a"_s}},
      {"**http://example.com/a** _http://example.com/b_ http://example.com/c_",
       {u"http://example.com/a"_s, u"http://example.com/b"_s, u"http://example.com/c_"_s}},
      {"\\url{http://example.com/a} `http://example.com/b`",
       {u"http://example.com/a"_s, u"http://example.com/b"_s}},
      {"„http://example.com/a“ «http://example.com/b»",
       {u"http://example.com/a"_s, u"http://example.com/b"_s}},
      {"really http://example.com/a?! yes http://example.com/b... no",
       {u"http://example.com/a"_s, u"http://example.com/b"_s}},
      {"见http://example.com/路径。请访问example.com吧",
       {u"http://example.com/路径"_s, u"http://example.com"_s}},
      {"| http://example.com/a | http://example.com/b|",
       {u"http://example.com/a"_s, u"http://example.com/b"_s}},
  });
}

TEST(LinkDetector, HostsWithoutAScheme) {
  expectFinds({
      {"example.com, www.example.com; (example.co.uk/a)!",
       {u"http://example.com"_s, u"http://www.example.com"_s, u"http://example.co.uk/a"_s}},
      {"EXAMPLE.COM and www.intranet.corp",
       {u"http://example.com"_s, u"http://www.intranet.corp"_s}},
      {"example.com:8080 example.com:8080/x example.com?q=1 example.com: no",
       {u"http://example.com:8080"_s, u"http://example.com:8080/x"_s, u"http://example.com?q=1"_s,
        u"http://example.com"_s}},
      {"münchen.de 例え.jp пример.рф",
       {u"http://münchen.de"_s, u"http://例え.jp"_s, u"http://пример.рф"_s}},
      {"192.168.0.1:8080 192.168.0.1/admin",
       {u"http://192.168.0.1:8080"_s, u"http://192.168.0.1/admin"_s}},
      {"example.com's page, \"example.org\"", {u"http://example.com"_s, u"http://example.org"_s}},
      {"notes.md/page README.md:80", {u"http://notes.md/page"_s, u"http://readme.md:80"_s}},
      {"163.com example.com.", {u"http://163.com"_s, u"http://example.com"_s}},
  });
}

TEST(LinkDetector, WhatOnlyLooksLikeAHost) {
  expectFinds({
      {"e.g. this, i.e. that, a.m., U.S., J.R.R. Tolkien, Ph.D., etc.", {}},
      {"1.2.3 v2.0.1 1.2.3.4 2.0.dev 10.0.0.0/8 3.14", {}},
      {"README.md setup.py main.rs install.sh archive.zip libc.so.6 index.html report.pdf lib.so",
       {}},
      {"src/example.com C:\\dir\\example.com ./example.com ~example.com", {}},
      {"name@example.com first.last@mail.example.com @example.com", {}},
      {"the end.It began. done.So what", {}},
      {"co.uk com .com example. -.com a..com", {}},
      {"my_file.com object.name() value.is=3 example.invalidtld example.test1", {}},
      {"-bad.com- bad-.com exa_mple.com", {}},
  });
}

TEST(LinkDetector, ThreeAddressesInTheOrderOfTheText) {
  expectFinds({{"c.example.com\nhttps://b.example.com/1\nwww.a.example.com c.example.com",
                {u"http://c.example.com"_s, u"https://b.example.com/1"_s,
                 u"http://www.a.example.com"_s, u"http://c.example.com"_s}}});
}

TEST(LinkDetector, HostileTextEnds) {
  EXPECT_TRUE(found(u"http://"_s.repeated(1'000'000)).size() <= 1);
  EXPECT_TRUE(found(u"a."_s.repeated(2'000'000)).isEmpty());
  EXPECT_EQ(found(u"http://a.example/"_s + QString(5'000'000, u'(')),
            QStringList{u"http://a.example/"_s});
  EXPECT_TRUE(found(u"x@"_s.repeated(2'000'000)).isEmpty());
  EXPECT_TRUE(found(QString(3'000'000, QChar(0xD800))).isEmpty());
}

}  // namespace
