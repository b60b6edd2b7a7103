#include <gtest/gtest.h>

#include "platform/desktop/DeliveryScripts.h"

using namespace Qt::StringLiterals;

TEST(DeliveryScripts, FillTheirTextsByPlainSubstitution) {
  EXPECT_EQ(desktop::mailScript(u"/d/%1 \"a\".pdf"_s),
            uR"(set myList to {}
set myList to myList & (POSIX file "/d/%1 "a".pdf")
 tell application "Mail"
               activate
               set theNewMessage to make new outgoing message
               tell theNewMessage
               repeat with theIndex from 1 to count of myList
               set theAttachment to item theIndex of myList
               make new attachment with properties {file name:(theAttachment as alias)} at after the last paragraph
               end repeat
               set visible to true
               end tell
               end tell)"_s);
  EXPECT_EQ(desktop::evernoteScript(u"/d/a.pdf"_s, u"On %1"_s),
            uR"(tell application "Evernote"
   activate
   set thePosixPath to POSIX file "/d/a.pdf"
   set theFilename to "On %1"
   set new_note to create note with text theFileName title theFilename notebook "Import"
   tell new_note to append attachment thePosixPath
end tell)"_s);
  EXPECT_EQ(desktop::fileClipboardScript(u"/d/a.pdf"_s),
            uR"(tell app "Finder" to set the clipboard to ( POSIX file "/d/a.pdf" ))"_s);
  EXPECT_EQ(desktop::textClipboardScript(u"t"_s),
            uR"(tell app "Finder" to set the clipboard to "t")"_s);
}

TEST(DeliveryScripts, WhereFromEscapesOnlyTheQuotesOfItsOwnText) {
  EXPECT_EQ(desktop::whereFromScript(u"http://h/?a=\"b\"&c"_s, u"/d/it's.png"_s),
            uR"(do shell script "xattr -w 'com.apple.metadata:kMDItemWhereFroms' ')"
            uR"(<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" )"
            uR"(\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\"><plist version=\"1.0\">)"
            uR"(<array><string>http://h/?a="b"&c</string></array></plist>' '/d/it's.png'")"_s);
  EXPECT_TRUE(
      desktop::whereFromPropertyList(u"http://h/"_s)
          .endsWith(u"<plist version=\"1.0\"><array><string>http://h/</string></array></plist>"_s));
}
