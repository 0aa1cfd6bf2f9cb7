#pragma once

#include <QtCore/QString>

/// A time span for people: minutes and seconds, with hours if there are any.
inline QString clockTime(double seconds)
{
    const auto whole = qint64(seconds);
    const auto twoDigits = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    const qint64 hours = whole / 3600;
    const qint64 minutes = whole / 60 % 60;
    const QString rest = QLatin1Char(':') + twoDigits(whole % 60);
    return hours ? QStringLiteral("%1:").arg(hours) + twoDigits(minutes) + rest : QString::number(minutes) + rest;
}
