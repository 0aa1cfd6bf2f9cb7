#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

/// Plays sound files, several at a time if need be. A file that cannot be played leaves one log line.
class SoundPlayer : public QObject
{
    Q_OBJECT
public:
    /// Starts playing a file and returns at once. May be called on any thread.
    void play(const QString& path);

private:
    void start(const QString& path);
};
