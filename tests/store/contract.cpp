#include "store/contract.h"

#include <algorithm>
#include <iterator>

#include "store/notation.h"

namespace velanor::store {

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(StoreContract);

void StoreContract::put(std::string_view file, std::string_view id, std::string_view text) {
  database_->OpenFile(file)->write(id, record(text));
}

std::vector<std::string> StoreContract::select(std::string_view statement, std::string_view file,
                                               std::string_view attributes) {
  const DbResult result = database_->Select(DbQuery(statement, file, attributes).encoded());
  std::vector<std::string> rows;
  for (int i = 1; i <= result.DCount(); ++i) rows.push_back(shown(result(i)));
  return rows;
}

namespace {

using Rows = std::vector<std::string>;

TEST_P(StoreContract, WhatIsWrittenIsReadAgain) {
  const auto file = database_->OpenFile("TABLES");
  FileRecord written = file->Record("FINCONTRAT");
  written.assign(record("Motifs^01|02^Fin de contrat|Démission~x"));
  written.set(4, "dernier");
  written.DBWrite();
  EXPECT_EQ(shown(file->Read("FINCONTRAT")), "Motifs^01|02^Fin de contrat|Démission~x^dernier");
  EXPECT_EQ(shown(database_->OpenFile("TABLES")->Read("FINCONTRAT")), shown(written));

  written.assign(record("court"));
  written.DBWrite();
  EXPECT_EQ(shown(file->Read("FINCONTRAT")), "court");
  EXPECT_EQ(file->find("fincontrat"), std::nullopt);
}

TEST_P(StoreContract, AMissingRecordIsAnAnswerOfFindAndANumberOfRead) {
  const auto file = database_->OpenFile("BUDGETPARAM");
  EXPECT_EQ(file->find("1"), std::nullopt);
  try {
    file->Read("1");
    ADD_FAILURE() << "read";
  } catch (const DbError& error) {
    EXPECT_EQ(error.number(), 0x8004000Bu);
    EXPECT_STREQ(error.what(), "L'enregistrement « 1 » n'existe pas.");
  }
  file->write("1", DbRecord());
  EXPECT_TRUE(file->Read("1").empty());
}

TEST_P(StoreContract, ADeletedRecordIsGoneAndDeletingItAgainIsNoError) {
  put("SECTEUR", "001", "Aide");
  put("SECTEUR", "002", "Soin");
  const auto file = database_->OpenFile("SECTEUR");
  file->DeleteRecord("001");
  file->DeleteRecord("001");
  EXPECT_EQ(file->find("001"), std::nullopt);
  EXPECT_EQ(select("SSELECT SECTEUR", "SECTEUR"), Rows({"002"}));
}

TEST_P(StoreContract, EachOfManyIsRemovedAndNoOther) {
  for (const char* id : {"001", "002", "003", "01"}) put("SECTEUR", id, "Aide");
  const auto file = database_->OpenFile("SECTEUR");
  file->remove_each({"001", "absent", "003"});
  file->remove_each({});
  EXPECT_EQ(select("SSELECT SECTEUR", "SECTEUR"), Rows({"002", "01"}));
  EXPECT_THROW(database_->in_one_change([&] {
    file->remove_each({"002", "01"});
    throw std::runtime_error("undone");
  }),
               std::runtime_error);
  EXPECT_EQ(select("SSELECT SECTEUR", "SECTEUR"), Rows({"002", "01"}));
}

TEST_P(StoreContract, FilesDoNotMix) {
  put("SECTEUR", "001", "Aide");
  put("COMMUNES", "001", "Lyon");
  EXPECT_EQ(select("SSELECT SECTEUR", "SECTEUR", "0 1"), Rows({"001|Aide"}));
  EXPECT_EQ(database_->OpenFile("PROFIL")->find("001"), std::nullopt);
}

TEST_P(StoreContract, AnIdMustBeACleanText) {
  const auto file = database_->OpenFile("SECTEUR");
  const std::pair<std::string, std::string> kIds[] = {{"", ""}, {"a\xFE", "a\xEF\xBF\xBD"}};
  for (const auto& [id, named] : kIds) {
    try {
      file->write(id, record("x"));
      ADD_FAILURE() << "written";
    } catch (const DbError& error) {
      EXPECT_EQ(error.number(), kStoreFailure);
      EXPECT_EQ(error.what(), "L'enregistrement n'a pas été écrit : son identifiant « " + named +
                                  " » doit être un texte non vide. Vérifiez les codes saisis.");
    }
    EXPECT_EQ(file->find(id), std::nullopt);
    EXPECT_NO_THROW(file->DeleteRecord(id));
  }
  EXPECT_EQ(select("SSELECT SECTEUR", "SECTEUR"), Rows());
}

struct SelectionCase {
  const char* statement;
  const char* attributes;
  Rows rows;
};

TEST_P(StoreContract, SelectsTheRecordsThatTheStatementMeans) {
  const char* const kRecords[][2] = {
      {"01399", "Aide^2^^^+"},         {"01400", "école^10^x|y"}, {"01450", "Ecole^02^x~z"},
      {"01499A", "eau^2^y"},           {"01500", "École^^|y"},    {"02400", "\"Guillemets\"^9^^[x]"},
      {"0240001400", "zéro^2 ^x^a b"}, {"é01400", "Œuvre^010"},
  };
  for (const auto& [id, text] : kRecords) put("F", id, text);
  const Rows kAll = {"01399", "01400", "01450", "01499A", "01500", "02400", "0240001400", "é01400"};
  const SelectionCase kCases[] = {
      {"SSELECT F", "0", kAll},
      {"SSELECT F 0 PAR 0", "0", kAll},
      {"SSELECT F 7", "0", kAll},
      {"SSELECT F AVEC 0 = \"01400\"", "0 1", {"01400|école"}},
      {"SSELECT F AVEC @ID = 01400", "0", {"01400"}},
      {"SSELECT F AVEC 0 = \"[01400\"", "0", {"01400", "0240001400", "é01400"}},
      {"SSELECT F AVEC 0 = \"014]\"", "0", {"01400", "01450", "01499A"}},
      {"SSELECT F AVEC 0 = \"[0240]\"", "0", {"02400", "0240001400"}},
      {"SSELECT F AVEC 0 = \"[\"", "0", kAll},
      {"SSELECT F AVEC 0 = \"\"", "0", {}},
      {"SSELECT F AVEC 0 # \"0]\"", "0", {"é01400"}},
      {"SSELECT F AVEC 0 <> \"0]\"", "0", {"é01400"}},
      // Bounds: two numbers by value, else as texts; a "[" is dropped.
      {"SSELECT F AVEC 0 = \"01]\" AND AVEC 0 >= \"01[400\" AND < \"01[500\"",
       "0",
       {"01400", "01450", "01499A"}},
      {"SSELECT F AVEC 0 = \"01]\" AND AVEC 0 < \"01[400\" OR >= \"01[500\"", "0", {"01399", "01500"}},
      {"SSELECT F AVEC 2 >= \"2\"",
       "0",
       {"01399", "01400", "01450", "01499A", "02400", "0240001400", "é01400"}},
      {"SSELECT F AVEC 2 >= 9", "0", {"01400", "02400", "é01400"}},
      {"SSELECT F AVEC 2 < 2", "0", {"01500"}},
      // A missing attribute is "", any of the values or subvalues will do.
      {"SSELECT F AVEC 9 = \"\"", "0", kAll},
      {"SSELECT F AVEC 9 # \"1\"", "0", kAll},
      {"SSELECT F AVEC 3 = \"y\"", "0", {"01400", "01499A", "01500"}},
      {"SSELECT F AVEC 3 = \"z\"", "0", {"01450"}},
      {"SSELECT F AVEC 3 # \"x\"", "0", {"01399", "01400", "01450", "01499A", "01500", "02400", "é01400"}},
      {"SSELECT F AVEC 3 = \"\" AND AVEC 3 = y", "0", {"01500"}},
      // Texts are what they are: quotes doubled, brackets literal in a bare value, characters whole.
      {"SSELECT F AVEC 1 = \"\"\"Guillemets\"\"\"", "0", {"02400"}},
      {"SSELECT F AVEC 4 = [x]", "0", {"02400"}},
      {"SSELECT F AVEC 4 = \"a b\"", "0", {"0240001400"}},
      {"SSELECT F AVEC 1 = \"[e\"", "0", {"01399", "01400", "01450", "01500", "é01400"}},
      {"SSELECT F AVEC 5 = \"+\" AND AVEC 0 # \"805\" AND AVEC 0 # \"812\" AND AVEC 18 # \"1\" PAR 1",
       "0",
       {"01399"}},
      // AND before OR; a chain on one designator before both.
      {"SSELECT F AVEC 0 = 01399 OR AVEC 0 = 01400 AND AVEC 2 = 99", "0", {"01399"}},
      {"SSELECT F AVEC 0 = 01399 OR = 01400 AND AVEC 2 = 10", "0", {"01400"}},
      {"SSELECT F AVEC 0 < 01400 OR >= 01450 AND < 01500", "0", {"01399", "01450", "01499A"}},
      // Order, and the shape of the rows.
      {"SSELECT F PAR 1", "1", {"\"Guillemets\"", "Aide", "eau", "Ecole", "école", "École", "Œuvre", "zéro"}},
      {"SSELECT F PAR-DECR 3 PAR-DECR 0",
       "0",
       {"01499A", "01450", "01400", "0240001400", "01500", "é01400", "02400", "01399"}},
      {"SSELECT F AVEC 3 = z", "3 0 9 1 3", {"x~z|01450||Ecole|x~z"}},
      {"SSELECT F AVEC 0 = 01400", "3", {"x~y"}},
  };
  for (const auto& selection : kCases) {
    SCOPED_TRACE(selection.statement);
    EXPECT_EQ(select(selection.statement, "F", selection.attributes), selection.rows);
    EXPECT_EQ(select(selection.statement, "F", selection.attributes), selection.rows) << "asked again";
  }
}

TEST_P(StoreContract, YearsOfEachEntityComeLatestFirstFromThePersonnelFile) {
  for (const char* id : {"000020072024", "000010072025", "000010072026", "000010012026", "00003007202",
                         "00002", "éèêëà0072026"}) {
    put("VELANORO", id, "MARTIN");
  }
  database_->name_id_part("VELANORO", "Annee", {.first = 1, .count = 5});
  database_->name_id_part("VELANORO", "CodeAsso", {.first = 6, .count = 3});
  database_->name_id_part("VELANORO", "Annee", {.first = 9});
  EXPECT_EQ(select("SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", "VELANORO"),
            Rows({"00002", "000010012026", "000010072026", "éèêëà0072026", "000010072025", "000020072024",
                  "00003007202"}));
  EXPECT_EQ(select("SSELECT VELANORO AVEC CodeAsso = \"007\" AND AVEC Annee >= 2026", "VELANORO"),
            Rows({"000010072026", "éèêëà0072026"}));
}

TEST_P(StoreContract, ASelectionSeesEveryWriteBeforeIt) {
  const auto file = database_->OpenFile("VELANORO");
  const auto cards = [&] {
    return select("SSELECT VELANORO AVEC 0 = \"[0072026\" PAR 1", "VELANORO", "0 1");
  };
  EXPECT_EQ(cards(), Rows());
  file->write("000010072026", record("MARTIN"));
  file->write("000020072026", record("DUPONT"));
  file->write("000020072025", record("DUPONT"));
  const DbResult kept = database_->Select(DbQuery("SSELECT VELANORO", "VELANORO", "0").encoded());
  EXPECT_EQ(cards(), Rows({"000020072026|DUPONT", "000010072026|MARTIN"}));
  file->write("000020072026", record("ZOLA"));
  EXPECT_EQ(cards(), Rows({"000010072026|MARTIN", "000020072026|ZOLA"}));
  file->DeleteRecord("000010072026");
  EXPECT_EQ(cards(), Rows({"000020072026|ZOLA"}));
  file->write("000030072026", record("ZOLA"));
  EXPECT_EQ(cards(), Rows({"000020072026|ZOLA", "000030072026|ZOLA"}));
  EXPECT_EQ(kept.DCount(), 3) << "a result does not change when the store does";
}

TEST_P(StoreContract, AMalformedRequestIsRefusedWithASentence) {
  struct {
    const char *statement, *file, *attributes, *sentence;
  } const kCases[] = {
      {"SSELECT F AVEC 0 > 1", "F", "0",
       "Sélection illisible au caractère 18 : un opérateur (=, #, <>, >=, <) était attendu."},
      {"SSELECT F", "G", "0",
       "Sélection illisible au caractère 9 : le fichier de la demande, « G », était attendu."},
      {"SSELECT F", "", "0",
       "Sélection illisible au caractère 9 : le fichier de la demande, «  », était attendu."},
      {"SSELECT F", "F", "0  1",
       "Liste d'attributs illisible au caractère 3 : un numéro d'attribut était attendu."},
  };
  for (const auto& bad : kCases) {
    SCOPED_TRACE(bad.sentence);
    try {
      select(bad.statement, bad.file, bad.attributes);
      ADD_FAILURE() << "accepted";
    } catch (const DbError& error) {
      EXPECT_EQ(error.number(), kBadStatement);
      EXPECT_STREQ(error.what(), bad.sentence);
    }
  }
}

TEST_P(StoreContract, ATypedTextNeverChangesTheShapeOfAStatement) {
  const std::string typed = "x\" OR AVEC 0 # \"";
  put("COMMUNES", "1", typed);
  put("COMMUNES", "2", "Lyon");
  EXPECT_EQ(select("SSELECT COMMUNES AVEC 1 = " + store::quoted(typed), "COMMUNES"), Rows({"1"}));
}

TEST_P(StoreContract, ABracketInATextThatIsLookedUpIsAnOrdinaryCharacter) {
  const Rows kIds = {"",   "0",  "[",   "[0",  "[[0",  "[]",     "]",    "]]",
                     "0[", "0]", "0[1", "[0]", "a]0[", "01[400", "01500"};
  for (const std::string& id : kIds) put("F", "x" + id + "x", id);
  const auto found = [&](const std::string& criterion) {
    auto texts = select("SSELECT F AVEC 1 " + criterion, "F", "1");
    std::sort(texts.begin(), texts.end());
    return texts;
  };
  const auto those = [&](const auto& fits) {
    Rows rows;
    std::copy_if(kIds.begin(), kIds.end(), std::back_inserter(rows), fits);
    std::sort(rows.begin(), rows.end());
    return rows;
  };
  for (const std::string& text : kIds) {
    SCOPED_TRACE(text);
    EXPECT_EQ(found("= " + store::quoted(text)), Rows{text});
    EXPECT_EQ(found("= " + store::quoted_beginning(text)),
              those([&](const auto& id) { return id.starts_with(text); }));
    EXPECT_EQ(found("= " + store::quoted_end(text)),
              those([&](const auto& id) { return id.ends_with(text); }));
    EXPECT_EQ(found("< \"x[" + store::escaped(text) + "\""),
              those([&](const auto& id) { return id < "x" + text; }));
  }
}

TEST_P(StoreContract, AWriteThatExpectsNothingThereNeverTakesThePlaceOfARecord) {
  const auto file = database_->OpenFile("SECTEUR");
  file->write("001", record("Aide"), Expected::absent());
  try {
    file->write("001", record("Soin"), Expected::absent());
    ADD_FAILURE() << "written";
  } catch (const DbError& error) {
    EXPECT_EQ(error.number(), kConflict);
  }
  EXPECT_EQ(shown(file->Read("001")), "Aide");
  file->DeleteRecord("001");
  file->write("001", record("Soin"), Expected::absent());
  file->write("001", record("Autre"), Expected::anything());
  EXPECT_EQ(shown(file->Read("001")), "Autre");
}

TEST_P(StoreContract, AWriteOrADeletionThatExpectsARecordNeverTouchesAnother) {
  const auto file = database_->OpenFile("SECTEUR");
  const auto number = [](const std::function<void()>& act) {
    try {
      act();
      return 0u;
    } catch (const DbError& error) {
      return error.number();
    }
  };
  const auto mine = Expected::record(record("Aide^1|2"));
  const struct {
    const char* what;
    std::optional<std::string> stored;
    std::uint32_t refused;
  } cases[] = {{"as it was", "Aide^1|2", 0},
               {"changed", "Aide^1|3", kConflict},
               {"deleted", std::nullopt, kConflict},
               {"longer", "Aide^1|2^", kConflict}};
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    const auto lay = [&] {
      file->DeleteRecord("001");
      if (test.stored) file->write("001", record(*test.stored));
    };
    const auto stored = [&] {
      const auto found = file->find("001");
      return found ? std::optional(shown(*found)) : std::nullopt;
    };
    lay();
    EXPECT_EQ(number([&] { file->write("001", record("Soin"), mine); }), test.refused);
    EXPECT_EQ(stored(), test.refused == 0 ? "Soin" : test.stored);
    lay();
    EXPECT_EQ(number([&] { file->remove("001", mine); }), test.refused);
    EXPECT_EQ(stored(), test.refused == 0 ? std::nullopt : test.stored);
  }
}

TEST_P(StoreContract, AChangeThatFailsLeavesEverythingAsItWas) {
  put("SECTEUR", "001", "Aide");
  put("SECTEUR", "002", "Soin");
  EXPECT_EQ(select("SSELECT SECTEUR PAR 1", "SECTEUR", "1"), Rows({"Aide", "Soin"}));
  const auto change = [&](bool fails) {
    database_->in_one_change([&] {
      put("SECTEUR", "001", "x");
      put("SECTEUR", "001", "y");
      put("SECTEUR", "003", "z");
      database_->OpenFile("SECTEUR")->DeleteRecord("002");
      database_->in_one_change([&] { put("PROFIL", "001", "Neuf"); });
      EXPECT_EQ(select("SSELECT SECTEUR PAR 0", "SECTEUR", "1"), Rows({"y", "z"}));
      if (fails) throw std::runtime_error("no");
    });
  };
  EXPECT_THROW(change(true), std::runtime_error);
  EXPECT_EQ(select("SSELECT SECTEUR PAR 1", "SECTEUR", "1"), Rows({"Aide", "Soin"}));
  EXPECT_EQ(select("SSELECT SECTEUR PAR 0", "SECTEUR", "1"), Rows({"Aide", "Soin"}))
      << "asked within it, too";
  EXPECT_EQ(select("SSELECT PROFIL", "PROFIL"), Rows());
  change(false);
  database_->in_one_view([&] {
    EXPECT_EQ(select("SSELECT SECTEUR PAR 0", "SECTEUR", "1"), Rows({"y", "z"}));
    EXPECT_EQ(select("SSELECT PROFIL", "PROFIL"), Rows({"001"}));
  });
}

}  // namespace
}  // namespace velanor::store
