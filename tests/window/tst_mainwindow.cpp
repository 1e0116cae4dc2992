// SPDX-License-Identifier: MIT
#include "app/recordtypes.h"
#include "filelist/filelist.h"
#include "tests/fakes/faketools.h"
#include "tests/window/windowbench.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QHeaderView>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>

namespace
{

constexpr int patience = 60000; // [ms]
constexpr int audioColumn = 3;

template <typename... Arguments>
void call(MainWindow &window, const char *slot, Arguments... arguments)
{
    if (!QMetaObject::invokeMethod(&window, slot, Qt::DirectConnection, arguments...))
        qFatal("there is no slot %s", slot);
}

void progress(MainWindow &window, int current, int all, const QString &text)
{
    call(window, "statusProgressUpdate", Q_ARG(int, current), Q_ARG(int, all), Q_ARG(QString, text));
}

/// Notes what a label said when it was painted last.
class PaintedText : public QObject
{
public:
    explicit PaintedText(QLabel &label) : label(label) { label.installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            last = label.text();
        return false;
    }
    QString last;

private:
    QLabel &label;
};

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void signalsAndSlotsStandInTheirOrder();
    void menusHoldTheirActions();
    void theWindowIsLaidOut();
    void everyWidgetAndActionHasItsName();
    void tabWalksInReadingOrder();
    void progressIsShown();
    void theProgressNeverGoesBackwards();
    void aProgressOfNothingStandsStill();
    void theEndsOfImportAndReadingAreShown();
    void theDialogsAreShownOrBroughtToTheFront();
    void theContextMenuOffersExportAndReading();
    void deleteClearsAndIsPassedOnWithoutSelection();
    void deleteWaitsForTheEndOfAReading();
    void aFolderIsImportedAndItsStreamsShown();
    void aDropIsAnsweredAtOnce();
    void theStatusIsPaintedBeforeTheFolderIsWalked();
    void rowsThatArriveMoveNothing();
    void theHeaderIsReadableInADarkTheme();
    void theLogoLiesBesideTheWorkingDirectory_data();
    void theLogoLiesBesideTheWorkingDirectory();
    void aDropOfNothingUsableEndsQuietly();
    void rowsCannotBeDeletedDuringAnImport();
    void theReadingDialogReachesTheReader();
    void theWindowClosesAtOnceWhenNothingRuns();
};

