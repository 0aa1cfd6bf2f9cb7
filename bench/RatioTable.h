#pragma once

#include <QtCore/QString>

/// Prints figures side by side: what was seen, what its peer takes, the ratio and its goal.
class RatioTable
{
public:
    /// Prints the headings.
    static void begin(const QString& title);

    /// A time beside its peer's, both in seconds.
    static void timeRow(const QString& name, double ours, double peers, const QString& goal);

    /// A figure that has no peer.
    static void row(const QString& name, const QString& seen, const QString& goal);

    /// A time as a person reads it.
    static QString readable(double seconds);
};
