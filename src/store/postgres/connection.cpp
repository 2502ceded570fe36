#include "store/postgres/connection.h"

#include <libpq-fe.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <exception>

#include "store/postgres/failure.h"
#include "velanor/record.h"

namespace velanor::store::postgres {
namespace {

constexpr int kBinary = 1;
// What a server that has given up on a statement may take to say so.
constexpr int kGrace = 5000;

std::int64_t now() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

struct FreeInfo {
  void operator()(PQconninfoOption* info) const { PQconninfoFree(info); }
};
using Info = std::unique_ptr<PQconninfoOption, FreeInfo>;

std::string value_of(const PQconninfoOption* option, std::string_view keyword) {
  for (; option != nullptr && option->keyword != nullptr; ++option) {
    if (option->keyword == keyword && option->val != nullptr) return option->val;
  }
  return {};
}

std::string place_of(const PQconninfoOption* info) {
  std::string host = value_of(info, "host");
  if (host.empty()) host = value_of(info, "hostaddr");
  std::string base = value_of(info, "dbname");
  if (base.empty()) base = value_of(info, "user");
  const std::string named = "« " + clean_text(base) + " »";
  return host.empty() ? named : named + " du serveur « " + clean_text(host) + " »";
}

// What the library says of a URL that it cannot read, or has read otherwise than it was meant, may show the
// password: an "@" in it would make its rest a part of the host.
bool is_readable(const std::string& url) {
  const Info info(PQconninfoParse(url.c_str(), nullptr));
  return info != nullptr && value_of(info.get(), "host").find('@') == std::string::npos;
}

// What stands first is only for those whom the URL does not contradict. A server that went away without a
// word is noticed by these. Codes come with the sentences of failures (see connection_failure).
PGconn* begin_to_connect(const std::string& url, int seconds) {
  const std::string unheard = std::to_string(2000 * seconds);
  const char* const keywords[] = {"tcp_user_timeout",
                                  "keepalives_idle",
                                  "keepalives_interval",
                                  "keepalives_count",
                                  "application_name",
                                  "dbname",
                                  nullptr};
  const char* const values[] = {unheard.c_str(), "10", "5", "3", "velanor", url.c_str(), nullptr};
  constexpr int kNameIsUrl = 1;
  PGconn* connection = PQconnectStartParams(keywords, values, kNameIsUrl);
  PQsetErrorVerbosity(connection, PQERRORS_VERBOSE);
  return connection;
}

// All hosts, addresses and attempts of a URL together take no longer. False: nobody has answered until then.
bool end_connecting(PGconn* connection, int seconds) {
  const std::int64_t until = now() + 1000 * static_cast<std::int64_t>(seconds);
  PostgresPollingStatusType state = PGRES_POLLING_WRITING;
  while (PQstatus(connection) != CONNECTION_BAD && state != PGRES_POLLING_OK &&
         state != PGRES_POLLING_FAILED) {
    const short events = state == PGRES_POLLING_READING ? POLLIN : POLLOUT;
    pollfd descriptor{PQsocket(connection), events, 0};
    const auto left = std::max<std::int64_t>(until - now(), 0);
    if (::poll(&descriptor, 1, static_cast<int>(left)) == 0) return false;
    state = PQconnectPoll(connection);
  }
  return true;
}

}  // namespace

// ---- Values.

Parameter::Parameter(std::int64_t number) : type_(kNumber) {
  for (int i = 0; i < 8; ++i)
    number_[static_cast<std::size_t>(i)] =
        static_cast<char>(static_cast<std::uint64_t>(number) >> (56 - 8 * i));
}

Parameter Parameter::text(std::string_view text) {
  Parameter parameter(text);
  parameter.type_ = kText;
  return parameter;
}

const char* Parameter::data() const {
  if (type_ == kNumber) return number_.data();
  // A null pointer would be NULL, which is not the empty text.
  if (is_null_) return nullptr;
  return bytes_.empty() ? "" : bytes_.data();
}

int Parameter::size() const { return type_ == kNumber ? 8 : static_cast<int>(bytes_.size()); }

void Result::Clear::operator()(pg_result* result) const { PQclear(result); }

int Result::rows() const { return PQntuples(result_.get()); }

bool Result::is_null(int row, int column) const { return PQgetisnull(result_.get(), row, column) == 1; }

std::string_view Result::bytes(int row, int column) const {
  return {PQgetvalue(result_.get(), row, column),
          static_cast<std::size_t>(PQgetlength(result_.get(), row, column))};
}

std::int64_t Result::number(int row, int column) const {
  const std::string_view field = bytes(row, column);
  std::uint64_t number = !field.empty() && field.size() > 1 && field[0] < 0 ? ~std::uint64_t{0} : 0;
  for (const char byte : field) number = number << 8 | static_cast<unsigned char>(byte);
  return static_cast<std::int64_t>(number);
}

std::string_view Result::tag() const { return PQcmdStatus(result_.get()); }

// ---- The connection.

void Connection::Finish::operator()(pg_conn* connection) const { PQfinish(connection); }

Connection::Connection(const std::string& url, const Limits& limits, std::uint64_t& round_trips)
    : limits_(limits), round_trips_(round_trips) {
  if (!is_readable(url)) {
    throw DbError(kStoreFailure,
                  "L'adresse de la base n'est pas lisible. Donnez-la sous la forme "
                  "postgresql://utilisateur@serveur/base ; dans un mot de passe, « @ », « / » et « % » "
                  "s'écrivent %40, %2F et %25.");
  }
  connection_.reset(begin_to_connect(url, limits.connect_seconds));
  ++round_trips_;
  place_ = place_of(Info(PQconninfo(connection_.get())).get());
  if (!end_connecting(connection_.get(), limits.connect_seconds))
    throw Unreachable(place_, "personne n'a répondu à temps");
  if (PQstatus(connection_.get()) != CONNECTION_OK) {
    if (PQconnectionNeedsPassword(connection_.get()) == 1)
      throw Unreachable(place_, "il faut un mot de passe");
    throw Unreachable(place_, connection_failure(PQerrorMessage(connection_.get())));
  }
  PQsetnonblocking(connection_.get(), 1);
  PQsetNoticeProcessor(
      connection_.get(), [](void*, const char*) {}, nullptr);
  // A save is on the disk when it is acknowledged, also where the server would have it otherwise.
  run("SELECT set_config('statement_timeout', $1, false), set_config('lock_timeout', $2, false), "
      "set_config('synchronous_commit', CASE current_setting('synchronous_commit') WHEN 'off' THEN 'on' "
      "ELSE current_setting('synchronous_commit') END, false), "
      "set_config('idle_in_transaction_session_timeout', '5min', false)",
      {Parameter::text(std::to_string(limits.statement)), Parameter::text(std::to_string(limits.patience))});
}

int Connection::socket() const { return PQsocket(connection_.get()); }

void Connection::lose() {
  alive_ = false;
  throw ConnectionLost(place_);
}

Connection::Deadline Connection::deadline() const {
  return limits_.statement > 0 ? Deadline(now() + limits_.statement + kGrace) : std::nullopt;
}

void Connection::wait(short events, Deadline deadline) {
  pollfd descriptor{socket(), events, 0};
  const auto left = deadline ? std::max<std::int64_t>(*deadline - now(), 0) : -1;
  // A signal is no answer; the caller comes back here.
  if (::poll(&descriptor, 1, static_cast<int>(left)) == 0) lose();
}

void Connection::send(const char* sql, const Parameters& parameters, Rows rows) {
  if (!alive_) lose();
  std::vector<Oid> types;
  std::vector<const char*> values;
  std::vector<int> sizes;
  for (const Parameter& parameter : parameters) {
    types.push_back(parameter.type());
    values.push_back(parameter.data());
    sizes.push_back(parameter.size());
  }
  const std::vector<int> formats(parameters.size(), kBinary);
  ++round_trips_;
  PGconn* connection = connection_.get();
  const int sent = PQsendQueryParams(connection, sql, static_cast<int>(parameters.size()), types.data(),
                                     values.data(), sizes.data(), formats.data(), kBinary);
  if (sent == 0) lose();
  if (rows == Rows::kOneByOne) PQsetSingleRowMode(connection);
  const Deadline until = deadline();
  for (int pending = 1; (pending = PQflush(connection)) != 0;) {
    if (pending < 0) lose();
    wait(POLLIN | POLLOUT, until);
    if (PQconsumeInput(connection) == 0) lose();
  }
}

pg_result* Connection::next() {
  PGconn* connection = connection_.get();
  const Deadline until = deadline();
  while (PQisBusy(connection) == 1) {
    wait(POLLIN, until);
    if (PQconsumeInput(connection) == 0) lose();
  }
  pg_result* part = PQgetResult(connection);
  if (part == nullptr && PQstatus(connection) != CONNECTION_OK) lose();
  return part;
}

void Connection::check(const pg_result* part) {
  const ExecStatusType status = PQresultStatus(part);
  if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK || status == PGRES_SINGLE_TUPLE) return;
  const char* code = PQresultErrorField(part, PG_DIAG_SQLSTATE);
  if (PQstatus(connection_.get()) != CONNECTION_OK || code == nullptr || ends_connection(code)) lose();
  const char* message = PQresultErrorField(part, PG_DIAG_MESSAGE_PRIMARY);
  throw failure(code, place_, message == nullptr ? "" : message);
}