void TestMainWindow::initTestCase()
{
    registerRecordTypes();
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

void TestMainWindow::signalsAndSlotsStandInTheirOrder()
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

void TestMainWindow::menusHoldTheirActions()
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

void TestMainWindow::theWindowIsLaidOut()
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

void TestMainWindow::everyWidgetAndActionHasItsName()
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

void TestMainWindow::tabWalksInReadingOrder()
{
    const WindowBench bench;
    QVERIFY(bench.fileList->hasFocus());
    QTest::keyClick(bench.fileList, Qt::Key_Tab);
    QCOMPARE(bench.window->focusWidget()->objectName(), QString("streamInfoList"));
    call(*bench.window, "onExportStart");
    bench.fileList->setFocus();
    QTest::keyClick(bench.fileList, Qt::Key_Tab);
    QCOMPARE(bench.window->focusWidget()->objectName(), QString("cancelButton"));
}

void TestMainWindow::progressIsShown()
{
    const WindowBench bench;
    progress(*bench.window, 4, 30, "importing files...");
    QCOMPARE(bench.progressBar->minimum(), 0);
    QCOMPARE(bench.progressBar->maximum(), 30);
    QCOMPARE(bench.progressBar->value(), 4);
    QCOMPARE(bench.status(), QString("Status: importing files..."));
}

void TestMainWindow::theProgressNeverGoesBackwards()
{
    WindowBench bench;
    for (const char *name : {"a.mov", "b.mov", "c.wav"})
        bench.addFile(name);
    QVector<double> shown; // parts of the whole, since the operation began
    connect(bench.progressBar, &QProgressBar::valueChanged, bench.window.get(), [&bench, &shown](int value) {
        shown += static_cast<double>(value) / bench.progressBar->maximum();
    });
    const auto onlyGrew = [&shown] { // until it is set back at the end
        return shown.size() > 2 && shown.takeLast() == 0.0 && std::is_sorted(shown.cbegin(), shown.cend());
    };
    QVERIFY(bench.import());
    QVERIFY(onlyGrew());
    shown.clear();
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.allGiven(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status:"), patience);
    QVERIFY(onlyGrew());
}

void TestMainWindow::aProgressOfNothingStandsStill()
{
    const WindowBench bench;
    progress(*bench.window, 0, 0, "cancelling export...");
    QVERIFY(bench.progressBar->maximum() > 0);
    QCOMPARE(bench.progressBar->value(), 0);
}

void TestMainWindow::theEndsOfImportAndReadingAreShown()
{
    const WindowBench bench;
    progress(*bench.window, 4, 30, "importing files...");
    call(*bench.window, "importReady");
    QCOMPARE(bench.progressBar->value(), 0);
    QCOMPARE(bench.status(), QString("Status: import ready"));
    progress(*bench.window, 4, 30, "reading audio TC...");
    call(*bench.window, "readingFinished");
    QCOMPARE(bench.progressBar->value(), 0);
    QCOMPARE(bench.status(), QString("Status: read finished"));
}

void TestMainWindow::theDialogsAreShownOrBroughtToTheFront()
{
    const WindowBench bench;
    QWidget *exportWindow = topLevel("exportWindow");
    QWidget *audioTCWindow = topLevel("audioTCWindow");
    bench.child<QAction>("exportAllAction")->trigger();
    QVERIFY(exportWindow->isVisible());
    QCOMPARE(exportWindow->windowTitle(), QString("Export all files"));
    QVERIFY(QTest::qWaitForWindowActive(exportWindow, patience));
    bench.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(bench.window.get(), patience));
    bench.child<QAction>("exportAction")->trigger();
    QCOMPARE(exportWindow->windowTitle(), QString("Export selected files"));
    QVERIFY(QTest::qWaitForWindowActive(exportWindow, patience));
    bench.child<QAction>("readAudioTCAction")->trigger();
    QVERIFY(audioTCWindow->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(audioTCWindow, patience));
}

void TestMainWindow::theContextMenuOffersExportAndReading()
{
    const WindowBench bench;
    QList<QAction *> offered;
    QTimer::singleShot(0, bench.window.get(), [&offered] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            offered = menu->actions();
            menu->close();
        }
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(10, 100), bench.window->mapToGlobal({10, 100}));
    QCoreApplication::sendEvent(bench.window.get(), &event);
    QCOMPARE(offered, (QList<QAction *>{bench.child<QAction>("exportAction"),
                                        bench.child<QAction>("readAudioTCAction")}));
}

void TestMainWindow::deleteClearsAndIsPassedOnWithoutSelection()
{
    const WindowBench bench;
    QSignalSpy passedOn(bench.window.get(), &MainWindow::deleteSelectedRowsSignal);
    bench.streamInfoList->addItem("   0: video (h264)");
    bench.statusLabel->setText("Status: import ready");
    QTest::keyClick(bench.window.get(), Qt::Key_Delete);
    QCOMPARE(bench.streamInfoList->count(), 0);
    QCOMPARE(bench.status(), QString("Status: "));
    QCOMPARE(passedOn.count(), 1);
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(passedOn.count(), 2);
    QTest::keyClick(bench.fileList, Qt::Key_X);
    QCOMPARE(passedOn.count(), 2);
}

void TestMainWindow::deleteWaitsForTheEndOfAReading()
{
    WindowBench bench;
    const QString file = bench.addFile("a.wav");
    QVERIFY(bench.import());
    faketools::setPlan(file, {{"read", QJsonObject{{"waitFor", "gate"}}}});
    QWidget *dialog = topLevel("audioTCWindow");
    bench.child<QAction>("readAudioTCAction")->trigger();
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentIndex(1);
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 1);
    QCOMPARE(bench.status(), QString("Status: "));
    faketools::openGate(bench.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: read finished"), patience);
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 0);
}

void TestMainWindow::aFolderIsImportedAndItsStreamsShown()
{
    WindowBench bench;
    bench.addFile("a.mov");
    bench.addFile("b.wav");
    QVERIFY(bench.import());
    QStringList names = bench.column(0);
    names.sort();
    QCOMPARE(names, (QStringList{"a.mov", "b.wav"}));
    for (const QString &cell : bench.column(audioColumn))
        QCOMPARE(cell, QString("10:00:00:00@25.00 on ch. 1"));
    QCOMPARE(bench.progressBar->value(), 0);
    const int row = bench.column(0).indexOf("a.mov");
    QTest::mouseClick(bench.fileList->viewport(), Qt::LeftButton, {},
                      bench.fileList->visualItemRect(bench.fileList->item(row, 0)).center());
    QCOMPARE(bench.streamLines().value(0), QString(" Streams:"));
    QVERIFY(bench.streamLines().size() > 3);
    QTest::keyClick(bench.fileList, Qt::Key_C, Qt::ControlModifier);
    QVERIFY(QGuiApplication::clipboard()->text().contains("a.mov\t00:00:10\t"));
}

