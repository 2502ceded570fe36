#include "app/velanorctl/csv.h"

#include <gtest/gtest.h>

#include <sstream>

namespace velanor::app {
namespace {

// "line: field|field! fault", a line a row.
std::string rows(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::string shown;
  for (CsvRow row; reader.next(row);) {
    shown += std::to_string(row.line) + ":";
    for (const auto& field : row.fields) shown += field + "|";
    if (!row.fault.empty()) shown += "! " + row.fault;
    shown += "\n";
  }
  return shown;
}

TEST(Csv, ReadsRowsHoweverTheyAreWritten) {
  const struct {
    const char* what;
    const char* text;
    const char* shown;
  } cases[] = {
      {"semicolons", "id;1\na;b\n", "1:id|1|\n2:a|b|\n"},
      {"commas, no last line end", "id,1\na,b", "1:id|1|\n2:a|b|\n"},
      {"a semicolon decides over the commas of positions", "id;30,1,2\na;b,c\n", "1:id|30,1,2|\n2:a|b,c|\n"},
      {"a quoted semicolon decides nothing", "\"a;b\",c\n", "1:a;b|c|\n"},
      {"byte order mark and CRLF", "\xEF\xBB\xBFid;1\r\na;b\r\n", "1:id|1|\n2:a|b|\n"},
      {"doubled quotes", "\"dit \"\"oui\"\"\";\"\"\n", "1:dit \"oui\"||\n"},
      {"a line break counts as a line", "\"a\nb\";c\nd;e\n", "1:a\nb|c|\n3:d|e|\n"},
      {"quotes inside a plain field", "l\"eau;b\n", "1:l\"eau|b|\n"},
      {"empty lines", "id;1\n\n\r\na;b\n\n", "1:id|1|\n4:a|b|\n"},
      {"empty fields at the end", "a;;\n", "1:a|||\n"},
      {"nothing", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(rows(c.text), c.shown);
  }
}

TEST(Csv, SaysWhatIsWrongWithARow) {
  EXPECT_EQ(rows("id;1\na;\"b\nc;d"), "1:id|1|\n2:a|b\nc;d|! un guillemet n'est pas refermé\n");
  EXPECT_EQ(rows("\"a\"b;c\nd;e\n"),
            "1:ab|c|! un guillemet fermant est suivi d'autre chose que d'un séparateur\n2:d|e|\n");
  EXPECT_EQ(rows("id;\xE9\n"), "1:id|\xE9|! des caractères ne sont pas de l'UTF-8\n");
  EXPECT_NE(rows("a;b\xFE"
                 "c\n")
                .find("UTF-8"),
            std::string::npos)
      << "a mark is structure, never a character";
}

TEST(Csv, WhatIsWrittenIsReadAgain) {
  const std::vector<std::string> fields{"plain", "a;b", "\"q\"", "two\nlines", " blanks ", "", "é", "a\r"};
  std::ostringstream out;
  write_row(out, fields, ';');
  write_row(out, {"end", "", "", "", "", "", "", ""}, ';');
  std::istringstream in(out.str());
  CsvReader reader(in);
  CsvRow row;
  ASSERT_TRUE(reader.next(row));
  EXPECT_EQ(row.fields, fields);
  ASSERT_TRUE(reader.next(row));
  EXPECT_EQ(row.fields.size(), fields.size());
}

}  // namespace
}  // namespace velanor::app
