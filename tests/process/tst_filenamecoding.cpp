// SPDX-License-Identifier: MIT
#include "process/filenamecoding.h"
#include "process/qtversion.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class TestFileNameCoding : public QObject
{
    Q_OBJECT

private slots:
    void namesAreUtf8WhateverTheLocale();
};

namespace
{

/// \a argument as a child process receives it.
QByteArray echoed(const QString &argument)
{
    QProcess process;
    process.start("printf", {"%s", argument});
    return process.waitForFinished() ? process.readAllStandardOutput() : QByteArray("printf did not run");
}

} // namespace

void TestFileNameCoding::namesAreUtf8WhateverTheLocale()
{
    const QByteArray bytes("\xc3\x9c"
                           "bung \xf0\x9f\x8e\xac.wav");
    const QString name = QString::fromUtf8(bytes);
    // Some builds of Qt take UTF-8 in every locale; the others take the character set of the locale.
    constexpr int latin1 = 4; // the registered number of the character set
    const bool isChosen = qtversion::useFileNameCoding(latin1);
    QCOMPARE(QFile::encodeName(name) != bytes, isChosen);

    useUtf8FileNames();

    QCOMPARE(QFile::encodeName(name), bytes);
    QCOMPARE(QFile::decodeName(bytes), name);
    QCOMPARE(echoed(name), bytes);
    const QTemporaryDir folder;
    QFile file(folder.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{name});
}

QTEST_GUILESS_MAIN(TestFileNameCoding)
#include "tst_filenamecoding.moc"
