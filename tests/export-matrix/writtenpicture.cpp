// SPDX-License-Identifier: MIT
#include "tests/export-matrix/writtenpicture.h"

#include "tests/export-matrix/testcard.h"

#include <QJsonArray>

#include <cmath>

namespace exportmatrix
{
namespace
{

constexpr int fittedWidth = 1920;  // [pixels]
constexpr int fittedHeight = 1080; // [pixels]

QString known(const QString &text)
{
    return text == "unknown" || text == "reserved" ? QString() : text;
}

double aspectOf(const QString &ratio)
{
    const double width = ratio.section(':', 0, 0).toDouble();
    const double height = ratio.section(':', 1).toDouble();
    return width > 0 && height > 0 ? width / height : 1.0;
}

/// "tt" and "tb", and so on, are ways to store the fields; the first letter says which comes first.
std::optional<Fields> fieldsOf(const QString &order)
{
    if (order.startsWith('t'))
        return Fields::TopFirst;
    if (order.startsWith('b'))
        return Fields::BottomFirst;
    return order == "progressive" ? std::optional(Fields::Progressive) : std::nullopt;
}

QString nameOf(std::optional<Fields> fields)
{
    if (!fields)
        return "unknown or mixed";
    return *fields == Fields::Progressive ? "progressive"
                                          : (*fields == Fields::TopFirst ? "top first" : "bottom first");
}

double upright(double aspect, int rotation)
{
    return rotation % 180 == 0 ? aspect : 1.0 / aspect;
}

/// Where the card must be in a frame that is seen upright.
CardPlace wantedPlace(const PictureShape &shape, const WantedPicture &wanted, int width, int height)
{
    if (!wanted.isFitted)
        return {0, 0, width, height};
    const double aspect = shape.displayAspect();
    const int cardWidth = int(std::lround(std::min<double>(fittedWidth, fittedHeight * aspect)));
    const int cardHeight = int(std::lround(std::min<double>(fittedHeight, fittedWidth / aspect)));
    return {(fittedWidth - cardWidth) / 2, (fittedHeight - cardHeight) / 2, cardWidth, cardHeight};
}

bool isNear(const CardPlace &a, const CardPlace &b)
{
    constexpr int tolerance = 4; // [pixels] sizes are even, and edges are soft
    return std::abs(a.left - b.left) <= tolerance && std::abs(a.top - b.top) <= tolerance &&
           std::abs(a.width - b.width) <= tolerance && std::abs(a.height - b.height) <= tolerance;
}

QString textOf(const CardPlace &place)
{
    return QString("%1x%2 at %3,%4").arg(place.width).arg(place.height).arg(place.left).arg(place.top);
}

QString shapeRow(const PictureShape &shape)
{
    constexpr double wide = 16.0 / 9;
    if (shape.rotation != 0)
        return "Picture that is to be turned (portrait)";
    if (shape.pixelWidth != shape.pixelHeight)
        return "Picture of pixels that are not square";
    return std::abs(shape.displayAspect() - wide) < 0.01 ? "Picture of 16:9" : "Picture that is not 16:9";
}

Finding compareShape(const PictureShape &shape, const WrittenPicture &written, const WantedPicture &wanted)
{
    constexpr double round = 0.025;
    const bool isSideways = written.rotation % 180 != 0;
    const int width = isSideways ? written.height : written.width;
    const int height = isSideways ? written.width : written.height;
    const double pixelAspect = upright(written.pixelAspect, written.rotation);
    const CardReading &card = written.card;
    const double roundness = card.discWidth * pixelAspect / std::max(card.discHeight, 1.0);
    const CardPlace place = wantedPlace(shape, wanted, width, height);
    const double aspect = wanted.isFitted ? double(fittedWidth) / fittedHeight : shape.displayAspect();

    Finding finding{shapeRow(shape), Verdict::Lost, {}};
    const double shown = pixelAspect * width / height;
    if (std::abs(roundness - 1.0) > round) {
        finding.detail = QString("a circle is %1 times as wide as high").arg(roundness, 0, 'f', 3);
    } else if (!isNear(card.place, place)) {
        finding.detail = "the picture is " + textOf(card.place) + ", not " + textOf(place);
    } else if (std::abs(shown / aspect - 1.0) > round) {
        finding.detail = QString("the file is shown as %1, not %2").arg(shown).arg(aspect);
    } else {
        finding.verdict = wanted.isFitted ? Verdict::Converted : Verdict::Kept;
    }
    return finding;
}

Finding compareFields(const PictureShape &shape, const WrittenPicture &written, const WantedPicture &wanted)
{
    Finding finding{"Frames without fields", Verdict::Kept, {}};
    if (shape.fields != Fields::Progressive)
        finding.thing = shape.isStandardDefinition() ? "Fields of SD" : "Fields of 1080 lines";
    if (wanted.fields != shape.fields)
        finding.verdict = Verdict::Converted;
    const bool saysNothing = !written.fields && wanted.fields == Fields::Progressive;
    const QString wish = ", not " + nameOf(wanted.fields);
    if (written.card.fields != wanted.fields)
        finding.detail = "fields are " + nameOf(written.card.fields) + wish;
    else if (written.fields != wanted.fields && !saysNothing)
        finding.detail = "the file says fields are " + nameOf(written.fields) + wish;
    if (!finding.detail.isEmpty())
        finding.verdict = Verdict::Lost;
    return finding;
}

QString colourRow(const PictureShape &shape)
{
    if (shape.colours.primaries == "bt2020")
        return "Colours of HDR and wide gamut";
    if (!shape.isStandardDefinition())
        return "Colours of HD";
    return shape.colours.matrix.isEmpty() ? "Colours of SD without tags" : "Colours of SD with tags";
}

/// The matrix that a player takes: the one of the tags, else the one that goes with the size.
QString playedMatrix(const WrittenPicture &written)
{
    if (!written.colours.matrix.isEmpty())
        return written.colours.matrix;
    constexpr int highestOfSd = 576; // [pixels]
    return std::min(written.width, written.height) <= highestOfSd && written.width <= 768 ? "smpte170m"
                                                                                          : "bt709";
}

Finding compareColours(const PictureShape &shape, const WrittenPicture &written)
{
    constexpr double tolerance = 0.03; // what coders make of a colour; a wrong matrix makes 0.05 and more
    const ColourTags &tags = written.colours;
    double worst = tolerance;
    Finding finding{colourRow(shape), Verdict::Kept, {}};
    const bool isPlayedAlike =
        playedMatrix(written) == shape.codedMatrix() && tags.range == shape.colours.range;
    if (!isPlayedAlike)
        finding.verdict = Verdict::Converted;
    for (std::size_t i = 0; i < testcard::patches.size(); ++i) {
        const CodedColour &coded = written.card.patches.at(i);
        const ShownColour shown = shownColour(coded, playedMatrix(written), tags.range);
        const double error = distance(shown, testcard::patches.at(i).colour);
        if (error > worst) {
            worst = error;
            finding.verdict = Verdict::Lost;
            finding.detail = QString("patch %1 is shown as %2 %3 %4, off by %5")
                                 .arg(i)
                                 .arg(shown.red, 0, 'f', 2)
                                 .arg(shown.green, 0, 'f', 2)
                                 .arg(shown.blue, 0, 'f', 2)
                                 .arg(error, 0, 'f', 3);
        }
    }
    return finding;
}

} // namespace

WrittenPicture pictureOf(const QJsonObject &stream)
{
    WrittenPicture picture;
    picture.width = stream["width"].toInt();
    picture.height = stream["height"].toInt();
    picture.pixelAspect = aspectOf(stream["sample_aspect_ratio"].toString());
    picture.pixelFormat = stream["pix_fmt"].toString();
    picture.fields = fieldsOf(stream["field_order"].toString());
    const QJsonArray sideDataList = stream["side_data_list"].toArray();
    for (const QJsonValue &data : sideDataList) {
        if (data.toObject().contains("rotation"))
            picture.rotation = (360 - data.toObject()["rotation"].toInt()) % 360; // counted anticlockwise
    }
    const QString range = known(stream["color_range"].toString());
    const bool isFullFormat = picture.pixelFormat.startsWith("yuvj");
    picture.colours = {range.isEmpty() ? (isFullFormat ? "pc" : "tv") : range,
                       known(stream["color_primaries"].toString()),
                       known(stream["color_transfer"].toString()), known(stream["color_space"].toString())};
    return picture;
}

QVector<Finding> comparePicture(const PictureShape &shape, const WrittenPicture &written,
                                const WantedPicture &wanted)
{
    return {compareShape(shape, written, wanted), compareFields(shape, written, wanted),
            compareColours(shape, written)};
}

} // namespace exportmatrix
