#include "app/velanorctl/guarded_output.h"

#include <string_view>

namespace velanor::app {
namespace {

constexpr std::string_view kInstead = "·";
// The control characters U+0080 to U+009F are this byte and one of 80 to 9F.
constexpr unsigned char kFirstOfTwo = 0xC2;

bool is_control(unsigned char byte) { return (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F; }

bool is_second_of_control(unsigned char byte) { return byte >= 0x80 && byte < 0xA0; }

}  // namespace

GuardedOutput::GuardedOutput(std::ostream& stream) : stream_(stream), inner_(stream.rdbuf(this)) {}

GuardedOutput::~GuardedOutput() {
  const auto state = stream_.rdstate();
  stream_.rdbuf(inner_);
  stream_.setstate(state);
}

GuardedOutput::int_type GuardedOutput::overflow(int_type byte) {
  if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
  return put(traits_type::to_char_type(byte)) ? byte : traits_type::eof();
}

int GuardedOutput::sync() { return inner_->pubsync(); }

bool GuardedOutput::put(char byte) {
  const auto write = [this](std::string_view text) {
    return inner_->sputn(text.data(), static_cast<std::streamsize>(text.size())) ==
           static_cast<std::streamsize>(text.size());
  };
  const auto value = static_cast<unsigned char>(byte);
  if (!guards_) return write({&byte, 1});
  if (half_) {
    half_ = false;
    if (is_second_of_control(value)) return write(kInstead);
    const char first = static_cast<char>(kFirstOfTwo);
    if (!write({&first, 1})) return false;
  }
  if (value == kFirstOfTwo) return half_ = true;
  return write(is_control(value) ? kInstead : std::string_view(&byte, 1));
}

}  // namespace velanor::app
