// Offers ControleVelanorWidget in the widget box of Qt Designer.
#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace velanor::qt {

// In Designer the widget is an empty card: it starts when a host calls `init`.
class DesignerPlugin : public QObject, public QDesignerCustomWidgetInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetInterface")
  Q_INTERFACES(QDesignerCustomWidgetInterface)

 public:
  QString name() const override { return QStringLiteral("velanor::qt::ControleVelanorWidget"); }
  QString group() const override { return QStringLiteral("Velanor"); }
  QString toolTip() const override { return QStringLiteral("Fiches du personnel"); }
  QString whatsThis() const override { return toolTip(); }
  QString includeFile() const override { return QStringLiteral("qt/controle_velanor_widget.h"); }
  QString domXml() const override;
  QIcon icon() const override;
  bool isContainer() const override { return false; }
  QWidget* createWidget(QWidget* parent) override;
};

}  // namespace velanor::qt
