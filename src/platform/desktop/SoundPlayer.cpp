#include "platform/desktop/SoundPlayer.h"

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QSoundEffect>
#include <map>

#include "platform/desktop/internal/SoundFiles.h"
#include "platform/dispatch/Dispatch.h"

// Resources of a static library are registered by a call outside every namespace.
static void registerSounds() {
  Q_INIT_RESOURCE(sounds);
}

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// A sound effect plays without delay, but only wave files; the themes' compressed sounds need the
/// media player, which is made when the first one is wanted.
class QtSoundPlayer : public SoundPlayer, public std::enable_shared_from_this<QtSoundPlayer> {
 public:
  void play(const QString& name) override {
    dispatch::mainAsync([self = shared_from_this(), name] { self->playSource(soundSource(name)); });
  }

 private:
  void playSource(const QUrl& source) {
    if (source.isEmpty()) return;
    if (source.fileName().endsWith(u".wav"_s)) return effect(source).play();
    if (!output_) {
      output_ = std::make_unique<QAudioOutput>();
      player_ = std::make_unique<QMediaPlayer>();
      player_->setAudioOutput(output_.get());
    }
    player_->setSource(source);
    player_->play();
  }

  QSoundEffect& effect(const QUrl& source) {
    auto& effect = effects_[source];
    if (!effect) {
      effect = std::make_unique<QSoundEffect>();
      effect->setVolume(1.0F);
      effect->setSource(source);
    }
    return *effect;
  }

  std::map<QUrl, std::unique_ptr<QSoundEffect>> effects_;
  std::unique_ptr<QAudioOutput> output_;
  std::unique_ptr<QMediaPlayer> player_;
};

}  // namespace

std::shared_ptr<SoundPlayer> SoundPlayer::create() {
  registerSounds();
  return std::make_shared<QtSoundPlayer>();
}

}  // namespace desktop
