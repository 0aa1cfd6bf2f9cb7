#pragma once

#include <QtCore/QString>

/// Prints a table of figures: the measured one, that of its peer (what it is compared with), the ratio and the goal.
class RatioTable
{
public:
    /// Prints the headings of a table.
    static void begin(const QString& title);

    /// Prints a time and that of its peer, both in seconds.
    static void timeRow(const QString& name, double ours, double peers, const QString& goal);

    /// Prints a figure without a peer.
    static void row(const QString& name, const QString& measured, const QString& goal);

    /// A time as text, in s, ms, us or ns.
    static QString readable(double seconds);
};
