// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "ffmpeg/exportwindow.h"
#include "testkit/fixtures/dialogfixture.h"

#include <QAbstractItemModel>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace
{

/// What a user without special rights may write to counts, also where the tests run with all rights.
class WithoutSpecialRights
{
public:
    Q_DISABLE_COPY_MOVE(WithoutSpecialRights)
#ifdef Q_OS_UNIX
    WithoutSpecialRights()
    {
        constexpr uid_t nobody = 65534;
        if (owner == 0 && setreuid(nobody, 0) != 0)
            qFatal("cannot give up rights");
    }
    ~WithoutSpecialRights()
    {
        if (owner == 0 && setreuid(owner, 0) != 0)
            qFatal("cannot take rights back");
    }

private:
    uid_t owner = getuid();
#else
    WithoutSpecialRights() = default;
    ~WithoutSpecialRights() = default;
#endif
};

} // namespace

class TestExportWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void aNewDialogOffersTheDefaults();
    void theTitleTellsWhichFiles();
    void choicesStandAtThePositionOfTheirCode();
    void everyWidgetHasAName();
    void aBadDirectoryIsRefusedInRed_data();
    void aBadDirectoryIsRefusedInRed();
    void theChoicesAreSent_data();
    void theChoicesAreSent();
    void anAcceptedExportClearsTheError();
    void mxfNeedsPcm();
    void cancelClosesWithoutExport();
    void keysPressExportAndClose();
    void tabWalksInReadingOrder();
    void browsingFillsInTheDirectory();
    void nothingIsCutOff();

private:
    template <typename Widget>
    Widget *child(const char *name) const
    {
        return childOf<Widget>(*dialog, name);
    }

    std::unique_ptr<ExportWindow> dialog;
    QTemporaryDir folder;
};

void TestExportWindow::initTestCase()
{
    registerRecordTypes();
}

void TestExportWindow::init()
{
    dialog = std::make_unique<ExportWindow>();
}

void TestExportWindow::cleanup()
{
    dialog.reset();
}

void TestExportWindow::aNewDialogOffersTheDefaults()
{
    QCOMPARE(child<QLineEdit>("exportDirEdit")->text(),
             QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
    QCOMPARE(child<QLabel>("exportDirLabel")->text(), QString("Select export directory: "));
    QCOMPARE(child<QLabel>("videoTypeLabel")->text(), QString("Video export type: "));
    QCOMPARE(child<QLabel>("audioTypeLabel")->text(), QString("Audio export type: "));
    QCOMPARE(child<QLabel>("errorLabel")->text(), QString());
    QCOMPARE(child<QPushButton>("browseButton")->text(), QString("Browse"));
    QCOMPARE(child<QPushButton>("exportButton")->text(), QString("Export"));
    QCOMPARE(child<QPushButton>("cancelButton")->text(), QString("Cancel"));
    QCOMPARE(child<QCheckBox>("muteAudioTCCheckBox")->text(), QString("Mute audio TC"));
    QVERIFY(child<QCheckBox>("muteAudioTCCheckBox")->isChecked());
    QCOMPARE(child<QComboBox>("videoTypeCombo")->currentText(), QString("pass trough"));
    QCOMPARE(child<QComboBox>("audioTypeCombo")->currentText(), QString("pass trough"));
    QCOMPARE(dialog->minimumWidth(), 400);
    QCOMPARE(dialog->minimumHeight(), 180);
    QCOMPARE(dialog->maximumHeight(), 180);
}

void TestExportWindow::theTitleTellsWhichFiles()
{
    dialog->setExportAll(true);
    QCOMPARE(dialog->windowTitle(), QString("Export all files"));
    dialog->setExportAll(false);
    QCOMPARE(dialog->windowTitle(), QString("Export selected files"));
}

void TestExportWindow::choicesStandAtThePositionOfTheirCode()
{
    const QStringList video{"pass trough",
                            "MXF - MPEG2 422 50M (1920x1080)",
                            "MXF - DNxHD 36/45 (1920x1080)",
                            "MXF - DNxHD 115/120/145 (1920x1080)",
                            "MXF - DNxHD 175x/185x/220 (1920x1080)",
                            "QuickTime - pass trough",
                            "QuickTime - DNxHD 36/45 (1920x1080)",
                            "QuickTime - DNxHD 115/120/145 (1920x1080)",
                            "QuickTime - DNxHD 175x/185x/220 (1920x1080)"};
    QCOMPARE(texts(*child<QComboBox>("videoTypeCombo")), video);
    QCOMPARE(texts(*child<QComboBox>("audioTypeCombo")),
             (QStringList{"pass trough", "PCM 16 bit", "PCM 24 bit"}));
}

void TestExportWindow::everyWidgetHasAName()
{
    QCOMPARE(dialog->objectName(), QString("exportWindow"));
    for (const char *name : {"exportDirEdit", "browseButton", "videoTypeCombo", "audioTypeCombo",
                             "muteAudioTCCheckBox", "exportButton", "cancelButton"})
        QVERIFY2(!child<QWidget>(name)->accessibleName().isEmpty(), name);
}

void TestExportWindow::aBadDirectoryIsRefusedInRed_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("error");
    QFile file(folder.filePath("file.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString locked = folder.filePath("locked");
    QVERIFY(QDir().mkpath(locked));
    QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner));
    const QString missing("Selected directory doesn't exists");
    QTest::newRow("empty") << "" << missing;
    QTest::newRow("missing") << folder.filePath("missing") << missing;
    QTest::newRow("a file") << file.fileName() << missing;
    QTest::newRow("not writable") << locked << "Cannot write to selected directory";
}

