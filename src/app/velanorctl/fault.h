// A sentence about a fault, of which many records may have one of the same kind.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace velanor::app {

class Fault {
 public:
  // "…" in the pattern stands for what differs from one fault of the kind to the next.
  explicit Fault(std::string pattern, std::string value = {})
      : pattern_(std::move(pattern)), value_(std::move(value)) {}

  const std::string& kind() const { return pattern_; }
  std::string sentence() const {
    static constexpr std::string_view kPlace = "…";
    std::string text = pattern_;
    if (const auto at = text.find(kPlace); at != text.npos) text.replace(at, kPlace.size(), value_);
    return text;
  }

 private:
  std::string pattern_, value_;
};

}  // namespace velanor::app
