#include "platform/web/Engine.h"

#include <QCoreApplication>

#include "platform/web/EngineInstance.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace web {
namespace {

std::shared_ptr<Engine>& sharedEngine() {
  static std::shared_ptr<Engine> engine;
  return engine;
}

/// Runs while the application object ends: processes can still be waited for then, later they
/// cannot.
void dropSharedEngine() {
  if (const auto engine = std::exchange(sharedEngine(), nullptr)) engine->shutdown();
}

}  // namespace

std::shared_ptr<Engine> Engine::shared(const EngineOptions& options) {
  std::shared_ptr<Engine>& engine = sharedEngine();
  if (!engine) {
    engine = std::make_shared<Engine>(options);
    qAddPostRoutine(dropSharedEngine);
  }
  return engine;
}

Engine::Engine(EngineOptions options) : options_(std::move(options)) {}

Engine::~Engine() {
  shutdown();
}

Result<std::shared_ptr<EngineInstance>> Engine::instance() {
  if (instance_ && !instance_->hasEnded()) return instance_;
  Result<std::shared_ptr<EngineInstance>> started = EngineInstance::start(options_);
  if (started) instance_ = *started;
  return started;
}

void Engine::warmUp() {
  (void)instance();
}

std::shared_ptr<Page> Engine::createPage(PageConfiguration configuration) {
  if (options_.use == EngineUse::Conversions) configuration.painted = Painted::WholeDocument;
  auto page = Page::create(configuration);
  if (const auto running = instance())
    (*running)->open(page);
  else
    page->fail(running.error());
  return page;
}

void Engine::shutdown() {
  if (const auto running = std::exchange(instance_, nullptr)) running->shutDown();
}

std::optional<qint64> Engine::processIdentifier() const {
  if (!instance_ || instance_->hasEnded()) return std::nullopt;
  return instance_->processIdentifier();
}

}  // namespace web
