// A program beside Corvalis on the desktop, for what a test cannot do from outside:
//   copy TEXT          owns the clipboard, with a text
//   copy-files PATH... the same with files, as a file manager has them
//   drag TEXT          a window, at (800, 800), from which the text can be dragged
//   drag-files PATH... the same with files
// It says "ready", during a drag "accepted" when what is below the mouse takes it, and at its end
// "dropped" or "refused".
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>
#include <cstdio>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

using MakeData = std::function<QMimeData*()>;

void say(const char* word) {
  std::puts(word);
  std::fflush(stdout);
}

class DragSource : public QWidget {
 public:
  explicit DragSource(MakeData makeData) : makeData_(std::move(makeData)) {
    setGeometry(800, 800, 100, 100);
  }

 protected:
  void mousePressEvent(QMouseEvent*) override {}

  void mouseMoveEvent(QMouseEvent*) override {
    if (std::exchange(dragging_, true)) return;
    auto* drag = new QDrag(this);
    drag->setMimeData(makeData_());
    connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) {
      if (action == Qt::CopyAction) say("accepted");
    });
    const Qt::DropAction action = drag->exec(Qt::CopyAction);
    say(action == Qt::CopyAction ? "dropped" : "refused");
    dragging_ = false;
  }

 private:
  const MakeData makeData_;
  bool dragging_ = false;
};

MakeData dataOf(const QString& command, const QStringList& arguments) {
  const bool areFiles = command.endsWith(u"-files"_s);
  return [areFiles, arguments] {
    auto* data = new QMimeData;
    QList<QUrl> urls;
    for (const QString& path : arguments)
      urls << QUrl::fromLocalFile(path);
    areFiles ? data->setUrls(urls) : data->setText(arguments.value(0));
    return data;
  };
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments().mid(2);
  const QString command = QCoreApplication::arguments().value(1);
  const MakeData makeData = dataOf(command, arguments);
  std::unique_ptr<DragSource> source;
  if (command.startsWith(u"copy"_s)) {
    QGuiApplication::clipboard()->setMimeData(makeData());
  } else {
    source = std::make_unique<DragSource>(makeData);
    source->show();
  }
  say("ready");
  return QApplication::exec();
}
