#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

/// Plays sound files, one beside another. What cannot be played is one log line.
class SoundPlayer : public QObject
{
    Q_OBJECT
public:
    /// Starts playing a file and returns at once. Any thread.
    void play(const QString& path);

private:
    void start(const QString& path);
};
