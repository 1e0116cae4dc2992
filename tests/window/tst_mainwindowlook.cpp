// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "tests/window/windowbench.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QPalette>
#include <QScrollBar>
#include <QTest>

class TestMainWindowLook : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void signalsAndSlotsStandInTheirOrder();
    void menusHoldTheirActions();
    void theWindowIsLaidOut();
    void everyWidgetAndActionHasItsName();
    void tabWalksInReadingOrder();
    void rowsThatArriveMoveNothing();
    void theHeaderIsReadableInADarkTheme();
    void theLogoLiesBesideTheWorkingDirectory_data();
    void theLogoLiesBesideTheWorkingDirectory();
};

void TestMainWindowLook::initTestCase()
{
    registerRecordTypes();
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

void TestMainWindowLook::signalsAndSlotsStandInTheirOrder()
{
    const QMetaObject &meta = MainWindow::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods += meta.method(i).methodSignature();
    const QStringList expected{"deleteSelectedRowsSignal()",
                               "cancelExport()",
                               "onExportButtonClicked()",
                               "onExportAllButtonClicked()",
                               "onCancelExportButtonClicked()",
                               "onExportStart()",
                               "onAboutMenuClicked()",
                               "onReadAudioTCButtonClicked()",
                               "exportReady(int,QStringList)",
                               "importReady()",
                               "readingFinished()",
                               "statusProgressUpdate(int,int,QString)",
                               "exitApplication()",
                               "updateFileInfo(FileData)",
                               "versionInfoCheck(uint,uint,QString,QUrl)"};
    QCOMPARE(methods, expected);
}

void TestMainWindowLook::menusHoldTheirActions()
{
    const WindowBench bench;
    const auto texts = [](const QList<QAction *> &actions) {
        QStringList result;
        for (const QAction *action : actions)
            result += action->isSeparator() ? QString("-") : action->text();
        return result;
    };
    QCOMPARE(texts(bench.window->menuBar()->actions()), (QStringList{"&File", "&Edit", "&About"}));
    QCOMPARE(texts(bench.child<QMenu>("fileMenu")->actions()),
             (QStringList{"&Export All", "&Export", "-", "&Exit"}));
    QCOMPARE(texts(bench.child<QMenu>("editMenu")->actions()), QStringList{"&Read Audio TC"});
    QCOMPARE(texts(bench.child<QMenu>("aboutMenu")->actions()), QStringList{"&About"});
}

void TestMainWindowLook::theWindowIsLaidOut()
{
    const WindowBench bench;
    QCOMPARE(bench.window->windowTitle(), QString("Ostrel Timecode Tool"));
    QCOMPARE(bench.status(), QString("Status:"));
    QVERIFY(!bench.cancelButton->isVisible());
    QCOMPARE(bench.fileList->minimumWidth(), 700);
    QCOMPARE(bench.streamInfoList->minimumWidth(), 200);
    QCOMPARE(bench.streamInfoList->maximumWidth(), 300);
    QCOMPARE(bench.streamInfoList->minimumHeight(), 100);
    QCOMPARE(bench.streamInfoList->selectionMode(), QAbstractItemView::NoSelection);
    const auto *logo = bench.child<QLabel>("logoLabel");
    QVERIFY(!logo->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(logo->alignment(), Qt::AlignCenter);
    QCOMPARE(logo->minimumWidth(), 200);
    QCOMPARE(logo->maximumWidth(), 280);
    for (const QWidget *widget :
         std::initializer_list<const QWidget *>{bench.fileList, bench.streamInfoList, logo}) {
        QCOMPARE(widget->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
        QCOMPARE(widget->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    }

    const auto *top = qobject_cast<QHBoxLayout *>(bench.child<QWidget>("centralWidget")->layout());
    QVERIFY(top);
    const auto *left = qobject_cast<QVBoxLayout *>(top->itemAt(0)->layout());
    const auto *right = qobject_cast<QVBoxLayout *>(top->itemAt(1)->layout());
    QVERIFY(left && right);
    QCOMPARE(left->itemAt(0)->widget(), bench.fileList);
    const auto *row = qobject_cast<QHBoxLayout *>(left->itemAt(1)->layout());
    QVERIFY(row);
    QCOMPARE(row->itemAt(0)->widget(), bench.statusLabel);
    QCOMPARE(row->itemAt(1)->widget(), bench.progressBar);
    QCOMPARE(row->itemAt(2)->widget(), bench.cancelButton);
    QCOMPARE(right->contentsMargins(), QMargins(5, 5, 5, 5));
    QCOMPARE(right->sizeConstraint(), QLayout::SetMaximumSize);
    QCOMPARE(right->itemAt(0)->widget(), logo);
    QCOMPARE(right->itemAt(1)->widget(), bench.streamInfoList);
    QVERIFY(bench.window->width() <= 1280 && bench.window->height() <= 680);
}

void TestMainWindowLook::everyWidgetAndActionHasItsName()
{
    const WindowBench bench;
    for (const char *name : {"fileList", "streamInfoList", "logoLabel", "progressBar", "cancelButton",
                             "centralWidget", "fileMenu", "editMenu", "aboutMenu"})
        QVERIFY2(!bench.child<QWidget>(name)->accessibleName().isEmpty(), name);
    for (const char *name :
         {"exportAction", "exportAllAction", "exitAction", "readAudioTCAction", "aboutAction"})
        QVERIFY2(!bench.child<QAction>(name)->text().isEmpty(), name);
    topLevel("exportWindow");
    topLevel("audioTCWindow");
}

void TestMainWindowLook::tabWalksInReadingOrder()
{
    const WindowBench bench;
    QVERIFY(bench.fileList->hasFocus());
    QTest::keyClick(bench.fileList, Qt::Key_Tab);
    QCOMPARE(bench.window->focusWidget()->objectName(), QString("streamInfoList"));
    QMetaObject::invokeMethod(bench.window.get(), "onExportStart");
    bench.fileList->setFocus();
    QTest::keyClick(bench.fileList, Qt::Key_Tab);
    QCOMPARE(bench.window->focusWidget()->objectName(), QString("cancelButton"));
}

void TestMainWindowLook::rowsThatArriveMoveNothing()
{
    const WindowBench bench;
    const auto addRows = [&bench](int count) {
        for (int i = 0; i < count; ++i) {
            QMetaObject::invokeMethod(bench.fileList, "addItemToTable",
                                      Q_ARG(QFileInfo, QFileInfo(bench.media + "/missing.mov")));
        }
    };
    constexpr int moreThanFit = 30;
    addRows(moreThanFit);
    bench.fileList->selectRow(moreThanFit / 2);
    bench.fileList->verticalScrollBar()->setValue(3);
    addRows(moreThanFit);
    QCOMPARE(bench.fileList->verticalScrollBar()->value(), 3);
    QCOMPARE(bench.fileList->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(bench.fileList->currentRow(), moreThanFit / 2);
}

void TestMainWindowLook::theHeaderIsReadableInADarkTheme()
{
    const QPalette light = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(45, 45, 48)));
    const WindowBench bench;
    const QImage header = bench.fileList->horizontalHeader()->grab().toImage();
    QApplication::setPalette(light);
    int darkest = 255;
    int lightest = 0;
    for (int x = 0; x < header.width(); ++x) {
        for (int y = 0; y < header.height(); ++y) {
            const int grey = qGray(header.pixel(x, y));
            darkest = qMin(darkest, grey);
            lightest = qMax(lightest, grey);
        }
    }
    QVERIFY2(lightest - darkest > 150, qPrintable(QString("%1 on %2").arg(darkest).arg(lightest)));
}

void TestMainWindowLook::theLogoLiesBesideTheWorkingDirectory_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("taken");
    QBuffer png;
    QImage(20, 10, QImage::Format_RGB32).save(&png, "PNG");
    QTest::newRow("a picture") << png.data() << true;
    QTest::newRow("no picture: the one in the program") << QByteArray("text") << false;
    QTest::newRow("none: the one in the program") << QByteArray() << false;
}

void TestMainWindowLook::theLogoLiesBesideTheWorkingDirectory()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, taken);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("images"));
    QFile picture(folder.filePath("images/ostrel_LOGO_transparent.png"));
    if (!file.isEmpty())
        QVERIFY(picture.open(QIODevice::WriteOnly) && picture.write(file) == file.size() && picture.flush());
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    const WindowBench bench;
    QVERIFY(QDir::setCurrent(before));
    const QSize shown = bench.child<QLabel>("logoLabel")->pixmap(Qt::ReturnByValue).size();
    QCOMPARE(shown == QSize(20, 10), taken);
    QVERIFY(!shown.isEmpty());
}

QTEST_MAIN(TestMainWindowLook)
#include "tst_mainwindowlook.moc"
