#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

/// A script that comes with the program and shows what scripts can do.
struct Example {
    QString title;   ///< a few words
    QString summary; ///< one sentence
    QString path;
};

namespace Examples {

/// All examples, in the order of their titles. Empty if they are not installed.
QList<Example> all();

/// The text of an example; empty if it cannot be read.
QString textOf(const QString& path);

} // namespace Examples
