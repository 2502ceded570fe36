#include "store/database.h"

namespace velanor::store {

void FileRecord::DBWrite() { file_->write(id_, *this); }

DbRecord DbFile::Read(std::string_view id) {
  if (auto record = find(id)) return std::move(*record);
  throw DbError(kMissingRecord, "L'enregistrement « " + clean_text(id) + " » n'existe pas.");
}

}  // namespace velanor::store
