// SPDX-License-Identifier: MIT
#include "demo/demofolder.h"
#include "demo/reporttable.h"

#include <QtTest>

/// What the demo prints and keeps.
class TestDemoReport : public QObject
{
    Q_OBJECT

private slots:
    void columnsAreAsWideAsTheirLongestCell();
    void emptyFolderIsPrepared();
    void earlierRunIsReplaced();
    void foreignFolderIsRefusedAndKept();
};

namespace
{

QString write(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) ? QString() : file.errorString();
}

} // namespace

void TestDemoReport::columnsAreAsWideAsTheirLongestCell()
{
    QCOMPARE(layOutTable({"File", "TC"}, {{"long name.mov", "1"}, {"b", "10:00"}}),
             QString("File           TC\n"
                     "-------------  -----\n"
                     "long name.mov  1\n"
                     "b              10:00\n"));
}

void TestDemoReport::emptyFolderIsPrepared()
{
    const QTemporaryDir parent;
    const DemoFolder folder(parent.filePath("new/demo"));
    QCOMPARE(folder.prepare(), QString());
    for (const QString &path : {folder.media(), folder.exported(), folder.screenshots()})
        QVERIFY(QDir(path).exists());
}

void TestDemoReport::earlierRunIsReplaced()
{
    const QTemporaryDir parent;
    const DemoFolder folder(parent.path());
    QCOMPARE(folder.prepare(), QString());
    QCOMPARE(write(folder.exported() + "/old.MOV"), QString());
    QCOMPARE(folder.prepare(), QString());
    QVERIFY(QDir(folder.exported()).isEmpty());
}

void TestDemoReport::foreignFolderIsRefusedAndKept()
{
    const QTemporaryDir parent;
    QVERIFY(QDir(parent.path()).mkdir("media"));
    QCOMPARE(write(parent.filePath("media/original.mov")), QString());
    QVERIFY(!DemoFolder(parent.path()).prepare().isEmpty());
    QVERIFY(QFile::exists(parent.filePath("media/original.mov")));
}

QTEST_APPLESS_MAIN(TestDemoReport)
#include "tst_demoreport.moc"
