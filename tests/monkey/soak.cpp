// SPDX-License-Identifier: MIT
#include "tests/monkey/soak.h"

#include "filelist/filelist.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/wavfile.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QTest>

namespace
{

constexpr int patiencePerFile = 1'000; // [ms] and file, on a busy machine
constexpr int patience = 120'000;      // [ms] besides

void makeSound(const QString &path)
{
    const std::vector<float> timecode = testsignals::ltcAudio({});
    testsignals::WavFile file;
    file.channels = {timecode, std::vector<float>(timecode.size())}; // alone it would not be exported
    testsignals::writeWav(path.toStdString(), file);
}

} // namespace

Soak::Soak(int files, const QString &name) : count(files), fileList(fixture.child<FileList>("fileList"))
{
    qputenv("OSTREL_FAKE_MOODS", "0"); // where the tools are fake
    const QString first = fixture.mediaFolder() + QString("/%1_0.wav").arg(name);
    makeSound(first);
    for (int i = 1; i < count; ++i) {
        // Another moment for each, or they would count as parts of one recording.
        QFile copy(fixture.mediaFolder() + QString("/%1_%2.wav").arg(name).arg(i));
        if (!QFile::copy(first, copy.fileName()) || !copy.open(QIODevice::ReadWrite) ||
            !copy.setFileTime(QDateTime::fromSecsSinceEpoch(1'700'000'000 + i),
                              QFileDevice::FileModificationTime))
            qFatal("cannot make %s", qPrintable(copy.fileName()));
    }
}

QString Soak::round()
{
    for (QString (Soak::*step)() : {&Soak::importAll, &Soak::readAll, &Soak::exportAll, &Soak::deleteAll}) {
        QString failure = (this->*step)();
        if (!failure.isEmpty())
            return failure;
    }
    return {};
}

QString Soak::waitFor(const QString &status)
{
    const bool came =
        QTest::qWaitFor([&] { return fixture.status() == status; }, patience + count * patiencePerFile);
    return came ? QString()
                : QString("waited for \"%1\" in vain, it says \"%2\"").arg(status, fixture.status());
}

QString Soak::importAll()
{
    fixture.dropFolder();
    const QString failure = waitFor("Status: import ready");
    return failure.isEmpty() && fileList->rowCount() != count
               ? QString("%1 rows instead of %2").arg(fileList->rowCount()).arg(count)
               : failure;
}

QString Soak::readAll()
{
    fixture.child<QAction>("readAudioTCAction")->trigger();
    const QWidget *dialog = topLevel("audioTCWindow");
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentText("all files");
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
    QString failure = waitFor("Status: read finished");
    const QStringList cells = fixture.column(3);
    for (const QString &cell : cells) {
        if (!cell.contains("@25.00 on ch. 1"))
            return "a file without its timecode: " + cell;
    }
    return failure;
}

QString Soak::exportAll()
{
    fixture.boxes.answerNext(QMessageBox::Ok);
    fixture.startExport();
    const bool ended =
        QTest::qWaitFor([this] { return fixture.boxes.allGiven(); }, patience + count * patiencePerFile);
    if (!ended || fixture.boxes.seen().constLast().text != "Ostrel did the job!")
        return "the export failed";
    const auto exported = fixture.exportedFiles().size();
    QDir(fixture.exportFolder()).removeRecursively();
    QDir().mkpath(fixture.exportFolder());
    return exported == count ? QString()
                             : QString("%1 files exported instead of %2").arg(exported).arg(count);
}

QString Soak::deleteAll()
{
    fileList->selectAll();
    QTest::keyClick(fileList, Qt::Key_Delete);
    return fileList->rowCount() == 0 ? QString() : "rows are left";
}
