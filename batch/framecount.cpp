// SPDX-License-Identifier: MIT
#include "batch/framecount.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace framecount
{

namespace
{

/// Numbers that drop-frame leaves out each minute but the tenth.
int leftOut(const Rate &rate)
{
    constexpr int basePerNumber = 15; // 2 of 30, 4 of 60
    return rate.dropFrame ? rate.base / basePerNumber : 0;
}

qint64 framesInTenMinutes(const Rate &rate)
{
    return qint64{rate.base} * 600 - qint64{leftOut(rate)} * 9;
}

} // namespace

std::optional<Rate> pictureRate(const QString &fraction)
{
    const QStringList parts = fraction.split('/');
    const double denominator = parts.size() == 2 ? parts.at(1).toDouble() : 1.0;
    if (parts.size() > 2 || denominator <= 0.0)
        return std::nullopt;
    const double rate = parts.at(0).toDouble() / denominator;
    constexpr double tolerated = 0.0005; // [of the rate] half of what sets 29.97 and 30 apart
    const double nearest = std::round(rate);
    if (nearest < 1.0)
        return std::nullopt;
    if (std::abs(rate / nearest - 1.0) < tolerated)
        return Rate{static_cast<int>(nearest), false, false};
    const double nominal = std::round(rate * 1001.0 / 1000.0);
    if (std::abs(rate * 1001.0 / 1000.0 / nominal - 1.0) < tolerated)
        return Rate{static_cast<int>(nominal), true, false};
    return std::nullopt;
}

std::optional<qint64> fromText(const QString &timecode, const Rate &rate)
{
    static const QRegularExpression form("^(\\d\\d):(\\d\\d):(\\d\\d)[:;.](\\d\\d+)$");
    const QRegularExpressionMatch match = form.match(timecode);
    if (!match.hasMatch() || rate.base <= 0)
        return std::nullopt;
    const int hours = match.captured(1).toInt();
    const int minutes = match.captured(2).toInt();
    const int seconds = match.captured(3).toInt();
    const int frames = match.captured(4).toInt();
    const bool isLeftOut = seconds == 0 && minutes % 10 != 0 && frames < leftOut(rate);
    if (hours > 23 || minutes > 59 || seconds > 59 || frames >= rate.base || isLeftOut)
        return std::nullopt;
    const qint64 minute = qint64{hours} * 60 + minutes;
    return (minute * 60 + seconds) * rate.base + frames - leftOut(rate) * (minute - minute / 10);
}

QString toText(qint64 frames, const Rate &rate)
{
    constexpr int tensADay = 144;
    const qint64 day = framesInTenMinutes(rate) * tensADay;
    frames = (frames % day + day) % day;
    // Count on as if no number were left out.
    const qint64 tens = frames / framesInTenMinutes(rate);
    const qint64 rest = frames % framesInTenMinutes(rate);
    const qint64 firstMinute = qint64{rate.base} * 60;
    qint64 minutesAfter = 0;
    if (rest >= firstMinute)
        minutesAfter = 1 + (rest - firstMinute) / (firstMinute - leftOut(rate));
    frames += leftOut(rate) * (tens * 9 + minutesAfter);

    const qint64 seconds = frames / rate.base;
    return QString::asprintf("%02lld:%02lld:%02lld%c%02lld", seconds / 3600, seconds / 60 % 60, seconds % 60,
                             rate.dropFrame ? ';' : ':', frames % rate.base);
}

QString atRate(const QString &timecode, const Rate &from, const Rate &to)
{
    if (!fromText(timecode, from))
        return {};
    if (from.base == to.base)
        return timecode;
    constexpr int frameDigits = 2;
    const int frame = timecode.right(frameDigits).toInt();
    // The nearest frame; never the next second, which is another timecode.
    const int nearest = (frame * to.base * 2 + from.base) / (from.base * 2);
    const int counted = std::min(nearest, to.base - 1);
    return timecode.left(timecode.size() - frameDigits) +
           QString("%1").arg(counted, frameDigits, 10, QChar('0'));
}

} // namespace framecount
