#include "exchange/csv.h"

#include <gtest/gtest.h>

#include <sstream>

namespace velanor::exchange {
namespace {

// "line: field|field! fault", a line a row.
std::string rows(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::string shown;
  if (!reader.fault().empty())
    shown = std::to_string(reader.fault_line()) + "! " + reader.fault().substr(0, 45) + "\n";
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
      {"lines of separators alone", "id;1\n;\na;b\n ; \n;;;;\n", "1:id|1|\n3:a|b|\n"},
      {"remarks above the headings", "# one, two\r\n\"# three\";;\nid;1\n#a;b\n", "3:id|1|\n4:#a|b|\n"},
      {"nothing", "", ""},
      {"remarks alone", "# one", ""},
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
}

TEST(Csv, ReadsWhatOlderSpreadsheetsWrite) {
  EXPECT_EQ(rows("id;Nom\n1;Ren\xE9 M\xFCller \x8Cuvre \x80\n2;l\x92\xE9t\xE9\n"),
            "1:id|Nom|\n2:1|René Müller Œuvre €|\n3:2|l’été|\n");
  EXPECT_EQ(rows("id;Nom\n1;Lo\xEF"), "1:id|Nom|\n2:1|Loï|\n");
}

// One sentence for the table, however many lines it has.
TEST(Csv, RefusesWhatMakesNoSenseInEitherEncoding) {
  const std::string refusal = "! le tableau n'est écrit ni en UTF-8 ni en Win\n";
  const struct {
    const char* what;
    std::string text;
    int line;
  } cases[] = {
      {"a mark is structure, never a character",
       "a;b\xFE"
       "c\nd\xFE;e\n",
       1},
      {"the accents of MS-DOS", "id;Nom\n1;Ren\x82\n2;Fran\x87ois\n", 2},
      {"the accents of an old Macintosh", "id;Nom\n1;a\n2;Ren\x8E\n", 3},
      {"damaged UTF-8", "id;Nom\n1;René\n2;Zoé Ren\xC3\n", 3},
      {"two bytes a character", std::string("\xFF\xFEi\0d\0\n\0", 8), 1},
      {"no text at all", std::string("id;1\n\0\0;\x81\n", 10), 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(rows(c.text), std::to_string(c.line) + refusal);
  }
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

TEST(Csv, NothingThatIsWrittenIsAFormulaAndAllIsReadAsItWas) {
  const std::vector<std::string> formulas{"=1+1", "@SUM(A1)", "+cmd|' /C calc'!A0", "-2+3", "\tx", "\rx",
                                          "'=1",  "''-a"};
  const std::vector<std::string> others{"-12,50", "+33 6", "-", "'", "l'été", "'t is", "a=b", "''"};
  for (const bool formula : {true, false}) {
    for (const std::string& field : formula ? formulas : others) {
      SCOPED_TRACE(field);
      std::ostringstream out;
      write_row(out, {"x", field}, ';');
      EXPECT_EQ(out.str().find("'" + field) != std::string::npos, formula) << out.str();
      std::istringstream in(out.str());
      CsvReader reader(in);
      CsvRow row;
      ASSERT_TRUE(reader.next(row));
      EXPECT_EQ(row.fields.back(), field);
    }
  }
}

}  // namespace
}  // namespace velanor::exchange
