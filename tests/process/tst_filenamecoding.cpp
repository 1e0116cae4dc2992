// SPDX-License-Identifier: MIT
#include "process/filenamecoding.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

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
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    QVERIFY(QFile::encodeName(name) != bytes);

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
