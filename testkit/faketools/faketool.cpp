// SPDX-License-Identifier: MIT

// Plays ffprobe.exe, ffmpeg.exe and LTCReader.exe in tests, by the name it is started under. README.md says
// how a test gives it its part.

#include "testkit/faketools/faketool_job.h"
#include "testkit/faketools/moodyplan.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

namespace
{

constexpr int gaveUpWaiting = 99;       // exit code: what the plan waits for never came
constexpr qint64 longestWait = 100'000; // [ms] shorter than the tests' own limit
constexpr unsigned long pollEvery = 20; // [ms]
constexpr qint64 defaultExport = 1'000; // [bytes]
constexpr int noSuchStream = 99;

void print(FILE *stream, const QByteArray &text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stream);
    std::fflush(stream);
}

/// Prints \a mebibytes of lines as a tool does that complains of every frame.
void printMany(FILE *stream, int mebibytes)
{
    constexpr int mebibyte = 1024 * 1024; // [bytes]
    const QByteArray line("[h264 @ 0x55d0c0ffee00] error while decoding MB 12 34, bytestream -5\n");
    const QByteArray lines = line.repeated(mebibyte / line.size() + 1).left(mebibyte - 1) + '\n';
    for (int i = 0; i < mebibytes; ++i)
        print(stream, lines);
}

bool isThere(const QString &path)
{
    return QFileInfo::exists(path);
}

