// SPDX-License-Identifier: MIT
#include "tests/control/controllerbench.h"

#include "app/records/recordtypes.h"
#include "ffmpeg/ffmpeghandler.h"
#include "ltc/ltchandler.h"
#include "testkit/faketools/faketools.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

namespace
{

void makeEmptyFile(const QString &path)
{
    if (!QDir().mkpath(QFileInfo(path).path()) || !QFile(path).open(QIODevice::WriteOnly))
        qFatal("cannot make %s", qPrintable(path));
}

} // namespace

ControllerBench::ControllerBench() : realTemporaryPath(qgetenv("TMPDIR"))
{
    registerRecordTypes();
    qputenv("TMPDIR", QFile::encodeName(system.path()));
    qputenv("OSTREL_FAKE_LOG", QFile::encodeName(system.filePath("tools.log")));
    restart();
}

ControllerBench::~ControllerBench()
{
    if (realTemporaryPath.isNull())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", realTemporaryPath);
}

void ControllerBench::restart()
{
    controller.reset(); // gives its temporary folder back first
    controller = std::make_unique<MainControl>();
    writeDown();
}

void ControllerBench::writeDown()
{
    MainControl *from = controller.get();
    connect(from, &MainControl::ffprobeResult, this, [this](const FileData &file, int row, int exitCode) {
        probedFiles += file;
        events += QString("probed %1: %2").arg(row).arg(exitCode);
    });
    connect(from, &MainControl::audioTCReadResult, this,
            [this](const QJsonObject &json, int row, int stream, int exitCode) {
                events += QString("read %1 stream %2: %3 %4")
                              .arg(row)
                              .arg(stream)
                              .arg(exitCode)
                              .arg(json.value("Timecode").toString("nothing"));
            });
    connect(from, &MainControl::gotFileFromDir, this,
            [this](const QFileInfo &file) { events += "found " + file.fileName(); });
    connect(from, &MainControl::exportProgress, this, [this](int current, int total, const QString &text) {
        events += QString("export %1/%2 ").arg(current).arg(total) + text;
    });
    connect(from, &MainControl::importProgress, this, [this](int current, int total, const QString &text) {
        events += QString("import %1/%2 ").arg(current).arg(total) + text;
    });
    connect(from, &MainControl::importReady, this, [this] { events += "importReady"; });
    connect(from, &MainControl::readingFinished, this, [this] { events += "readingFinished"; });
    connect(from, &MainControl::exportReady, this, [this](int result, const QStringList &names) {
        events += QString("exportReady %1 [%2]").arg(result).arg(names.join(' '));
    });
    connect(from, &MainControl::exportStarted, this, [this] { events += "exportStarted"; });
    connect(from, &MainControl::cancelExportReq, this, [this] { events += "cancelExportReq"; });
    connect(from, &MainControl::importIdle, this, [this] { events += "importIdle"; });
}

void ControllerBench::actAsFileTable()
{
    MainControl *from = controller.get();
    connect(
        from, &MainControl::gotFileFromDir, this,
        [this](const QFileInfo &file) {
            FileData record;
            record.fileName = file.fileName();
            record.baseName = file.baseName();
            record.suffix = file.suffix();
            record.absoluteFilePath = file.absoluteFilePath();
            tableRows += record.absoluteFilePath;
            controller->onFFProbeFile(record, static_cast<int>(tableRows.size()) - 1);
        },
        Qt::QueuedConnection);
    connect(
        from, &MainControl::ffprobeResult, this,
        [this](FileData file, int row, int exitCode) {
            if (exitCode != 0)
                return;
            const QFileInfo info(tableRows.at(row));
            file.fileName = info.fileName();
            file.baseName = info.baseName();
            file.absoluteFilePath = info.filePath();
            controller->onInitAudioTCInfo(file, row);
        },
        Qt::QueuedConnection);
}

FileData ControllerBench::makeFile(const QString &name, const QJsonObject &plan, int row) const
{
    const QFileInfo info(media.filePath(name));
    makeEmptyFile(info.filePath());
    if (!plan.isEmpty())
        faketools::setPlan(info.filePath(), plan);
    FileData file;
    file.fileName = info.fileName();
    file.baseName = info.baseName();
    file.suffix = info.suffix();
    file.absoluteFilePath = info.filePath();
    file.duration = 10.0;
    file.audioStreamMap = QByteArray(1, 1);
    file.rowNumber = row;
    return file;
}

QVector<FileData> ControllerBench::makeFiles(int count, const QJsonObject &plan) const
{
    if (!plan.isEmpty())
        faketools::setDefaultPlan(media.path(), plan);
    QVector<FileData> files;
    for (int row = 0; row < count; ++row)
        files += makeFile(QString("clip%1.mov").arg(row), {}, row);
    return files;
}

void ControllerBench::openGate(const QString &name) const
{
    makeEmptyFile(media.filePath(name));
}

int ControllerBench::handlers() const
{
    return static_cast<int>(controller->findChildren<FFMpegHandler *>().size() +
                            controller->findChildren<LTCHandler *>().size());
}

QStringList ControllerBench::startedTools() const
{
    QStringList tools;
    QFile log(system.filePath("tools.log"));
    if (!log.open(QIODevice::ReadOnly))
        return tools; // none yet
    while (!log.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(log.readLine()).object();
        if (line["event"] == "start")
            tools += line["job"].toString() + ' ' + QFileInfo(line["media"].toString()).fileName();
    }
    return tools;
}

int ControllerBench::mostToolsAtOnce() const
{
    int running = 0;
    int most = 0;
    QFile log(system.filePath("tools.log"));
    if (!log.open(QIODevice::ReadOnly))
        return 0;
    while (!log.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(log.readLine()).object();
        running += line["event"] == "start" ? 1 : -1;
        most = qMax(most, running);
    }
    return most;
}

QStringList ControllerBench::eventsOf(const QString &beginning) const
{
    QStringList found;
    for (const QString &event : events) {
        if (event.startsWith(beginning))
            found += event;
    }
    return found;
}

AudioTCOptions automaticReading()
{
    AudioTCOptions options;
    options.channel = -1;
    options.frameRate = -1.0;
    options.allFiles = true;
    return options;
}
