// SPDX-License-Identifier: MIT

// A program to drag files from, as a file manager is: a small window in the corner of the screen. Dragging in
// it drags the files that are named as arguments. It prints "welcome" when what is under the pointer would
// take them, and after the drop "accepted" or "refused". It stays, as the receiver asks for the files only
// then. With --print-selection it prints the text that is selected by mouse anywhere on the display instead.

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

#include <cstdio>
#include <utility>

namespace
{

void print(const char *line)
{
    std::puts(line);
    std::fflush(stdout);
}

class DragSource : public QLabel
{
public:
    explicit DragSource(QList<QUrl> files) : QLabel("drag from here"), files(std::move(files))
    {
        setWindowFlags(Qt::X11BypassWindowManagerHint);
        setGeometry(0, 0, 150, 60);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override { pressedAt = event->pos(); }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        if ((event->pos() - pressedAt).manhattanLength() < QApplication::startDragDistance())
            return;
        auto *data = new QMimeData;
        data->setUrls(files);
        auto *drag = new QDrag(this);
        drag->setMimeData(data);
        connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) {
            if (action == Qt::CopyAction)
                print("welcome");
        });
        print(drag->exec(Qt::CopyAction) == Qt::CopyAction ? "accepted" : "refused");
    }

private:
    QList<QUrl> files;
    QPoint pressedAt;
};

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == "--print-selection") {
        std::puts(qPrintable(QGuiApplication::clipboard()->text(QClipboard::Selection)));
        return 0;
    }
    QList<QUrl> files;
    for (const QString &path : std::as_const(arguments))
        files += QUrl::fromLocalFile(path);
    DragSource source(files);
    source.setWindowTitle("dragsource");
    source.show();
    return QApplication::exec();
}