// Whatever fails, the answer is taken to its end: the next one stands behind it.
void Connection::ask(const char* sql, const Parameters& parameters, Rows rows,
                     const std::function<void(Result)>& take) {
  send(sql, parameters, rows);
  std::exception_ptr failed;
  while (pg_result* part = next()) {
    Result result(part);
    if (failed) continue;
    try {
      check(part);
      take(std::move(result));
    } catch (...) {
      if (!alive_) throw;
      failed = std::current_exception();
    }
  }
  if (failed) std::rethrow_exception(failed);
}

Result Connection::run(const char* sql, const Parameters& parameters) {
  Result answer(nullptr);
  ask(sql, parameters, Rows::kTogether, [&](Result part) { answer = std::move(part); });
  return answer;
}

void Connection::stream(const char* sql, const Parameters& parameters,
                        const std::function<void(const Result&)>& visit) {
  ask(sql, parameters, Rows::kOneByOne, [&](const Result& part) {
    if (part.rows() > 0) visit(part);
  });
}

std::vector<std::string> Connection::take_notices() {
  std::vector<std::string> notices;
  if (!alive_) return notices;
  PGconn* connection = connection_.get();
  if (PQconsumeInput(connection) == 0) alive_ = false;
  while (PGnotify* notice = PQnotifies(connection)) {
    if (notice->be_pid != PQbackendPID(connection)) notices.emplace_back(notice->extra);
    PQfreemem(notice);
  }
  return notices;
}

}  // namespace velanor::store::postgres