void TestExportWindow::aBadDirectoryIsRefusedInRed()
{
    QFETCH(QString, directory);
    QSignalSpy sent(dialog.get(), &ExportWindow::exportRequest);
    QVERIFY(showInFront(*dialog));
    child<QLineEdit>("exportDirEdit")->setText(directory);
    {
        const WithoutSpecialRights rights;
        child<QPushButton>("exportButton")->click();
    }
    QTEST(child<QLabel>("errorLabel")->text(), "error");
    QCOMPARE(child<QLabel>("errorLabel")->styleSheet(), QString("color:red"));
    QCOMPARE(sent.count(), 0);
    QVERIFY(dialog->isVisible());
}

void TestExportWindow::theChoicesAreSent_data()
{
    QTest::addColumn<bool>("all");
    QTest::addColumn<int>("videoType");
    QTest::addColumn<int>("audioType");
    QTest::addColumn<bool>("mute");
    QTest::newRow("untouched, all files") << true << 0 << 0 << true;
    QTest::newRow("selected files, audible") << false << 0 << 2 << false;
    for (int type = 1; type <= 8; ++type)
        QTest::addRow("video type %d", type) << true << type << 1 << true;
}

void TestExportWindow::theChoicesAreSent()
{
    QFETCH(bool, all);
    QFETCH(int, videoType);
    QFETCH(int, audioType);
    QFETCH(bool, mute);
    QSignalSpy sent(dialog.get(), &ExportWindow::exportRequest);
    dialog->setExportAll(all);
    QVERIFY(showInFront(*dialog));
    const QString directory = folder.path() + "/.";
    child<QLineEdit>("exportDirEdit")->setText(directory);
    child<QComboBox>("videoTypeCombo")->setCurrentIndex(videoType);
    child<QComboBox>("audioTypeCombo")->setCurrentIndex(audioType);
    child<QCheckBox>("muteAudioTCCheckBox")->setChecked(mute);
    QTest::mouseClick(child<QPushButton>("exportButton"), Qt::LeftButton);
    QCOMPARE(sent.count(), 1);
    const auto options = sent.at(0).at(0).value<ExportOptions>();
    QCOMPARE(options.exportDir, directory);
    QCOMPARE(options.videoType, videoType);
    QCOMPARE(options.audioType, audioType);
    QCOMPARE(options.muteAudioTC, mute);
    QCOMPARE(options.exportAll, all);
    QCOMPARE(options.progressSteps, 0U);
    QVERIFY(!dialog->isVisible());
}

void TestExportWindow::anAcceptedExportClearsTheError()
{
    QVERIFY(showInFront(*dialog));
    child<QLineEdit>("exportDirEdit")->setText("");
    child<QPushButton>("exportButton")->click();
    QVERIFY(!child<QLabel>("errorLabel")->text().isEmpty());
    child<QLineEdit>("exportDirEdit")->setText(folder.path());
    child<QPushButton>("exportButton")->click();
    QCOMPARE(child<QLabel>("errorLabel")->text(), QString());
}

