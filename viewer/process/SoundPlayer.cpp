#include "SoundPlayer.h"

#include <QtCore/QDebug>
#include <QtCore/QFileInfo>

#ifdef VANTREL_HAS_MULTIMEDIA
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtMultimedia/QMediaPlayer>
#endif

namespace {

void complain(const QString& path, const QString& reason)
{
    qWarning().noquote() << QStringLiteral("Cannot play the sound %1: %2").arg(path, reason);
}

} // namespace

void SoundPlayer::play(const QString& path)
{
    QMetaObject::invokeMethod(this, [this, path] { start(path); });
}

void SoundPlayer::start(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return complain(path, tr("no such file"));
#ifdef VANTREL_HAS_MULTIMEDIA
    if (QMediaDevices::defaultAudioOutput().isNull())
        return complain(path, tr("no sound device"));
    auto* player = new QMediaPlayer(this);
    player->setAudioOutput(new QAudioOutput(player));
    connect(player, &QMediaPlayer::errorOccurred, this, [player, path](QMediaPlayer::Error, const QString& reason) {
        player->disconnect();
        complain(path, reason);
        player->deleteLater();
    });
    connect(player, &QMediaPlayer::playbackStateChanged, this, [player](QMediaPlayer::PlaybackState state) {
        if (state == QMediaPlayer::StoppedState)
            player->deleteLater();
    });
    player->setSource(QUrl::fromLocalFile(path));
    player->play();
#else
    complain(path, tr("this build does not support sound"));
#endif
}
