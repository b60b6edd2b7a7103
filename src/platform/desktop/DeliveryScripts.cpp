#include "platform/desktop/DeliveryScripts.h"

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// `quote` is a double quote as the surrounding text has to write it.
QString propertyList(const QString& address, const QString& quote) {
  const auto quoted = [&quote](const QString& text) { return quote + text + quote; };
  return u"<!DOCTYPE plist PUBLIC "_s + quoted(u"-//Apple//DTD PLIST 1.0//EN"_s) + u' ' +
         quoted(u"http://www.apple.com/DTDs/PropertyList-1.0.dtd"_s) + u"><plist version="_s +
         quoted(u"1.0"_s) + u"><array><string>"_s + address + u"</string></array></plist>"_s;
}

}  // namespace

QString mailScript(const QString& path) {
  return u"set myList to {}\n"_s + u"set myList to myList & (POSIX file \""_s + path + u"\")\n"_s +
         u" tell application \"Mail\"\n"
         u"               activate\n"
         u"               set theNewMessage to make new outgoing message\n"
         u"               tell theNewMessage\n"
         u"               repeat with theIndex from 1 to count of myList\n"
         u"               set theAttachment to item theIndex of myList\n"
         u"               make new attachment with properties {file name:(theAttachment as alias)} "
         u"at after the last paragraph\n"
         u"               end repeat\n"
         u"               set visible to true\n"
         u"               end tell\n"
         u"               end tell"_s;
}

QString fileClipboardScript(const QString& path) {
  return u"tell app \"Finder\" to set the clipboard to ( POSIX file \""_s + path + u"\" )"_s;
}

QString textClipboardScript(const QString& text) {
  return u"tell app \"Finder\" to set the clipboard to \""_s + text + u'"';
}

QString evernoteScript(const QString& path, const QString& title) {
  return u"tell application \"Evernote\"\n"
         u"   activate\n"
         u"   set thePosixPath to POSIX file \""_s +
         path + u"\"\n   set theFilename to \""_s + title +
         u"\"\n"
         u"   set new_note to create note with text theFileName title theFilename notebook "
         u"\"Import\"\n"
         u"   tell new_note to append attachment thePosixPath\n"
         u"end tell"_s;
}

QString whereFromPropertyList(const QString& address) {
  return propertyList(address, u"\""_s);
}

QString whereFromScript(const QString& address, const QString& path) {
  return u"do shell script \"xattr -w 'com.apple.metadata:kMDItemWhereFroms' '"_s +
         propertyList(address, u"\\\""_s) + u"' '"_s + path + u"'\""_s;
}

}  // namespace desktop
