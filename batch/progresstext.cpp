// SPDX-License-Identifier: MIT
#include "batch/progresstext.h"

#include <algorithm>
#include <cmath>

namespace progresstext
{

namespace
{

constexpr int tenths = 10;

int share(int done, int total, int parts)
{
    if (total <= 0)
        return 0;
    return static_cast<int>(qint64{std::clamp(done, 0, total)} * parts / total);
}

QString timeText(double seconds)
{
    const auto whole = static_cast<qint64>(std::ceil(seconds));
    const QChar zero('0');
    if (whole >= 3600) {
        return QString("%1:%2:%3")
            .arg(whole / 3600)
            .arg(whole % 3600 / 60, 2, 10, zero)
            .arg(whole % 60, 2, 10, zero);
    }
    return QString("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, zero);
}

} // namespace

QString bar(const QString &what, int done, int total, double elapsed)
{
    constexpr int width = 30; // [characters]
    const int filled = share(done, total, width);
    QString text = QString("%1 [%2%3] %4 %")
                       .arg(what, QString(filled, '#'), QString(width - filled, '.'))
                       .arg(share(done, total, 100), 3);
    if (done > 0 && done < total)
        text += ", " + timeText(elapsed * (total - done) / done) + " left";
    return text;
}

bool isLineDue(int before, int done, int total)
{
    return share(done, total, tenths) > share(before, total, tenths);
}

QString line(const QString &what, int done, int total)
{
    return QString("%1: %2 %\n").arg(what).arg(share(done, total, 100));
}

} // namespace progresstext
