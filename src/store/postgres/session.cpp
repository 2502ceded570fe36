#include "store/postgres/session.h"

#include <random>
#include <string_view>

#include "velanor/record.h"

namespace velanor::store::postgres {
namespace {

std::string from_hex(std::string_view hex) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes += static_cast<char>(16 * digit(hex[i]) + digit(hex[i + 1]));
  return bytes;
}

// Anybody on the base can notify anything: what it says decides only what is read anew and told.
Change change_of(std::string_view payload) {
  const auto first = payload.find(' ');
  const auto last = payload.rfind(' ');
  if (first == payload.npos || first == last) return {};
  return {clean_text(from_hex(payload.substr(0, first))),
          clean_text(from_hex(payload.substr(first + 1, last - first - 1))),
          clean_text(from_hex(payload.substr(last + 1)))};
}

}  // namespace

std::int64_t random_number() {
  static thread_local std::random_device device;
  constexpr std::uint64_t kPositive = ~std::uint64_t{0} >> 1;
  const std::uint64_t high = device(), low = device();
  return static_cast<std::int64_t>((high << 32 | low) & kPositive);
}

Session::Session(const std::string& url, const Connection::Limits& limits, std::uint64_t& round_trips)
    : connection_(url, limits, round_trips), rights_(check_schema(connection_)) {
  if (!may_write()) return;
  key_ = random_number();
  connection_.run("SELECT pg_advisory_lock($1)", {key_});
  connection_.run("LISTEN velanor");
}

void Session::end_other(std::int64_t key) {
  connection_.run(
      "SELECT pg_terminate_backend(pid) FROM pg_locks WHERE locktype = 'advisory' AND granted AND objsubid = "
      "1 "
      "AND database = (SELECT oid FROM pg_database WHERE datname = current_database()) "
      "AND classid::bigint << 32 | objid::bigint = $1",
      {key});
  connection_.run("SELECT pg_advisory_lock($1)", {key});
  connection_.run("SELECT pg_advisory_unlock($1)", {key});
}

std::vector<Change> Session::take_notices() {
  std::vector<Change> changes;
  for (const std::string& payload : connection_.take_notices()) changes.push_back(change_of(payload));
  return changes;
}

}  // namespace velanor::store::postgres
