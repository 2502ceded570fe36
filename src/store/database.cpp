#include "velanor/database.h"

#include <exception>

namespace velanor::store {

bool Expected::holds_for(const std::optional<DbRecord>& stored) const {
  if (kind_ == Kind::kAnything) return true;
  return kind_ == Kind::kAbsent ? !stored : stored && stored->encoded() == content_;
}

void FileRecord::DBWrite(const Expected& expected) { file_->write(id_, *this, expected); }

void Database::in_one_change(const std::function<void()>&) {
  throw DbError(
      kNotOffered,
      "Cette base ne sait pas écrire plusieurs enregistrements d'un seul tenant : rien n'a été écrit.");
}

void Database::in_one_view(const std::function<void()>&) {
  throw DbError(kNotOffered, "Cette base ne sait pas être lue à un instant donné : rien n'a été lu.");
}

bool History::restore(std::string_view, std::string_view, const std::vector<Version>&) { return false; }

void DbFile::remove_each(const std::vector<std::string>& ids) {
  std::exception_ptr failure;
  for (const std::string& id : ids) {
    try {
      DeleteRecord(id);
    } catch (const DbError&) {
      if (!failure) failure = std::current_exception();
    }
  }
  if (failure) std::rethrow_exception(failure);
}

DbRecord DbFile::Read(std::string_view id) {
  if (auto record = find(id)) return std::move(*record);
  throw DbError(kMissingRecord, "L'enregistrement « " + clean_text(id) + " » n'existe pas.");
}

}  // namespace velanor::store
