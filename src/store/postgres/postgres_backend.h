// The backend of the PostgreSQL store.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/postgres/kept_records.h"
#include "store/postgres/newsstand.h"
#include "store/postgres/session.h"
#include "velanor/backend.h"
#include "velanor/postgres_database.h"

namespace velanor::store::postgres {

class PostgresBackend : public Backend {
 public:
  PostgresBackend(std::string url, const PostgresDatabase::Options& options);

  void open(std::string_view file) override;
  std::optional<DbRecord> find(std::string_view file, std::string_view id) override;
  bool put(std::string_view file, std::string_view id, const DbRecord& record,
           const Expected& expected) override;
  bool erase(std::string_view file, std::string_view id, const Expected& expected) override;
  void erase_each(std::string_view file, const std::vector<std::string>& ids) override;
  void scan(std::string_view file, const Narrowing& narrowing, Content content, const Visit& visit) override;
  std::uint64_t scan_if_changed(std::string_view file, std::optional<std::uint64_t> seen,
                                const Narrowing& narrowing, Content content, const Visit& visit) override;
  std::uint64_t revision(std::string_view file) override;
  void in_one_change(const std::function<void()>& writes) override;
  void in_one_view(const std::function<void()>& reads) override;

  bool may_write() const { return may_write_; }
  std::vector<std::string> files();
  void set_author(std::string_view name);
  std::string author();

  // Runs reads on a connection, once more on a new one when it turns out to be lost. They must be such that
  // it does no harm when they are begun twice.
  void read(const std::function<void(Connection&)>& reads);
  // Runs a write that is not one of a record's: as it is, or as part of the change under way.
  void write(const std::function<void(Connection&)>& writes);

  std::unique_ptr<News> news() { return newsstand_.new_reader(); }
  std::uint64_t round_trips() const { return round_trips_; }

 private:
  enum class Mode { kPlain, kChange, kView };
  // A write of a record, as it is sent to the server.
  struct Write {
    std::string file, id;
    std::optional<std::string> content;  // nothing: a deletion
    std::int64_t token = 0;
    bool again = false;  // sent before, and it is not known whether it was done
  };
  enum class Answer { kConflict = 0, kNothingToDo = 1, kDone = 2 };

  // Connected, and done with what a lost session may have left.
  Session& session();
  // The same, for a while, with a server that has just fallen.
  Session& session_again();
  void lost();
  void on_a_connection(const std::function<void(Connection&)>& act);

  std::optional<DbRecord> find(Connection& connection, std::string_view file, std::string_view id);
  std::optional<DbRecord> find_kept(std::string_view file, std::string_view id);
  void load_kept(Connection& connection);
  bool answers_from_kept(std::string_view file) const {
    return mode_ == Mode::kPlain && may_write_ && kept_.keeps(file);
  }
  // As scan_if_changed; nothing where the server has to be asked.
  std::optional<std::uint64_t> scan_kept(std::string_view file, std::optional<std::uint64_t> seen,
                                         const Visit& visit);

  bool write_record(std::string_view file, std::string_view id, std::optional<std::string> content,
                    const Expected& expected);
  Answer write_in_change(Write& write, const Expected& expected);
  Answer write_surely(Write& write, const Expected& expected);
  Answer send(Connection& connection, const Write& write, bool again, const Expected& expected);
  Connection& session_for(const Write& write);
  [[noreturn]] void leave_unknown(const Write& write);

  void refuse_in_view() const;
  // Runs what belongs to the change or view under way, of which a failure is the end.
  void in_transaction(const std::function<void(Connection&)>& act);
  void transaction(const char* begin, Mode mode, const std::function<void()>& acts);
  void roll_back();
  void commit();
  bool was_committed();

  // The server's revision and what makes it differ here, and back; -1: not of now.
  static constexpr int kRoomForWrites = 40;
  std::uint64_t own(std::uint64_t written) const { return written + (own_revision_ << kRoomForWrites); }
  std::int64_t server_revision(std::optional<std::uint64_t> own_revision) const;

  void take_notices();

  std::string url_;
  Connection::Limits limits_;
  std::uint64_t round_trips_ = 0;
  std::unique_ptr<Session> session_;
  bool may_write_ = false;
  std::int64_t lost_session_ = 0;  // the key of one that may still be at work; 0: none
  std::optional<Write> unknown_;   // the last write, when its outcome could not be asked for
  std::optional<std::string> author_;

  Mode mode_ = Mode::kPlain;
  bool broken_ = false;             // the change or view under way has failed
  std::int64_t change_ = 0;         // the token of the change under way
  std::optional<Write> last_done_;  // its last write that changed something
  bool wrote_otherwise_ = false;    // it wrote what bears no token

  KeptRecords kept_;
  // Makes revisions differ that the server gives twice: inside a change and after one that was undone.
  std::uint64_t own_revision_ = 0;

  Newsstand newsstand_;
  bool missed_news_ = false;  // from the loss of a connection to the next one
};

}  // namespace velanor::store::postgres
