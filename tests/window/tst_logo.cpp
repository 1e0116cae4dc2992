// SPDX-License-Identifier: MIT
#include "app/recordtypes.h"
#include "tests/window/windowbench.h"

#include <QDir>
#include <QImage>
#include <QTest>

/// Which of the two logos the window shows: the one in the working directory, or the one in the program.
class TestLogo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void theImageOfTheWorkingDirectoryIsShown();
    void withoutAnImageTheOneInTheProgramIsShown_data();
    void withoutAnImageTheOneInTheProgramIsShown();

private:
    QString imagePath() const { return workingDirectory->filePath("images/ostrel_LOGO_transparent.png"); }
    static QImage shownLogo();

    std::unique_ptr<QTemporaryDir> workingDirectory;
    QString formerDirectory;
};

void TestLogo::initTestCase()
{
    registerRecordTypes();
}

void TestLogo::init()
{
    formerDirectory = QDir::currentPath();
    workingDirectory = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(workingDirectory->path()).mkdir("images"));
    QVERIFY(QDir::setCurrent(workingDirectory->path()));
}

void TestLogo::cleanup()
{
    QVERIFY(QDir::setCurrent(formerDirectory));
}

QImage TestLogo::shownLogo()
{
    const WindowBench bench;
    return bench.child<QLabel>("logoLabel")->pixmap(Qt::ReturnByValue).toImage();
}

void TestLogo::theImageOfTheWorkingDirectoryIsShown()
{
    QImage own(30, 20, QImage::Format_RGB32);
    own.fill(Qt::magenta);
    QVERIFY(own.save(imagePath()));
    const QImage shown = shownLogo();
    QCOMPARE(shown.size(), own.size());
    QCOMPARE(shown.pixelColor(15, 10), QColor(Qt::magenta));
}

void TestLogo::withoutAnImageTheOneInTheProgramIsShown_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no file") << QByteArray();
    QTest::newRow("a file that is no image") << QByteArray("no image");
}

void TestLogo::withoutAnImageTheOneInTheProgramIsShown()
{
    QFETCH(QByteArray, content);
    if (!content.isEmpty()) {
        QFile file(imagePath());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) > 0);
    }
    const QImage compiledIn(":/images/ostrel_LOGO_transparent.png");
    QVERIFY(!compiledIn.isNull() && compiledIn.hasAlphaChannel());
    constexpr auto asPixmapsAre = QImage::Format_ARGB32_Premultiplied;
    QCOMPARE(shownLogo().convertToFormat(asPixmapsAre), compiledIn.convertToFormat(asPixmapsAre));
}

QTEST_MAIN(TestLogo)
#include "tst_logo.moc"
