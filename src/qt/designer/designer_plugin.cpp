#include "qt/designer/designer_plugin.h"

#include <QIcon>

#include "velanor/controle_velanor_widget.h"

namespace velanor::qt {

QString DesignerPlugin::domXml() const {
  return QStringLiteral(
      "<ui language=\"c++\"><widget class=\"velanor::qt::ControleVelanorWidget\" name=\"fiches\"/></ui>");
}

QIcon DesignerPlugin::icon() const { return {}; }

QWidget* DesignerPlugin::createWidget(QWidget* parent) { return new ControleVelanorWidget(parent); }

}  // namespace velanor::qt