void TestMainWindow::aDropIsAnsweredAtOnce()
{
    WindowBench bench;
    const QString file = bench.addFile("a.wav");
    faketools::setPlan(file, {{"probe", QJsonObject{{"waitFor", "gate"}}}});
    bench.dropFolder();
    QCOMPARE(bench.status(), QString("Status: importing files..."));
    faketools::openGate(bench.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), patience);
}

void TestMainWindow::theStatusIsPaintedBeforeTheFolderIsWalked()
{
    WindowBench bench;
    PaintedText painted(*bench.statusLabel);
    QString beforeTheWalk;
    bool hasRoom = false;
    connect(qobject_cast<FileList *>(bench.fileList), &FileList::iterateThroughDirReq, bench.window.get(),
            [&] {
                beforeTheWalk = painted.last;
                hasRoom = bench.statusLabel->width() >= bench.statusLabel->sizeHint().width();
            });
    bench.dropFolder();
    QCOMPARE(beforeTheWalk, QString("Status: importing files..."));
    QVERIFY(hasRoom);
}

void TestMainWindow::rowsThatArriveMoveNothing()
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

void TestMainWindow::theHeaderIsReadableInADarkTheme()
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

void TestMainWindow::theLogoLiesBesideTheWorkingDirectory_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("taken");
    QBuffer png;
    QImage(20, 10, QImage::Format_RGB32).save(&png, "PNG");
    QTest::newRow("a picture") << png.data() << true;
    QTest::newRow("no picture: the one in the program") << QByteArray("text") << false;
    QTest::newRow("none: the one in the program") << QByteArray() << false;
}

void TestMainWindow::theLogoLiesBesideTheWorkingDirectory()
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

void TestMainWindow::aDropOfNothingUsableEndsQuietly()
{
    WindowBench bench;
    bench.addFile("notes.txt");
    bench.dropFolder();
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status:"), patience);
    QCOMPARE(bench.fileList->rowCount(), 0);
    bench.addFile("a.wav");
    QVERIFY(bench.import());
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 0);
}

void TestMainWindow::rowsCannotBeDeletedDuringAnImport()
{
    WindowBench bench;
    const QString file = bench.addFile("a.wav");
    faketools::setPlan(file, {{"read", QJsonObject{{"waitFor", "gate"}}}});
    bench.dropFolder();
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(file, "read").size(), 1, patience);
    const QSignalSpy asked(bench.window.get(), &MainWindow::deleteSelectedRowsSignal);
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(asked.count(), 1); // the table itself refuses
    QCOMPARE(bench.fileList->rowCount(), 1);
    faketools::openGate(bench.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), patience);
}

void TestMainWindow::theReadingDialogReachesTheReader()
{
    WindowBench bench;
    const QString file = bench.addFile("a.wav");
    QVERIFY(bench.import());
    QWidget *dialog = topLevel("audioTCWindow");
    bench.child<QAction>("readAudioTCAction")->trigger();
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentText("all files");
    dialog->findChild<QComboBox *>("algorithmCombo")->setCurrentText("HIGH");
    dialog->findChild<QComboBox *>("channelCombo")->setCurrentText("channel 4");
    dialog->findChild<QComboBox *>("frameRateCombo")->setCurrentText("29.97 FPS");
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: read finished"), patience);
    const auto reads = faketools::calls(file, "read");
    QCOMPARE(reads.size(), 2);
    QCOMPARE(reads.at(0).arguments.size(), 1);
    QCOMPARE(reads.at(1).arguments.mid(1), (QStringList{"-c3", "-f29.97", "-aHIGH"}));
}

void TestMainWindow::theWindowClosesAtOnceWhenNothingRuns()
{
    {
        const WindowBench bench;
        bench.child<QAction>("readAudioTCAction")->trigger();
        bench.window->close();
        QVERIFY(!bench.window->isVisible());
        QVERIFY(!topLevel("audioTCWindow")->isVisible());
    }
    {
        const WindowBench bench;
        bench.child<QAction>("exportAllAction")->trigger();
        bench.child<QAction>("exitAction")->trigger();
        QVERIFY(!bench.window->isVisible());
        QVERIFY(!topLevel("exportWindow")->isVisible());
    }
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
