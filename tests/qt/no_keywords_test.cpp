// A host that keeps the toolkit's keywords for itself: what it includes must do without them.
#define QT_NO_KEYWORDS
#include <gtest/gtest.h>

#include "velanor/controle_velanor_widget.h"
#include "velanor/hand.h"

namespace velanor::qt {
namespace {

struct Words {
  int signals = 0, slots = 0, emit = 0;
};

TEST(Host, MayUseTheWordsOfTheToolkit) {
  Words words;
  ControleVelanorWidget widget;
  QObject::connect(&widget, &ControleVelanorWidget::modified_changed, [&] { ++words.emit; });
  Q_EMIT widget.modified_changed(true);
  EXPECT_EQ(words.emit, 1);
}

}  // namespace
}  // namespace velanor::qt
