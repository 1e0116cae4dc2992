// SPDX-License-Identifier: MIT
#include "process/missingtools.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestMissingTools : public QObject
{
    Q_OBJECT

private slots:
    void missingToolsAreNamed_data();
    void missingToolsAreNamed();
};

void TestMissingTools::missingToolsAreNamed_data()
{
    QTest::addColumn<QStringList>("inFolder");
    QTest::addColumn<QStringList>("inPath");
    QTest::addColumn<QStringList>("missing");
    const QStringList all{"ffprobe.exe", "ffmpeg.exe", "LTCReader.exe"};
    const QStringList system{"ffprobe", "ffmpeg"};
    QTest::newRow("all in its folder, tools of the system in the path") << all << system << QStringList{};
    QTest::newRow("all in the path") << QStringList{} << all << QStringList{};
    QTest::newRow("nothing") << QStringList{} << QStringList{} << all;
    QTest::newRow("no reader") << QStringList{"ffprobe.exe", "ffmpeg.exe"} << system
                               << QStringList{"LTCReader.exe"};
#ifdef Q_OS_UNIX
    QTest::newRow("adapters without the tools of the system") << all << QStringList{} << system;
#endif
}

void TestMissingTools::missingToolsAreNamed()
{
    QFETCH(QStringList, inFolder);
    QFETCH(QStringList, inPath);
    QTemporaryDir folder;
    const auto fill = [&folder](const QString &name, const QStringList &programs) {
        QString path = folder.filePath(name);
        if (!QDir().mkpath(path))
            qFatal("cannot make folders");
        for (const QString &program : programs) {
            QFile file(path + '/' + program);
            if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::ExeOwner))
                qFatal("cannot write programs");
        }
        return path;
    };
    const QString application = fill("application", inFolder);
    const QString path = fill("path", inPath);
    QTEST(missingTools(QStringList{path}, application), "missing");
}

QTEST_APPLESS_MAIN(TestMissingTools)
#include "tst_missingtools.moc"
