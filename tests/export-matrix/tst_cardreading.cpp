// SPDX-License-Identifier: MIT
#include "tests/export-matrix/testcard.h"
#include "tests/export-matrix/writtenpicture.h"

#include <QTest>

#include <algorithm>
#include <cmath>

using namespace exportmatrix;

/// What is read of pictures of the test card, made here without any tool.
class TestCardReading : public QObject
{
    Q_OBJECT

private slots:
    void faultsAreFound_data();
    void faultsAreFound();
    void colourIsShownByItsMatrix_data();
    void colourIsShownByItsMatrix();
    void framesOfUnknownFormatAreRefused();
};

Q_DECLARE_METATYPE(exportmatrix::CardPlace)
Q_DECLARE_METATYPE(exportmatrix::Fields)

namespace
{

/// How a picture is spoilt, or not.
struct Making {
    int width = 480;  ///< [pixels] of the frame
    int height = 270; ///< [pixels] of the frame
    CardPlace place{0, 0, 480, 270};
    bool swapsColours = false; ///< as another matrix would
    int fieldLead = 0;         ///< [pixels] by which odd rows are ahead
    int rowLead = 0;           ///< [pixels] by which every fourth row is ahead, in either field
};

PictureShape wideShape()
{
    PictureShape shape;
    shape.width = 480;
    shape.height = 270;
    shape.colours = {"tv", "bt709", "bt709", "bt709"};
    shape.pixelFormat = "yuv444p";
    return shape;
}

unsigned char part(const QByteArray &card, const PictureShape &shape, double x, double y, int colour)
{
    const int column = std::clamp(int(x * shape.width), 0, shape.width - 1);
    const int row = std::clamp(int(y * shape.height), 0, shape.height - 1);
    const auto header = card.size() - shape.width * shape.height * 3;
    return static_cast<unsigned char>(card.at(header + (row * shape.width + column) * 3 + colour));
}

bool isBlock(double x, double y, double lead)
{
    const double left = testcard::blockStart + lead;
    return x >= left && x < left + testcard::blockWidth && y >= testcard::strip.top &&
           y < testcard::strip.top + testcard::strip.height;
}

/// The planes of a picture in "yuv444p", with the matrix of HD.
QByteArray planesOf(const PictureShape &shape, const Making &making)
{
    const QByteArray card = testcard::image(shape);
    const int size = making.width * making.height;
    QByteArray planes(3 * size, '\0');
    for (int row = 0; row < making.height; ++row) {
        for (int column = 0; column < making.width; ++column) {
            const double x = (column - making.place.left + 0.5) / making.place.width;
            const double y = (row - making.place.top + 0.5) / making.place.height;
            double red = 0.0;
            double green = 0.0;
            double blue = 0.0;
            if (x >= 0 && x < 1 && y >= 0 && y < 1) {
                red = part(card, shape, x, y, 0) / 255.0;
                green = part(card, shape, x, y, 1) / 255.0;
                blue = part(card, shape, x, y, 2) / 255.0;
                const double lead =
                    (row % 2) * making.fieldLead + (row % 4 == 3 || row % 4 == 2 ? 1 : 0) * making.rowLead;
                if (isBlock(x, y, lead / making.place.width))
                    red = green = blue = 1.0;
            }
            const double redShare = making.swapsColours ? 0.299 : 0.2126;
            const double blueShare = making.swapsColours ? 0.114 : 0.0722;
            const double luma = redShare * red + (1 - redShare - blueShare) * green + blueShare * blue;
            const int at = row * making.width + column;
            planes[at] = char(std::lround(16 + 219 * luma));
            planes[size + at] = char(std::lround(128 + 224 * (blue - luma) / (2 * (1 - blueShare))));
            planes[2 * size + at] = char(std::lround(128 + 224 * (red - luma) / (2 * (1 - redShare))));
        }
    }
    return planes;
}

WrittenPicture pictureFrom(const PictureShape &shape, const Making &making)
{
    WrittenPicture picture;
    picture.width = making.width;
    picture.height = making.height;
    picture.colours = shape.colours;
    picture.fields = Fields::Progressive;
    picture.card = readCard(Frame(planesOf(shape, making), "yuv444p", making.width, making.height, 0), false);
    return picture;
}

} // namespace

