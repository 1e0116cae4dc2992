// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "ltc/audiotcwindow.h"
#include "ltc/readerarguments.h"
#include "testkit/fixtures/dialogfixture.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

#include <utility>

namespace
{

/// Translates every text into itself between brackets.
class Brackets : public QTranslator
{
public:
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return QString("<%1>").arg(text);
    }
    bool isEmpty() const override { return false; }
};

} // namespace

class TestAudioTCWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void aNewDialogOffersTheDefaults();
    void everyTextOfItsOwnIsTranslated();
    void automaticHeadsBothLists();
    void theLayoutIsAsDrawn();
    void untouchedItAsksForTheAutomaticReadingOfSelectedFiles();
    void everyChoiceReachesTheReader_data();
    void everyChoiceReachesTheReader();
    void choicesAreKeptBetweenOpenings();
    void keysPressTheButtonAndClose();
    void tabWalksInReadingOrder();
    void nothingIsCutOff();

private:
    template <typename Widget>
    Widget *child(const char *name) const
    {
        return childOf<Widget>(*dialog, name);
    }
    AudioTCOptions sentByTheButton();

    std::unique_ptr<AudioTCWindow> dialog;
};

void TestAudioTCWindow::initTestCase()
{
    registerRecordTypes();
}

void TestAudioTCWindow::init()
{
    dialog = std::make_unique<AudioTCWindow>(nullptr);
}

void TestAudioTCWindow::cleanup()
{
    dialog.reset();
}

AudioTCOptions TestAudioTCWindow::sentByTheButton()
{
    QSignalSpy sent(dialog.get(), &AudioTCWindow::readAudioTCReq);
    child<QPushButton>("readAudioTCButton")->click();
    return sent.count() == 1 ? sent.at(0).at(0).value<AudioTCOptions>()
                             : AudioTCOptions{-99, -99, -99.0, false};
}

