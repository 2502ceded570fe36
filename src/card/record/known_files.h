// The files that the component uses, that of the remarks on its cards, and how their codes are built.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velanor::card {

bool is_known_file(std::string_view name);
// Their names, separated by commas.
std::string known_files();

// The id that is meant: a spreadsheet strips codes of their leading zeros. Nothing for digits that are
// too few for an id of the file even so; any other text as it is.
std::optional<std::string> completed_id(std::string_view file, std::string_view shown);
// Characters of the codes of a list of References.
int list_code_length(std::string_view list);

// Whether a column of the file holds codes, which completed_cell completes.
bool has_codes(std::string_view file, int attribute);
// A code in a column of the file with the zeros that it has lost; any other text as it is.
std::string completed_cell(std::string_view file, int attribute, std::string_view cell);

// Whether a record of the file is a list, which a table may spell out line by line.
bool is_list_file(std::string_view file);

}  // namespace velanor::card
