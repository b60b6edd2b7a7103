#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QMimeData>

#include "ui/controls/CVDragView.h"

using namespace Qt::StringLiterals;

namespace {

class Recorder : public CVDragViewDelegate {
 public:
  void dragViewFilesWereDropped(CVDragView&, const QStringList& paths) override {
    dropped += u"files:"_s + paths.join(u'|');
  }
  void dragViewStringWasDragged(CVDragView&, const QString& text) override {
    dropped += u"text:"_s + text;
  }
  QStringList dropped;
};

QByteArray utf16(const QString& text) {
  return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

bool enters(CVDragView& view, const QMimeData& data) {
  QDragEnterEvent event(QPoint(1, 1), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                        Qt::NoModifier);
  event.ignore();
  QCoreApplication::sendEvent(&view, &event);
  return event.isAccepted() && event.dropAction() == Qt::CopyAction;
}

void drop(CVDragView& view, const QMimeData& data) {
  QDropEvent event(QPointF(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&view, &event);
}

}  // namespace

TEST(DragView, takesWhatFileManagersBrowsersAndEditorsSend) {
  struct {
    const char* sender;
    std::vector<std::pair<QString, QByteArray>> formats;
    QString expected;
  } const cases[] = {
      {"file manager",
       {{u"text/uri-list"_s, "file:///tmp/a%20b.pdf\r\nfile:///tmp/c.html\r\n"},
        {u"text/plain"_s, "/tmp/a b.pdf"}},
       u"files:/tmp/a b.pdf|/tmp/c.html"_s},
      {"link of a browser",
       {{u"text/uri-list"_s, "http://127.0.0.1/a?b=c%20d\r\n"}, {u"text/plain"_s, "A link"}},
       u"text:http://127.0.0.1/a?b=c%20d"_s},
      {"link of Firefox",
       {{u"text/x-moz-url"_s, utf16(u"http://127.0.0.1/ü\nTitle"_s)}, {u"text/plain"_s, "x"}},
       u"text:http://127.0.0.1/ü"_s},
      {"text of an editor",
       {{u"text/plain"_s, "see http://127.0.0.1/ now"}},
       u"text:see http://127.0.0.1/ now"_s},
      {"files and a web address",
       {{u"text/uri-list"_s, "http://127.0.0.1/\r\nfile:///tmp/a\r\n"}},
       u"files:/tmp/a"_s},
  };
  for (const auto& [sender, formats, expected] : cases) {
    SCOPED_TRACE(sender);
    CVDragView view;
    auto recorder = std::make_shared<Recorder>();
    view.setDelegate(recorder);
    view.setDragEnabled(true);
    QMimeData data;
    for (const auto& [type, content] : formats)
      data.setData(type, content);
    EXPECT_TRUE(enters(view, data));
    EXPECT_TRUE(view.isDragHovering());
    drop(view, data);
    EXPECT_EQ(recorder->dropped, QStringList{expected});
    EXPECT_FALSE(view.isDragHovering());
  }
}

TEST(DragView, refusesOtherKindsAndIsClosedAtFirst) {
  CVDragView view;
  EXPECT_FALSE(view.acceptDrops());
  view.setDragEnabled(true);
  EXPECT_TRUE(view.acceptDrops());
  QMimeData picture;
  picture.setData(u"image/png"_s, "x");
  EXPECT_FALSE(enters(view, picture));
  EXPECT_FALSE(view.isDragHovering());
}

TEST(DragView, aDragThatIsOverWhenTheZoneClosesLeavesNoHighlight) {
  CVDragView view;
  view.setDragEnabled(true);
  QMimeData text;
  text.setText(u"http://127.0.0.1"_s);
  enters(view, text);
  view.setDragEnabled(false);
  EXPECT_FALSE(view.acceptDrops());
  EXPECT_FALSE(view.isDragHovering());
  drop(view, text);  // without a delegate: taken and ignored
}