void TestExportWindow::mxfNeedsPcm()
{
    auto *video = child<QComboBox>("videoTypeCombo");
    auto *audio = child<QComboBox>("audioTypeCombo");
    const auto passThroughFlags = [audio] { return audio->model()->flags(audio->model()->index(0, 0)); };
    for (int mxf = 1; mxf <= 4; ++mxf) {
        video->setCurrentIndex(0);
        audio->setCurrentIndex(0);
        video->setCurrentIndex(mxf);
        QCOMPARE(audio->currentText(), QString("PCM 16 bit"));
        QCOMPARE(passThroughFlags(), Qt::ItemFlags(Qt::NoItemFlags));
    }
    for (int other = 5; other <= 8; ++other) {
        video->setCurrentIndex(1);
        video->setCurrentIndex(other);
        QCOMPARE(audio->currentText(), QString("PCM 16 bit"));
        QVERIFY(passThroughFlags().testFlag(Qt::ItemIsEnabled));
        QVERIFY(passThroughFlags().testFlag(Qt::ItemIsSelectable));
        QCOMPARE(audio->itemData(0, Qt::UserRole - 1).toInt(), 33);
    }
    audio->setCurrentIndex(2);
    video->setCurrentIndex(3);
    QCOMPARE(audio->currentText(), QString("PCM 24 bit"));
}

void TestExportWindow::cancelClosesWithoutExport()
{
    QSignalSpy sent(dialog.get(), &ExportWindow::exportRequest);
    QVERIFY(showInFront(*dialog));
    QTest::mouseClick(child<QPushButton>("cancelButton"), Qt::LeftButton);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(sent.count(), 0);
}

void TestExportWindow::keysPressExportAndClose()
{
    QSignalSpy sent(dialog.get(), &ExportWindow::exportRequest);
    QVERIFY(showInFront(*dialog));
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(sent.count(), 0);
    child<QLineEdit>("exportDirEdit")->setText(folder.path());
    for (const char *focused : {"exportDirEdit", "videoTypeCombo", "muteAudioTCCheckBox", "exportButton"}) {
        sent.clear();
        QVERIFY(showInFront(*dialog));
        auto *widget = child<QWidget>(focused);
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_Return);
        QVERIFY2(sent.count() == 1, focused);
        QVERIFY2(!dialog->isVisible(), focused);
    }
}

void TestExportWindow::tabWalksInReadingOrder()
{
    QVERIFY(showInFront(*dialog));
    const QStringList order{"browseButton",        "videoTypeCombo", "audioTypeCombo",
                            "muteAudioTCCheckBox", "exportButton",   "cancelButton"};
    QCOMPARE(tabWalk(*dialog, "exportDirEdit", order.size()), order);
}

void TestExportWindow::browsingFillsInTheDirectory()
{
    QVERIFY(showInFront(*dialog));
    auto *edit = child<QLineEdit>("exportDirEdit");
    edit->setText("typed");
    QString title;
    const auto answer = [&title](void (*press)(QFileDialog *)) {
        auto *chooser = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!chooser)
            qFatal("there is no directory chooser");
        title = chooser->windowTitle();
        press(chooser);
    };
    QTimer::singleShot(0, dialog.get(),
                       [answer] { answer([](QFileDialog *chooser) { chooser->reject(); }); });
    child<QPushButton>("browseButton")->click();
    QCOMPARE(title, QString("Select export destination"));
    QCOMPARE(edit->text(), QString("typed"));

    static QString chosen;
    chosen = QFileInfo(folder.path()).canonicalFilePath();
    QTimer::singleShot(0, dialog.get(), [answer] {
        answer([](QFileDialog *chooser) {
            chooser->setDirectory(chosen);
            chooser->selectFile(chosen);
            static_cast<QDialog *>(chooser)->accept();
        });
    });
    child<QPushButton>("browseButton")->click();
    QCOMPARE(edit->text(), chosen);
}

void TestExportWindow::nothingIsCutOff()
{
    QVERIFY(showInFront(*dialog));
    child<QLabel>("errorLabel")->setText("Selected directory doesn't exists");
    QCOMPARE(cutOffWidgets(*dialog), QStringList());
}

QTEST_MAIN(TestExportWindow)
#include "tst_exportwindow.moc"
