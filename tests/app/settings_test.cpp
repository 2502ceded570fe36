#include "app/velanor/settings.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace velanor::app {
namespace {

// Where a clerk's bases stand is nobody else's business.
TEST(SettingsFile, CanBeReadByItsUserAloneAlsoWhereItWasMoreOpenBefore) {
  const QTemporaryDir folder;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
  const QString path = QSettings("velanor", "velanor").fileName();
  constexpr auto kOthers = QFileDevice::ReadGroup | QFileDevice::ReadOther;
  for (const bool more_open : {false, true}) {
    if (more_open) {
      ASSERT_TRUE(QFile::setPermissions(path, QFile::permissions(path) | kOthers));
    }
    Settings().remember(more_open ? "/paie/fiches.db" : "/paie/autres.db");
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_FALSE(QFile::permissions(path) & kOthers);
    EXPECT_EQ(Settings().last(), more_open ? "/paie/fiches.db" : "/paie/autres.db");
  }
}

}  // namespace
}  // namespace velanor::app
