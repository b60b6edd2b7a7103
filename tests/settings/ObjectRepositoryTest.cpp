#include <gtest/gtest.h>

#include <thread>

#include "platform/base/SystemVersion.h"
#include "platform/defaults/UserDefaults.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVOSXVersion.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;

namespace {

TEST(ObjectRepository, OneForAllThreads) {
  const CVObjectRepository* other = nullptr;
  std::thread([&] { other = &CVObjectRepository::singleton(); }).join();
  EXPECT_EQ(other, &CVObjectRepository::singleton());
}

TEST(ObjectRepository, ServicesAreFoundOnceRegisteredAndCanBeReplaced) {
  CVObjectRepository repository;
  EXPECT_EQ(repository.getPreferences(), nullptr);
  EXPECT_EQ(repository.getUtils(), nullptr);
  const auto settings = [] {
    return std::make_shared<CVDefaultPreferences>(defaults::UserDefaults::inMemory());
  };
  const auto first = settings();
  const auto second = settings();
  repository.addObject(first, u"preferences"_s);
  EXPECT_EQ(repository.getPreferences(), first);
  repository.addObject(second, u"preferences"_s);
  EXPECT_EQ(repository.getPreferences(), second);
}

TEST(SystemVersions, TheProvidedReleaseCanBeReplaced) {
  EXPECT_EQ(systemVersion()->minor, 15);
  {
    const SystemVersionOverride older(SystemVersion{10, 12, 1});
    EXPECT_EQ(CVOSXVersion(*systemVersion()).minorVersion(), 12);
  }
  EXPECT_EQ(systemVersion()->minor, 15);
}

}  // namespace
