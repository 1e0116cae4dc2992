// SPDX-License-Identifier: MIT
#include "control/probedrecord.h"
#include "ffmpeg/exportarguments.h"
#include "filelist/celltexts.h"
#include "ltc/readerarguments.h"
#include "ltcreader/commandline.h"
#include "ltcreader/report.h"
#include "testkit/fixtures/samplerecords.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/wavfile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <clocale>

/// Runs in a locale that writes 29,97: what tools and files are given keeps its point all the same.
class TestDecimalComma : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theReaderIsToldItsRate();
    void theReaderUnderstandsItsRate();
    void exportsNameTheSpeed();
    void theTableShowsRates();
    void theProbesDurationIsRead();
    void theReaderReportsNumbers();
    void theReadersJsonIsTheSameAsElsewhere();
};

void TestDecimalComma::initTestCase()
{
    QCOMPARE(localeconv()->decimal_point, ",");
    QCOMPARE(QLocale().decimalPoint(), QChar(','));
}

void TestDecimalComma::theReaderIsToldItsRate()
{
    AudioTCOptions options;
    options.channel = -1;
    options.frameRate = 29.97;
    QCOMPARE(readerarguments::chosen("/t/a_1_4.wav", options, false),
             (QStringList{"/t/a_1_4.wav", "-f29.97"}));
}

void TestDecimalComma::theReaderUnderstandsItsRate()
{
    const auto noFile = [](const std::string &) { return false; };
    const auto command = ltcreader::parseCommandLine({"a.wav", "-f29.97"}, noFile);
    QVERIFY(std::holds_alternative<ltcreader::Run>(command));
    const auto comma = ltcreader::parseCommandLine({"a.wav", "-f29,97"}, noFile);
    QVERIFY(std::holds_alternative<ltcreader::Refusal>(comma));
}

void TestDecimalComma::exportsNameTheSpeed()
{
    using namespace samplerecords;
    const FileData wave = withTimecode(mediaFile("/in/a.wav", {sound("pcm_s24le", 2)}), 0, 0,
                                       reading(30, 30, true, true, 1728000000));
    const QStringList arguments = exportarguments::timecode(wave, 0, outputname::Container::BroadcastWave);
    QVERIFY2(arguments.contains("comment=sSPEED=029.970-DF"), qPrintable(arguments.join(' ')));
}

void TestDecimalComma::theTableShowsRates()
{
    FileData file;
    file.audioTCResult = samplerecords::reading(30, 30, true, false);
    QCOMPARE(celltexts::audioTimecode(file.audioTCResult), QString("10:00:00:00@29.97 on ch. 1"));
    QVERIFY(celltexts::audioTimecodeToolTip(file).contains("29.970 fps"));
}

void TestDecimalComma::theProbesDurationIsRead()
{
    QCOMPARE(
        probedRecord({{"format", QJsonObject{{"duration", "12.5"}}}, {"streams", QJsonArray{}}}).duration,
        12.5);
}

void TestDecimalComma::theReaderReportsNumbers()
{
    ltcreader::Reading reading;
    reading.baseRate = 30;
    reading.measuredRate = 29.97;
    const QJsonObject json =
        QJsonDocument::fromJson(QByteArray::fromStdString(ltcreader::toJson(reading))).object();
    QCOMPARE(json.value("MeasuredFrameRate").toDouble(), 29.97);
    QVERIFY(ltcreader::toText(reading).find("29.970") != std::string::npos);
}

void TestDecimalComma::theReadersJsonIsTheSameAsElsewhere()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("ltc.wav");
    testsignals::WavFile wav;
    wav.channels = {testsignals::ltcAudio({})};
    testsignals::writeWav(path.toStdString(), wav);

    const auto answerIn = [&path](const QString &locale) {
        QProcess reader;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", locale);
        reader.setProcessEnvironment(environment);
        reader.start("LTCReader.exe", {path});
        return reader.waitForFinished() ? reader.readAllStandardOutput() : QByteArray();
    };
    const QByteArray here = answerIn("de_DE.UTF-8");
    QVERIFY(QJsonDocument::fromJson(here).object().contains("MeasuredFrameRate"));
    QCOMPARE(here, answerIn("C"));
}

QTEST_GUILESS_MAIN(TestDecimalComma)
#include "tst_decimalcomma.moc"
