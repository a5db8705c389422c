// A window to drag files out of, as a file manager's. usage: dragsource FILE...
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

namespace {

class Source : public QWidget {
 protected:
  void mouseMoveEvent(QMouseEvent*) override {
    QList<QUrl> files;
    for (const QString& name : QCoreApplication::arguments().mid(1))
      files << QUrl::fromLocalFile(name);
    auto* content = new QMimeData;
    content->setUrls(files);
    auto* drag = new QDrag(this);
    drag->setMimeData(content);
    drag->exec(Qt::CopyAction);
  }
};

}  // namespace

int main(int count, char** words) {
  QApplication application(count, words);
  Source window;
  window.setWindowTitle("Drag source");
  window.setWindowFlag(Qt::X11BypassWindowManagerHint);
  window.setGeometry(0, 0, 120, 80);
  window.show();
  return QApplication::exec();
}