void TestAudioTCWindow::aNewDialogOffersTheDefaults()
{
    QCOMPARE(dialog->windowTitle(), QString("Read audio timecode"));
    QVERIFY(dialog->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    QCOMPARE(dialog->minimumSize(), QSize(350, 180));
    QCOMPARE(dialog->maximumSize(), QSize(350, 180));
    QCOMPARE(child<QPushButton>("readAudioTCButton")->text(), QString("Read audio TC"));
    QCOMPARE(child<QLabel>("filesLabel")->text(), QString("Read files:"));
    QCOMPARE(child<QLabel>("algorithmLabel")->text(), QString("Select reading algorithm:"));
    QCOMPARE(child<QLabel>("frameRateLabel")->text(), QString("Select frame rate:"));
    QCOMPARE(child<QLabel>("channelLabel")->text(), QString("Select timecode channel:"));
    QCOMPARE(texts(*child<QComboBox>("filesCombo")), (QStringList{"selected files", "all files"}));
    QCOMPARE(texts(*child<QComboBox>("algorithmCombo")),
             (QStringList{"auto", "LOW", "MID", "HIGH", "SLOPE"}));
    for (const char *combo : {"filesCombo", "algorithmCombo", "channelCombo", "frameRateCombo"}) {
        QCOMPARE(child<QComboBox>(combo)->currentIndex(), 0);
        QVERIFY(!child<QComboBox>(combo)->accessibleName().isEmpty());
    }
}

void TestAudioTCWindow::everyTextOfItsOwnIsTranslated()
{
    Brackets brackets; // uninstalls itself
    QVERIFY(QCoreApplication::installTranslator(&brackets));
    const AudioTCWindow translated;
    QStringList shown{translated.windowTitle(),
                      childOf<QPushButton>(translated, "readAudioTCButton")->text()};
    const auto labels = translated.findChildren<QLabel *>();
    for (const QLabel *label : labels)
        shown += label->text();
    for (const char *combo : {"filesCombo", "algorithmCombo"})
        shown += texts(*childOf<QComboBox>(translated, combo));
    for (const QString &text : std::as_const(shown))
        QVERIFY2(text.startsWith('<'), qPrintable(text));
}

void TestAudioTCWindow::automaticHeadsBothLists()
{
    QCOMPARE(texts(*child<QComboBox>("channelCombo")),
             (QStringList{"auto", "channel 1", "channel 2", "channel 3", "channel 4", "channel 5",
                          "channel 6", "channel 7", "channel 8"}));
    QCOMPARE(texts(*child<QComboBox>("frameRateCombo")),
             (QStringList{"auto", "23.98 FPS", "24.00 FPS", "25.00 FPS", "29.97 FPS", "30.00 FPS"}));
}

void TestAudioTCWindow::theLayoutIsAsDrawn()
{
    const auto *column = qobject_cast<QVBoxLayout *>(dialog->layout());
    QVERIFY(column);
    QCOMPARE(column->count(), 5);
    const QStringList combos{"filesCombo", "algorithmCombo", "channelCombo", "frameRateCombo"};
    for (int i = 0; i < combos.size(); ++i) {
        const auto *row = qobject_cast<QHBoxLayout *>(column->itemAt(i)->layout());
        QVERIFY(row);
        QCOMPARE(row->contentsMargins(), i < 3 ? QMargins(3, 3, 3, 3) : QMargins(3, 3, 3, 6));
        QCOMPARE(row->itemAt(1)->widget()->objectName(), combos.at(i));
    }
    QCOMPARE(column->itemAt(4)->widget()->objectName(), QString("readAudioTCButton"));
}

void TestAudioTCWindow::untouchedItAsksForTheAutomaticReadingOfSelectedFiles()
{
    QVERIFY(showInFront(*dialog));
    const AudioTCOptions options = sentByTheButton();
    QCOMPARE(options.algorithm, 0);
    QCOMPARE(options.channel, -1);
    QCOMPARE(options.frameRate, -1.0);
    QVERIFY(!options.allFiles);
    QVERIFY(!dialog->isVisible());
}

void TestAudioTCWindow::everyChoiceReachesTheReader_data()
{
    QTest::addColumn<QString>("combo");
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("arguments");
    const auto rows = [](const char *combo, const QStringList &arguments) {
        for (int i = 0; i < arguments.size(); ++i) {
            QStringList expected{"/t/a_1_0.wav"};
            if (!arguments.at(i).isEmpty())
                expected += arguments.at(i);
            QTest::addRow("%s %d", combo, i) << combo << i << expected;
        }
    };
    rows("algorithmCombo", {"", "-aLOW", "-aMID", "-aHIGH", "-aSLOPE"});
    rows("channelCombo", {"", "-c0", "-c1", "-c2", "-c3", "-c4", "-c5", "-c6", "-c7"});
    rows("frameRateCombo", {"", "-f23.98", "-f24", "-f25", "-f29.97", "-f30"});
    rows("filesCombo", {"", ""});
}

void TestAudioTCWindow::everyChoiceReachesTheReader()
{
    QFETCH(QString, combo);
    QFETCH(int, index);
    child<QComboBox>(combo.toLatin1().constData())->setCurrentIndex(index);
    const AudioTCOptions options = sentByTheButton();
    QTEST(readerarguments::chosen("/t/a_1_0.wav", options, false), "arguments");
    QCOMPARE(options.allFiles, combo == "filesCombo" && index == 1);
}

void TestAudioTCWindow::choicesAreKeptBetweenOpenings()
{
    QVERIFY(showInFront(*dialog));
    child<QComboBox>("channelCombo")->setCurrentText("channel 8");
    child<QComboBox>("filesCombo")->setCurrentText("all files");
    QCOMPARE(sentByTheButton().channel, 7);
    QVERIFY(!dialog->isVisible());
    QVERIFY(showInFront(*dialog));
    const AudioTCOptions options = sentByTheButton();
    QCOMPARE(options.channel, 7);
    QVERIFY(options.allFiles);
}

void TestAudioTCWindow::keysPressTheButtonAndClose()
{
    QSignalSpy sent(dialog.get(), &AudioTCWindow::readAudioTCReq);
    QVERIFY(showInFront(*dialog));
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(sent.count(), 0);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        sent.clear();
        QVERIFY(showInFront(*dialog));
        child<QComboBox>("algorithmCombo")->setFocus();
        QTest::keyClick(child<QComboBox>("algorithmCombo"), key);
        QCOMPARE(sent.count(), 1);
        QVERIFY(!dialog->isVisible());
    }
}

void TestAudioTCWindow::tabWalksInReadingOrder()
{
    QVERIFY(showInFront(*dialog));
    const QStringList order{"algorithmCombo", "channelCombo", "frameRateCombo", "readAudioTCButton"};
    QCOMPARE(tabWalk(*dialog, "filesCombo", order.size()), order);
}

void TestAudioTCWindow::nothingIsCutOff()
{
    QVERIFY(showInFront(*dialog));
    QCOMPARE(cutOffWidgets(*dialog), QStringList());
}

QTEST_MAIN(TestAudioTCWindow)
#include "tst_audiotcwindow.moc"
