// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/fixtures/windowfixture.h"

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
    const WindowFixture fixture;
    const auto texts = [](const QList<QAction *> &actions) {
        QStringList result;
        for (const QAction *action : actions)
            result += action->isSeparator() ? QString("-") : action->text();
        return result;
    };
    QCOMPARE(texts(fixture.window->menuBar()->actions()), (QStringList{"&File", "&Edit", "&About"}));
    QCOMPARE(texts(fixture.child<QMenu>("fileMenu")->actions()),
             (QStringList{"&Export All", "&Export", "-", "&Exit"}));
    QCOMPARE(texts(fixture.child<QMenu>("editMenu")->actions()), QStringList{"&Read Audio TC"});
    QCOMPARE(texts(fixture.child<QMenu>("aboutMenu")->actions()), QStringList{"&About"});
}

void TestMainWindowLook::theWindowIsLaidOut()
{
    const WindowFixture fixture;
    QCOMPARE(fixture.window->windowTitle(), QString("Ostrel Timecode Tool"));
    QCOMPARE(fixture.status(), QString("Status:"));
    QVERIFY(!fixture.cancelButton->isVisible());
    QCOMPARE(fixture.fileList->minimumWidth(), 700);
    QCOMPARE(fixture.streamInfoList->minimumWidth(), 200);
    QCOMPARE(fixture.streamInfoList->maximumWidth(), 300);
    QCOMPARE(fixture.streamInfoList->minimumHeight(), 100);
    QCOMPARE(fixture.streamInfoList->selectionMode(), QAbstractItemView::NoSelection);
    const auto *logo = fixture.child<QLabel>("logoLabel");
    QVERIFY(!logo->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(logo->alignment(), Qt::AlignCenter);
    QCOMPARE(logo->minimumWidth(), 200);
    QCOMPARE(logo->maximumWidth(), 280);
    for (const QWidget *widget :
         std::initializer_list<const QWidget *>{fixture.fileList, fixture.streamInfoList, logo}) {
        QCOMPARE(widget->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
        QCOMPARE(widget->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    }

    const auto *top = qobject_cast<QHBoxLayout *>(fixture.child<QWidget>("centralWidget")->layout());
    QVERIFY(top);
    const auto *left = qobject_cast<QVBoxLayout *>(top->itemAt(0)->layout());
    const auto *right = qobject_cast<QVBoxLayout *>(top->itemAt(1)->layout());
    QVERIFY(left && right);
    QCOMPARE(left->itemAt(0)->widget(), fixture.fileList);
    const auto *row = qobject_cast<QHBoxLayout *>(left->itemAt(1)->layout());
    QVERIFY(row);
    QCOMPARE(row->itemAt(0)->widget(), fixture.statusLabel);
    QCOMPARE(row->itemAt(1)->widget(), fixture.progressBar);
    QCOMPARE(row->itemAt(2)->widget(), fixture.cancelButton);
    QCOMPARE(right->contentsMargins(), QMargins(5, 5, 5, 5));
    QCOMPARE(right->sizeConstraint(), QLayout::SetMaximumSize);
    QCOMPARE(right->itemAt(0)->widget(), logo);
    QCOMPARE(right->itemAt(1)->widget(), fixture.streamInfoList);
    QVERIFY(fixture.window->width() <= 1280 && fixture.window->height() <= 680);
}

void TestMainWindowLook::everyWidgetAndActionHasItsName()
{
    const WindowFixture fixture;
    for (const char *name : {"fileList", "streamInfoList", "logoLabel", "progressBar", "cancelButton",
                             "centralWidget", "fileMenu", "editMenu", "aboutMenu"})
        QVERIFY2(!fixture.child<QWidget>(name)->accessibleName().isEmpty(), name);
    for (const char *name :
         {"exportAction", "exportAllAction", "exitAction", "readAudioTCAction", "aboutAction"})
        QVERIFY2(!fixture.child<QAction>(name)->text().isEmpty(), name);
    topLevel("exportWindow");
    topLevel("audioTCWindow");
}

void TestMainWindowLook::tabWalksInReadingOrder()
{
    const WindowFixture fixture;
    QVERIFY(fixture.fileList->hasFocus());
    QTest::keyClick(fixture.fileList, Qt::Key_Tab);
    QCOMPARE(fixture.window->focusWidget()->objectName(), QString("streamInfoList"));
    QMetaObject::invokeMethod(fixture.window.get(), "onExportStart");
    fixture.fileList->setFocus();
    QTest::keyClick(fixture.fileList, Qt::Key_Tab);
    QCOMPARE(fixture.window->focusWidget()->objectName(), QString("cancelButton"));
}

void TestMainWindowLook::rowsThatArriveMoveNothing()
{
    const WindowFixture fixture;
    const auto addRows = [&fixture](int count) {
        for (int i = 0; i < count; ++i) {
            QMetaObject::invokeMethod(fixture.fileList, "addItemToTable",
                                      Q_ARG(QFileInfo, QFileInfo(fixture.media + "/missing.mov")));
        }
    };
    constexpr int moreThanFit = 30;
    addRows(moreThanFit);
    fixture.fileList->selectRow(moreThanFit / 2);
    fixture.fileList->verticalScrollBar()->setValue(3);
    addRows(moreThanFit);
    QCOMPARE(fixture.fileList->verticalScrollBar()->value(), 3);
    QCOMPARE(fixture.fileList->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(fixture.fileList->currentRow(), moreThanFit / 2);
}

void TestMainWindowLook::theHeaderIsReadableInADarkTheme()
{
    const QPalette light = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(45, 45, 48)));
    const WindowFixture fixture;
    const QImage header = fixture.fileList->horizontalHeader()->grab().toImage();
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
    const WindowFixture fixture;
    QVERIFY(QDir::setCurrent(before));
    const QSize shown = fixture.child<QLabel>("logoLabel")->pixmap(Qt::ReturnByValue).size();
    QCOMPARE(shown == QSize(20, 10), taken);
    QVERIFY(!shown.isEmpty());
}

QTEST_MAIN(TestMainWindowLook)
#include "tst_mainwindowlook.moc"
