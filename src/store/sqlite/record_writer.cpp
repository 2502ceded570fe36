#include "store/sqlite/record_writer.h"

namespace velanor::store::sqlite {
namespace {

std::string reversed(std::string_view id) { return {id.rbegin(), id.rend()}; }

void bind_version(Run& run, const StoredVersion& row) {
  run->bind(1, row.file);
  run->bind_text(2, row.id);
  if (row.content) run->bind_blob(3, *row.content);
  run->bind(4, row.version);
  run->bind_text(5, row.author);
  run->bind(6, row.time);
  run->bind(7, row_sum(row));
}

}  // namespace

RecordWriter::RecordWriter(Connection& connection)
    : current_(connection,
               "SELECT content, version, author, time, sum FROM record WHERE file = ?1 AND id = ?2"),
      insert_(connection,
              "INSERT INTO record(file, id, content, version, author, time, sum, tail) "
              "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)"),
      update_(connection,
              "UPDATE record SET content = ?3, version = ?4, author = ?5, time = ?6, sum = ?7 "
              "WHERE file = ?1 AND id = ?2"),
      erase_(connection, "DELETE FROM record WHERE file = ?1 AND id = ?2"),
      keep_(
          connection,
          "INSERT INTO history(file, id, version, author, time, until, content, sum) "
          "SELECT file, id, version, author, time, ?3, content, sum FROM record WHERE file = ?1 AND id = ?2"),
      bury_(connection,
            "INSERT INTO history(file, id, version, author, time, sum) VALUES (?1, ?2, ?4, ?5, ?6, ?7)"),
      lay_down_(connection,
                "INSERT INTO history(file, id, content, version, author, time, sum, until) "
                "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)"),
      last_(connection, "SELECT max(version) FROM history WHERE file = ?1 AND id = ?2"),
      end_deletion_(connection,
                    "UPDATE history SET until = ?3 WHERE file = ?1 AND id = ?2 AND content IS NULL "
                    "AND until IS NULL"),
      add_file_(connection, "INSERT INTO file(name) VALUES (?1)") {}

std::optional<RecordWriter::Current> RecordWriter::current(std::int64_t file, std::string_view id) {
  Run run(current_);
  run->bind(1, file);
  run->bind_text(2, id);
  if (!run->step()) return std::nullopt;
  const std::string_view content = run->bytes(0);
  const bool sound =
      run->number(4) == row_sum({file, id, run->number(1), run->bytes(2), run->number(3), content});
  return Current{std::string(content), run->number(1), sound};
}

void RecordWriter::put(std::int64_t file, std::string_view id, std::string_view content,
                       const std::optional<Current>& current, const Hand& hand) {
  const std::int64_t before = last_version(file, id, current);
  if (current) keep(file, id, *current, hand.time);
  if (!current && before > 0) end_deletion(file, id, hand.time);
  const std::string tail = reversed(id);
  Run run(current ? update_ : insert_);
  bind_version(run, {file, id, before + 1, hand.author, hand.time, content});
  if (!current) run->bind_blob(8, tail);
  run->step();
}

void RecordWriter::erase(std::int64_t file, std::string_view id, const Current& current, const Hand& hand) {
  const std::int64_t before = last_version(file, id, current);
  keep(file, id, current, hand.time);
  {
    Run run(bury_);
    bind_version(run, {file, id, before + 1, hand.author, hand.time, std::nullopt});
    run->step();
  }
  Run run(erase_);
  run->bind(1, file);
  run->bind_text(2, id);
  run->step();
}

void RecordWriter::lay_down(const StoredVersion& row, std::optional<std::int64_t> until) {
  const bool stored_now = !until && row.content;
  const std::string tail = reversed(row.id);
  Run run(stored_now ? insert_ : lay_down_);
  bind_version(run, row);
  if (stored_now) run->bind_blob(8, tail);
  if (until) run->bind(8, *until);
  run->step();
}

void RecordWriter::add_file(std::string_view name) {
  Run run(add_file_);
  run->bind_text(1, name);
  run->step();
}

// The number of a damaged record may be what is damaged: it was the one behind those that are kept.
std::int64_t RecordWriter::last_version(std::int64_t file, std::string_view id,
                                        const std::optional<Current>& current) {
  if (current && current->sound) return current->version;
  Run run(last_);
  run->bind(1, file);
  run->bind_text(2, id);
  return (run->step() ? run->number(0) : 0) + (current ? 1 : 0);
}

// What can no longer be read is no version that anybody could go back to.
void RecordWriter::keep(std::int64_t file, std::string_view id, const Current& current, std::int64_t until) {
  if (!current.sound) return;
  Run run(keep_);
  run->bind(1, file);
  run->bind_text(2, id);
  run->bind(3, until);
  run->step();
}

void RecordWriter::end_deletion(std::int64_t file, std::string_view id, std::int64_t until) {
  Run run(end_deletion_);
  run->bind(1, file);
  run->bind_text(2, id);
  run->bind(3, until);
  run->step();
}

}  // namespace velanor::store::sqlite
