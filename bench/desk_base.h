// A large base of the demonstration in an SQLite file: ten years of one entity, a tenth of the cards each.
// Made in the temporary folder and removed with the program, or, where VELANOR_BENCH_BASE names a file, made
// there once and kept, so that a run can begin with nothing of it in memory.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "cards.h"
#include "demo/demo.h"
#include "velanor/sqlite_database.h"

namespace velanor::bench {

class DeskBase {
 public:
  static constexpr const char* kEntity = "001";
  static constexpr const char* kYear = "2030";

  DeskBase() {
    if (!kept()) std::filesystem::remove(path_);
    const bool is_new = !std::filesystem::exists(path_);
    database_ = std::make_unique<store::SqliteDatabase>(
        path(), store::SqliteDatabase::Options{.missing = store::SqliteDatabase::Missing::kCreate});
    if (is_new) database_->in_one_change([this] { fill(); });
  }
  ~DeskBase() {
    database_.reset();
    if (!kept()) std::filesystem::remove(path_);
  }
  DeskBase(const DeskBase&) = delete;
  DeskBase& operator=(const DeskBase&) = delete;

  std::string path() const { return path_.string(); }
  store::SqliteDatabase& database() { return *database_; }
  // The code of an employee, from 0.
  static std::string code(int employee) { return padded(employee, 5); }

 private:
  class Sink : public demo::Sink {
   public:
    explicit Sink(store::Database& database) : database_(database) {}
    void put(std::string_view file, std::string_view id, const store::DbRecord& record) override {
      database_.OpenFile(file)->write(id, record);
    }

   private:
    store::Database& database_;
  };

  // Cards of the demonstration under new codes.
  void fill() const {
    Sink sink(*database_);
    demo::fill(sink);
    const auto cards = database_->OpenFile("VELANORO");
    const auto ids = database_->Select(
        store::DbQuery("SSELECT VELANORO AVEC 0 = \"[0012026\"", "VELANORO", "0").encoded());
    // Year by year, so that the ends of ids come together.
    for (int year = 0; year < kYears; ++year) {
      for (int i = 0; i < all_cards() / kYears; ++i) {
        store::DbRecord card = cards->Read(ids(1 + i % ids.DCount()));
        card.set(1, std::string(card(1)) + " " + code(i * 7919 % 100'000));
        cards->write(code(i) + kEntity + std::to_string(2030 - year), card);
      }
    }
  }

  static const char* kept() { return std::getenv("VELANOR_BENCH_BASE"); }

  std::filesystem::path path_ =
      kept() ? kept() : std::filesystem::temp_directory_path() / "velanor_desk_bench.db";
  std::unique_ptr<store::SqliteDatabase> database_;
};

}  // namespace velanor::bench
