// The Designer plugin loads and makes the widget.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPluginLoader>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

TEST(DesignerPlugin, LoadsAndMakesTheWidgetWithItsControls) {
  QPluginLoader loader(QStringLiteral(VELANOR_DESIGNER_PLUGIN));
  auto* plugin = qobject_cast<QDesignerCustomWidgetInterface*>(loader.instance());
  ASSERT_NE(plugin, nullptr) << loader.errorString().toStdString();
  const std::unique_ptr<QWidget> widget(plugin->createWidget(nullptr));
  EXPECT_EQ(plugin->name(), QString::fromLatin1(widget->metaObject()->className()));
  EXPECT_NE(widget->findChild<QLineEdit*>(QStringLiteral("Txt_Asso")), nullptr);
  widget->show();
  QApplication::processEvents();
  EXPECT_TRUE(widget->isVisible());
}

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
