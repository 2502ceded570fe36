// Between the texts of the component (UTF-8) and those of the toolkit.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace velanor::qt {

inline QString to_qt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string from_qt(const QString& text) { return text.toStdString(); }

// A caption without the marks of its mnemonic.
inline QString without_mnemonic(QString caption) { return caption.remove(QLatin1Char('&')); }

}  // namespace velanor::qt