int crash()
{
#ifdef Q_OS_UNIX
    const rlimit noCoreFile{0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
#endif
    std::signal(SIGABRT, SIG_DFL);
    std::abort();
}

void waitFor(const QString &path)
{
    QElapsedTimer timer;
    timer.start();
    while (!isThere(path)) {
        if (timer.hasExpired(longestWait))
            std::exit(gaveUpWaiting);
        QThread::msleep(pollEvery);
    }
}

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// Adds \a text to the output of \a job, of which this process remains the only writer until it ends.
void append([[maybe_unused]] const FakeJob &job, [[maybe_unused]] const QByteArray &text)
{
#ifdef Q_OS_UNIX
    static const int file = open(QFile::encodeName(job.outputs.constFirst().path).constData(),
                                 O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    static const bool isAlone = flock(file, LOCK_EX | LOCK_NB) == 0 && ftruncate(file, 0) == 0;
    const QByteArray content = isAlone ? text : QByteArray("two exports at once\n");
    if (file < 0 || ::write(file, content.constData(), static_cast<std::size_t>(content.size())) < 0)
        std::exit(EXIT_FAILURE);
#endif
}

/// Makes all outputs of \a job that hold \a stream (-1: every one) as a working tool would.
bool writeOutputs(const FakeJob &job, int stream = -1)
{
    bool written = true;
    for (const FakeOutput &output : job.outputs) {
        if (stream < 0 || output.stream == stream)
            written &= write(output.path, output.stream < 0 ? QByteArray(defaultExport, 'x')
                                                            : extractContent(job, output.stream));
    }
    return written;
}

void resizeOutputs(const FakeJob &job, qint64 size)
{
    for (const FakeOutput &output : job.outputs) {
        QFile file(output.path);
        if (!file.open(QIODevice::ReadWrite) || !file.resize(size))
            std::exit(EXIT_FAILURE);
    }
}

QJsonObject defaultProbe(const FakeJob &job)
{
    QJsonObject audio{{"codec_type", "audio"},      {"codec_name", "pcm_s24le"}, {"channels", 2},
                      {"channel_layout", "stereo"}, {"sample_rate", "48000"},    {"index", 0}};
    QJsonArray streams{audio};
    if (QFileInfo(job.input).suffix().compare("wav", Qt::CaseInsensitive) != 0) {
        audio["index"] = 1;
        streams = {
            QJsonObject{
                {"codec_type", "video"}, {"codec_name", "h264"}, {"r_frame_rate", "25/1"}, {"index", 0}},
            audio};
    }
    return {{"streams", streams},
            {"format", QJsonObject{{"filename", job.input}, {"duration", "10.000000"}}}};
}

QJsonObject defaultReading()
{
    return {{"Timecode", "10:00:00:00"},
            {"DropFrame", false},
            {"NTSC", false},
            {"FrameRateFound", 25.0},
            {"FrameRateBaseFound", 25},
            {"ChannelFound", 0},
            {"SamplesSinceMidnight", 1'728'000'000}};
}

/// Does what the tool itself would do with the job; answers its exit code.
int work(const FakeJob &job)
{
    const bool readable = QFileInfo(job.input).isFile();
    if (job.name == "read") {
        if (!readable)
            return 201;
        print(stdout, QJsonDocument(defaultReading()).toJson());
        return EXIT_SUCCESS;
    }
    if (job.name == "probe") {
        print(stdout, readable ? QJsonDocument(defaultProbe(job)).toJson() : QByteArray("{\n\n}\n"));
        return readable ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    if (!readable || !writeOutputs(job))
        return EXIT_FAILURE;
    print(stderr, "size= 1kB\n");
    return EXIT_SUCCESS;
}

void act(const FakeJob &job, const QDir &folder, const QString &what, const QJsonValue &how)
{
    if (what == "stdout")
        print(stdout, how.toString().toUtf8());
    else if (what == "stderr")
        print(stderr, how.toString().toUtf8());
    else if (what == "stdoutGarbage")
        print(stdout, QByteArray(how.toInt(), '\xFF'));
    else if (what == "stderrGarbage")
        print(stderr, QByteArray(how.toInt(), '\xFE'));
    else if (what == "stdoutMiB")
        printMany(stdout, how.toInt());
    else if (what == "stderrMiB")
        printMany(stderr, how.toInt());
    else if (what == "pauseMs")
        QThread::msleep(static_cast<unsigned long>(how.toInt()));
    else if (what == "waitFor")
        waitFor(folder.filePath(how.toString()));
    else if (what == "touch")
        write(folder.filePath(how.toString()), {});
    else if (what == "resize")
        resizeOutputs(job, how.toVariant().toLongLong());
    else if (what == "extract")
        writeOutputs(job, how.toInt());
    else if (what == "extractTo")
        write(how.toString(), extractContent(job, noSuchStream));
    else if (what == "append")
        append(job, how.toString().toUtf8());
    else if (what == "work")
        work(job);
    else
        std::exit(gaveUpWaiting); // a slip in the plan must not pass for a success
}

int play(const FakeJob &job, const QJsonObject &part)
{
    const QDir folder(QFileInfo(job.media).absolutePath());
    if (part.contains("waitFor"))
        waitFor(folder.filePath(part["waitFor"].toString()));

    int exitCode = part["exitCode"].toInt();
    const bool fails = exitCode != 0 || part["crash"].toBool() || part["hang"].toBool();
    if (part.contains("actions")) {
        const QJsonArray actions = part["actions"].toArray();
        for (const auto &action : actions) {
            const QJsonObject step = action.toObject();
            act(job, folder, step.keys().value(0), step.begin().value());
        }
    } else if (part.contains("json")) {
        print(stdout, QJsonDocument(part["json"].toObject()).toJson());
    } else if (!fails) {
        exitCode = work(job);
    }

    if (part["hang"].toBool()) {
#ifdef Q_OS_LINUX
        prctl(PR_SET_NAME, "never");
#endif
        waitFor(folder.filePath("never"));
    }
    return part["crash"].toBool() ? crash() : exitCode;
}

void log(const char *event, const FakeJob &job)
{
    const QString path = qEnvironmentVariable("OSTREL_FAKE_LOG");
    if (!path.isEmpty())
        appendLine(path, {{"event", event}, {"job", job.name}, {"media", job.media}, {"stream", job.stream}});
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    const QString tool = QFileInfo(arguments.takeFirst()).fileName();

    const FakeJob job = FakeJob::fromArguments(tool, arguments);
    if (const QByteArray seed = qgetenv("OSTREL_FAKE_MOODS"); !seed.isEmpty()) {
        // Ends at once: a search for leaks stops the process for a moment, and lasts for ever where the
        // signal to go on crosses that, which the monkey sends to tools it has stopped.
        const int exitCode = play(job, moodyPlan(job, seed.toULongLong()));
        std::fflush(nullptr);
        std::_Exit(exitCode);
    }
    log("start", job);
    const int exitCode = play(job, job.plan(job.noteCall()));
    log("end", job);
    return exitCode;
}
