// SPDX-License-Identifier: MIT
#include "tooladapter/rules/picturecodec.h"
#include "tooladapter/rules/picturefilter.h"

#include <QTest>

using namespace tooladapter;

namespace
{

const char hdCodec[] = "-vcodec dnxhd -b:v 120M -pix_fmt yuv422p -s 1920x1080";
const char smallCodec[] = "-vcodec dnxhd -b:v 36M -pix_fmt yuv422p -s 1920x1080";
const char mpeg2Codec[] = "-vcodec mpeg2video -b:v 50M -pix_fmt yuv422p -s 1920x1080";
const char dnxhrCodec[] = "-vcodec dnxhd -profile:v dnxhr_hqx -pix_fmt yuv422p10";

Options optionsOf(const QString &text)
{
    Options options;
    const QStringList words = text.split(' ', Qt::SkipEmptyParts);
    for (int i = 0; i + 1 < words.size(); i += 2)
        options.push_back({words.at(i).toStdString(), words.at(i + 1).toStdString()});
    return options;
}

QString textOf(const Options &options)
{
    QStringList words;
    for (const Option &option : options)
        words += QString::fromStdString(option.name + ' ' + option.value);
    return words.join(' ');
}

/// A picture described in the words of the probe tool, "key=value"; progressive HD unless they say otherwise.
Stream pictureOf(const QString &words)
{
    const QString usual = "index=0 codec_type=video width=1920 height=1080 pix_fmt=yuv420p color_range=tv "
                          "color_space=bt709 color_primaries=bt709 field_order=progressive "
                          "r_frame_rate=25/1 avg_frame_rate=25/1 ";
    return parseProbe(QString(usual + words).replace(' ', '\n').toStdString()).streams.front();
}

} // namespace

Q_DECLARE_METATYPE(tooladapter::PictureType)

class TestPictureRules : public QObject
{
    Q_OBJECT

private slots:
    void theFamilyThatWasChosenIsCoded_data();
    void theFamilyThatWasChosenIsCoded();
    void aPictureStaysWhatItWas_data();
    void aPictureStaysWhatItWas();
};

void TestPictureRules::theFamilyThatWasChosenIsCoded_data()
{
    QTest::addColumn<PictureType>("type");
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("coded");
    const auto row = [](const char *name, PictureType type, const char *rate, const QString &coded) {
        QTest::newRow(name) << type << QString("r_frame_rate=%1 avg_frame_rate=%1").arg(rate) << QString()
                            << coded;
    };
    const auto dnxhd = [](const char *rate, const char *format, const char *frames) {
        return QString("-vcodec dnxhd -b:v %1 -pix_fmt %2 -s 1920x1080 -r %3").arg(rate, format, frames);
    };
    const QString dnxhr = "-vcodec dnxhd -profile:v %1 -pix_fmt %2";
    row("small at 50", PictureType::SmallDnxhd, "50/1", dnxhr.arg("dnxhr_lb", "yuv422p"));
    row("medium at 59.94", PictureType::MediumDnxhd, "60000/1001", dnxhr.arg("dnxhr_sq", "yuv422p"));
    row("large at 60", PictureType::LargeDnxhd, "60/1", dnxhr.arg("dnxhr_hqx", "yuv422p10"));
    row("at a rate that is not known", PictureType::SmallDnxhd, "0/0", dnxhr.arg("dnxhr_lb", "yuv422p"));
    row("at 26", PictureType::MediumDnxhd, "26/1", dnxhr.arg("dnxhr_sq", "yuv422p"));
    row("small at 23.976", PictureType::SmallDnxhd, "24000/1001", dnxhd("36M", "yuv422p", "24000/1001"));
    row("small at 29.97 in hundredths", PictureType::SmallDnxhd, "2997/100",
        dnxhd("45M", "yuv422p", "30000/1001"));
    row("medium at 24", PictureType::MediumDnxhd, "24/1", dnxhd("115M", "yuv422p", "24/1"));
    row("medium at 25", PictureType::MediumDnxhd, "25/1", dnxhd("120M", "yuv422p", "25/1"));
    row("medium at 30", PictureType::MediumDnxhd, "30/1", dnxhd("145M", "yuv422p", "30/1"));
    row("large at 24", PictureType::LargeDnxhd, "24/1", dnxhd("175M", "yuv422p10", "24/1"));
    row("large at 25", PictureType::LargeDnxhd, "25/1", dnxhd("185M", "yuv422p10", "25/1"));
    row("large at 29.97", PictureType::LargeDnxhd, "30000/1001", dnxhd("220M", "yuv422p", "30000/1001"));
    row("another caller leaves it to the tool", PictureType::Unknown, "50/1", "");
    row("a chosen copy is named by the list", PictureType::PassThrough, "50/1", "");
    QTest::newRow("what the list names stays")
        << PictureType::SmallDnxhd << "" << hdCodec << QString(hdCodec);
    QTest::newRow("50 fields are 25 frames") << PictureType::MediumDnxhd << "r_frame_rate=50/1 field_order=tt"
                                             << "" << dnxhd("120M", "yuv422p", "25/1");
    QTest::newRow("50 fields for MPEG-2") << PictureType::Mpeg2 << "r_frame_rate=50/1 field_order=tt"
                                          << mpeg2Codec << mpeg2Codec + QString(" -r 25/1");
    QTest::newRow("50 fields that are copied")
        << PictureType::PassThrough << "r_frame_rate=50/1 field_order=tt"
        << "-vcodec copy"
        << "-vcodec copy";
    QTest::newRow("50 frames that come to 25 a second") << PictureType::SmallDnxhd << "r_frame_rate=50/1"
                                                        << "" << dnxhr.arg("dnxhr_lb", "yuv422p");
}