void TestCardReading::faultsAreFound_data()
{
    QTest::addColumn<CardPlace>("place");
    QTest::addColumn<int>("fieldLead");
    QTest::addColumn<int>("rowLead");
    QTest::addColumn<bool>("swapsColours");
    QTest::addColumn<Fields>("fields");
    QTest::addColumn<QString>("fault");
    const CardPlace whole{0, 0, 480, 270};
    const Fields frames = Fields::Progressive;
    QTest::newRow("as it was filmed") << whole << 0 << 0 << false << frames << QString();
    QTest::newRow("squeezed between bars")
        << CardPlace{60, 0, 360, 270} << 0 << 0 << false << frames << "a circle is 0.7";
    QTest::newRow("smaller with bars around") << CardPlace{48, 27, 384, 216} << 0 << 0 << false << frames
                                              << "the picture is 384x216 at 48,27, not 480x270 at 0,0";
    QTest::newRow("top field first") << whole << 10 << 0 << false << Fields::TopFirst << QString();
    QTest::newRow("bottom field first") << whole << -10 << 0 << false << Fields::BottomFirst << QString();
    QTest::newRow("the other field first")
        << whole << -10 << 0 << false << Fields::TopFirst << "fields are bottom first, not top first";
    QTest::newRow("fields taken for a frame")
        << whole << 10 << 0 << false << frames << "fields are top first, not progressive";
    QTest::newRow("fields mixed by scaling")
        << whole << 0 << 10 << false << frames << "fields are unknown or mixed, not progressive";
    QTest::newRow("colours of another matrix") << whole << 0 << 0 << true << frames << "is shown as";
}

void TestCardReading::faultsAreFound()
{
    QFETCH(CardPlace, place);
    QFETCH(int, fieldLead);
    QFETCH(int, rowLead);
    QFETCH(bool, swapsColours);
    QFETCH(Fields, fields);
    QFETCH(QString, fault);
    PictureShape shape = wideShape();
    shape.fields = fields;
    Making making;
    making.place = place;
    making.fieldLead = fieldLead;
    making.rowLead = rowLead;
    making.swapsColours = swapsColours;
    WrittenPicture picture = pictureFrom(shape, making);
    picture.fields = fields;

    QStringList faults;
    const QVector<Finding> findings = comparePicture(shape, picture, {false, fields});
    for (const Finding &finding : findings) {
        if (finding.verdict == Verdict::Lost)
            faults += finding.detail;
    }
    QVERIFY2(fault.isEmpty() ? faults.isEmpty() : faults.join('\n').contains(fault),
             qPrintable(faults.join('\n')));
}

void TestCardReading::colourIsShownByItsMatrix_data()
{
    QTest::addColumn<double>("luma");
    QTest::addColumn<double>("blueDifference");
    QTest::addColumn<double>("redDifference");
    QTest::addColumn<QString>("matrix");
    QTest::addColumn<QString>("range");
    QTest::addColumn<QVector<double>>("shown"); // red, green, blue
    const QVector<double> red{1, 0, 0};
    QTest::newRow("white") << 235.0 << 128.0 << 128.0 << "bt709"
                           << "tv" << QVector<double>{1, 1, 1};
    QTest::newRow("white of the full range") << 255.0 << 128.0 << 128.0 << "bt709"
                                             << "pc" << QVector<double>{1, 1, 1};
    QTest::newRow("red of HD") << 62.6 << 102.3 << 240.0 << "bt709"
                               << "tv" << red;
    QTest::newRow("red of SD") << 81.5 << 90.2 << 240.0 << "smpte170m"
                               << "tv" << red;
    QTest::newRow("red of wide gamut") << 73.5 << 96.7 << 240.0 << "bt2020nc"
                                       << "tv" << red;
}

void TestCardReading::colourIsShownByItsMatrix()
{
    QFETCH(double, luma);
    QFETCH(double, blueDifference);
    QFETCH(double, redDifference);
    QFETCH(QString, matrix);
    QFETCH(QString, range);
    QFETCH(QVector<double>, shown);
    const ShownColour found = shownColour({luma, blueDifference, redDifference}, matrix, range);
    QVERIFY(distance(found, {shown.at(0), shown.at(1), shown.at(2)}) < 0.005);
}

void TestCardReading::framesOfUnknownFormatAreRefused()
{
    QVERIFY_EXCEPTION_THROWN(Frame(QByteArray(100, '\0'), "rgb24", 4, 4, 0), std::runtime_error);
    QVERIFY_EXCEPTION_THROWN(Frame(QByteArray(10, '\0'), "yuv420p", 4, 4, 0), std::runtime_error);
    QCOMPARE(Frame::sizeOf("yuv422p10le", 4, 2), 32);
}

QTEST_APPLESS_MAIN(TestCardReading)
#include "tst_cardreading.moc"