void TestPictureRules::theFamilyThatWasChosenIsCoded()
{
    QFETCH(PictureType, type);
    QFETCH(QString, picture);
    QFETCH(QString, given);
    QFETCH(QString, coded);
    ExportPlan plan;
    plan.pictureOptions = optionsOf(given);
    choosePictureCodec(plan, pictureOf(picture), type);
    QCOMPARE(textOf(plan.pictureOptions), coded);
}

void TestPictureRules::aPictureStaysWhatItWas_data()
{
    QTest::addColumn<QString>("codec");
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("filters");
    const auto row = [](const char *name, const char *codec, const char *picture, const char *filters) {
        QTest::newRow(name) << QString(codec) << QString(picture) << QString(filters);
    };
    // Geometry
    row("HD needs nothing", hdCodec, "", "");
    row("16:9 of another size is scaled as the list says", hdCodec, "width=3840 height=2160", "");
    row("16:9 in flat pixels", hdCodec, "width=1440 sample_aspect_ratio=4:3", "");
    row("16:9 but for a rounded column", hdCodec, "width=854 height=480",
        "scale=1920:1080,format=yuv422p,setsar=1");
    row("portrait", hdCodec, "width=1080 height=1920",
        "scale=608:1080,format=yuv422p,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("landscape that is turned", hdCodec, "width=1920 height=1080 rotation=-90",
        "scale=608:1080,format=yuv422p,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("as older tools report the rotation", hdCodec, "TAG:rotate=270",
        "scale=608:1080,format=yuv422p,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("portrait that is turned to 16:9", hdCodec, "width=1080 height=1920 rotation=90", "");
    row("upside down", hdCodec, "rotation=180", "");
    row("4:3", hdCodec, "width=1440",
        "scale=1440:1080,format=yuv422p,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("wider than 16:9", hdCodec, "width=4096 height=2160",
        "scale=1920:1012,format=yuv422p,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("anamorphic", hdCodec, "width=1920 height=1080 sample_aspect_ratio=2:1",
        "scale=1920:540,format=yuv422p,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("a size that is not known", hdCodec, "width=0 height=0", "");
    row("a stripe", hdCodec, "width=32768 height=1",
        "scale=1920:2,format=yuv422p,pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("its own size", dnxhrCodec, "width=1280 height=720", "");
    row("its own size, portrait", dnxhrCodec, "width=1080 height=1920", "");
    row("smaller than the codec takes", dnxhrCodec, "width=160 height=120",
        "pad=256:120:(ow-iw)/2:(oh-ih)/2");
    row("an odd size", dnxhrCodec, "width=1279 height=719", "pad=1280:720:(ow-iw)/2:(oh-ih)/2");
    // Fields
    row("1080 lines stay interlaced", hdCodec, "field_order=tt",
        "scale=1920:1080:interl=1,format=yuv422p,setsar=1,setfield=tff -flags:v:0 +ildct+ilme");
    row("the lower field first", mpeg2Codec, "field_order=bb",
        "scale=1920:1080:interl=1,format=yuv422p,setsar=1,setfield=bff -flags:v:0 +ildct+ilme");
    row("1440 columns stay interlaced", mpeg2Codec, "width=1440 sample_aspect_ratio=4:3 field_order=tb",
        "scale=1920:1080:interl=1,format=yuv422p,setsar=1,setfield=tff -flags:v:0 +ildct+ilme");
    row("a family without interlaced pictures", smallCodec, "field_order=tt",
        "bwdif=mode=send_frame:parity=tff:deint=all");
    row("interlaced at its own size", dnxhrCodec, "field_order=bt",
        "bwdif=mode=send_frame:parity=bff:deint=all");
    row("576 lines become frames before they are scaled", mpeg2Codec,
        "width=720 height=576 sample_aspect_ratio=16:15 field_order=tt",
        "bwdif=mode=send_frame:parity=tff:deint=all,scale=1440:1080,format=yuv422p,"
        "pad=1920:1080:(ow-iw)/2:(oh-ih)/2,setsar=1");
    row("each picture states what the file does not", hdCodec,
        "field_order=", "bwdif=mode=send_frame:parity=auto:deint=interlaced");
    // Colours
    row("SD that states it", hdCodec, "width=1024 height=576 color_space=smpte170m",
        "scale=1920:1080:in_color_matrix=bt601:out_color_matrix=bt709,format=yuv422p,"
        "setparams=colorspace=bt709");
    row("SD that does not state it", hdCodec,
        "width=720 height=576 sample_aspect_ratio=64:45 color_space= color_primaries=",
        "scale=1920:1080:in_color_matrix=bt601:out_color_matrix=bt709,format=yuv422p,"
        "setparams=colorspace=bt709:color_primaries=bt470bg:color_trc=bt709");
    row("SD of 480 lines that does not state it", dnxhrCodec,
        "width=854 height=480 color_space= color_primaries=",
        "scale=in_color_matrix=bt601:out_color_matrix=bt709,format=yuv422p10,"
        "setparams=colorspace=bt709:color_primaries=smpte170m:color_trc=bt709");
    row("HD that does not state it", hdCodec, "color_space= color_primaries=", "");
    row("portrait HD that does not state it", dnxhrCodec, "width=720 height=1280 color_space=", "");
    row("HD that is coded as SD", hdCodec, "color_space=bt470bg",
        "scale=1920:1080:in_color_matrix=bt601:out_color_matrix=bt709,format=yuv422p,"
        "setparams=colorspace=bt709");
    row("wide colours keep their coding", hdCodec, "color_space=bt2020nc color_primaries=bt2020", "");
    row("full range", hdCodec, "color_range=pc",
        "scale=1920:1080:in_range=pc:out_range=tv,format=yuv422p,setparams=range=tv");
    row("full range by its format", dnxhrCodec, "pix_fmt=yuvj422p color_range=",
        "scale=in_range=pc:out_range=tv,format=yuv422p10,setparams=range=tv");
    row("red, green and blue", hdCodec, "pix_fmt=gbrp color_space=gbr color_range=pc",
        "scale=1920:1080:in_color_matrix=auto:out_color_matrix=bt709:in_range=pc:out_range=tv,format=yuv422p,"
        "setparams=colorspace=bt709:range=tv");
}

void TestPictureRules::aPictureStaysWhatItWas()
{
    QFETCH(QString, codec);
    QFETCH(QString, picture);
    QFETCH(QString, filters);
    const QString expected = filters.isEmpty() ? QString() : "-filter:v:0 " + filters;
    QCOMPARE(textOf(pictureTreatment(optionsOf(codec), pictureOf(picture))), expected);
}

QTEST_APPLESS_MAIN(TestPictureRules)
#include "tst_picturerules.moc"
