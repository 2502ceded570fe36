// Cards and tables on paper, judged by reading the files back as anybody would.
#include "app/velanor/printing.h"

#include <QFileDialog>
#include <QMenu>
#include <QTableView>
#include <filesystem>
#include <fstream>

#include "app/clerk.h"
#include "app/velanor/card_batch.h"
#include "app/velanor/employees_dock.h"
#include "app/velanor/paper/pdf.h"
#include "app/velanor/paper/printer.h"
#include "app/velanorctl/open_store.h"
#include "demo/demo.h"
#include "sqlite/temporary_folder.h"
#include "support/run_program.h"
#include "velanor/hand.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

using screen::Answer;
namespace fs = std::filesystem;

int count(const std::string& text, const std::string& part) {
  int found = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
  return found;
}

class OnPaper : public testing::Test {
 protected:
  OnPaper() {
    database_.in_one_change([this] {
      StoreSink sink([&](auto file, auto id, const auto& record) { database_.put(file, id, record); });
      demo::fill(sink);
    });
    window_.set_source(QString::fromStdString(folder_.file("base")));
    window_.resize(1800, 700);
    window_.show();
    window_.activateWindow();
    QCoreApplication::processEvents();
    window_.start();
    clerk_.type("Txt_Asso", "001");
    settle();
  }

  QAction& action(const QString& text) {
    for (QAction* action : window_.findChildren<QAction*>()) {
      if (action->text().remove('&').startsWith(text)) return *action;
    }
    throw std::logic_error("there is no such entry");
  }
  void filter(const QString& typed) {
    window_.findChild<QLineEdit*>("employees_filter")->setText(typed);
    settle();
  }
  // Gives a command and the name of its file; what is told then.
  std::string write(const QString& command, const std::string& name) {
    window_.tell({});
    action(command).trigger();
    QFileDialog* dialog = nullptr;
    EXPECT_TRUE(until([&] { return (dialog = window_.findChild<QFileDialog*>()) != nullptr; }))
        << clerk_.status();
    if (!dialog) return "no dialog";
    window_.tell({});
    emit dialog->fileSelected(QString::fromStdString(file(name)));
    dialog->close();
    EXPECT_TRUE(until([&] { return !clerk_.status().empty(); }));
    settle();
    return clerk_.status();
  }
  std::string file(const std::string& name) const { return folder_.file(name); }
  std::string read(const std::string& tool, const std::string& name, const std::string& options = "") const {
    const auto outcome =
        test::run_program(tool + " " + options + " '" + file(name) + "'" + (tool == "pdftotext" ? " -" : ""));
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    return outcome.output;
  }
  std::string text(const std::string& name, int page = 0) const {
    const std::string of = std::to_string(page);
    return read("pdftotext", name, "-layout" + (page > 0 ? " -f " + of + " -l " + of : std::string()));
  }
  int pages(const std::string& name) const {
    const std::string info = read("pdfinfo", name);
    return std::stoi(info.substr(info.find("Pages:") + 6));
  }

  TemporaryFolder folder_;
  store::SqliteDatabase database_{folder_.file("base"), {.missing = store::SqliteDatabase::Missing::kCreate}};
  MainWindow window_{database_};
  Clerk clerk_{window_};
};

TEST_F(OnPaper, TheOpenCardCanBeReadSearchedAndCopied) {
  clerk_.open_card("00001");
  EXPECT_EQ(write("Fiche en PDF", "f.pdf"), "« " + file("f.pdf") + " » est écrit (1 page).");
  const std::string all = text("f.pdf");
  for (const char* part :
       {"001 Aide aux Familles du Val", "Année budgétaire 2026", "Fiche 00001 HUET FABIENNE",
        "Horaire de l'établissement", "Indemnité kilométrique automobile", "Droit commun", "1201,20",
        "Intervention employé degré 1", "base ", "Imprimé le ", "page 1 / 1"})
    EXPECT_NE(all.find(part), std::string::npos) << part << "\n" << all;
  EXPECT_EQ(all.find("NON ENREGISTRÉ"), std::string::npos);
  // As it is copied: a value behind its label, an amendment behind its headings.
  const std::string raw = read("pdftotext", "f.pdf", "-raw");
  EXPECT_NE(raw.find("Commune Charmont-en-Beauce"), std::string::npos) << raw;
  EXPECT_NE(raw.find("01/10/2021 001 Heures normales 96,64"), std::string::npos) << raw;
  const std::string fonts = read("pdffonts", "f.pdf");
  EXPECT_EQ(count(fonts, " yes "), count(fonts, "Liberation") * 2) << "embedded, with its characters\n"
                                                                   << fonts;
  EXPECT_GE(count(fonts, "Liberation"), 2);
  EXPECT_EQ(fs::status(file("f.pdf")).permissions(), fs::perms(0600));
}

TEST_F(OnPaper, TheCardIsAsItIsTypedAndSaysThatItIsNotSaved) {
  clerk_.open_card("00001");
  clerk_.put("Txt_NomAidant", "DURAND ZOÉ");
  write("Fiche en PDF", "f.pdf");
  EXPECT_NE(text("f.pdf").find("Fiche 00001 DURAND ZOÉ"), std::string::npos);
  EXPECT_NE(text("f.pdf").find("NON ENREGISTRÉ"), std::string::npos);
}

TEST_F(OnPaper, ALongCardRepeatsItsHeadingsAndCutsNoLine) {
  store::DbRecord card = database_.OpenFile("VELANORO")->Read("000010012026");
  constexpr int kMany = 150;
  const int first = *entry::day_number({1, 1, 2000});
  for (int line = 1; line <= kMany; ++line) {
    card.set(12, line, std::to_string(first + line));
    card.set(16, line, "C" + std::to_string(line % 10));
    card.set(30, line, 1, "001");
    card.set(31, line, 1, std::to_string(1000 + line));
  }
  card.set(1, std::string(3000, 'W'));
  database_.put("VELANORO", "000010012026", card);
  clerk_.open_card("00001");
  write("Fiche en PDF", "f.pdf");
  const int last = pages("f.pdf");
  ASSERT_GE(last, 5);
  int amendments = 0, items = 0;
  for (int page = 1; page <= last; ++page) {
    const std::string part = text("f.pdf", page);
    const int here = count(part, " NON "), of_items = count(part, " Heures normales");
    EXPECT_TRUE(here == 0 || part.find("Qualification") < part.find(" NON ")) << part;
    EXPECT_TRUE(of_items == 0 || part.find("Libellé") < part.find(" Heures normales")) << part;
    EXPECT_NE(part.find("page " + std::to_string(page) + " / " + std::to_string(last)), std::string::npos);
    amendments += here;
    items += of_items;
  }
  EXPECT_EQ(amendments, kMany - 1) << "the second is a new measure";
  EXPECT_EQ(items, kMany);
}

TEST_F(OnPaper, TheTableIsAsItIsFilteredSortedAndArranged) {
  filter("huet");
  action("Code").setChecked(false);
  window_.findChild<QTableView*>("employees_table")->sortByColumn(1, Qt::DescendingOrder);
  write("Tableau en PDF", "t.pdf");
  const std::string all = text("t.pdf");
  EXPECT_NE(all.find("3 sur 177 – filtre : huet"), std::string::npos) << all;
  EXPECT_LT(all.find("HUET PAULINE"), all.find("HUET FABIENNE"));
  EXPECT_EQ(all.find("00001"), std::string::npos);
  EXPECT_NE(all.find("complète"), std::string::npos) << "all cells are filled in";
  EXPECT_NE(read("pdfinfo", "t.pdf").find("595 x 842"), std::string::npos);
  for (const char* column : {"Établissement", "Secteur", "Convention", "Personnel", "Début"})
    action(column).setChecked(true);
  filter("");
  write("Tableau en PDF", "w.pdf");
  EXPECT_NE(read("pdfinfo", "w.pdf").find("842 x 595"), std::string::npos);
  EXPECT_EQ(count(text("w.pdf"), "Personnel"), pages("w.pdf"));
}

TEST_F(OnPaper, TheCardsThatAreShownComeWithAListOfTheirPages) {
  filter("huet");
  const std::string told = write("Fiches affichées", "b.pdf");
  EXPECT_EQ(told.find("3 fiches, "), 0U) << told;
  const std::string list = text("b.pdf", 1);
  for (const char* card : {"00001", "00014", "00027"}) {
    const auto line = list.substr(list.find(card), list.find('\n', list.find(card)) - list.find(card));
    const int page = std::stoi(line.substr(line.find_last_of(' ')));
    EXPECT_EQ(text("b.pdf", page).find("Fiche " + std::string(card)) != std::string::npos, true) << line;
  }
}

// The clerk goes on meanwhile, and what is given up leaves nothing.
TEST_F(OnPaper, ManyCardsLetTheClerkWorkAndCanBeGivenUp) {
  clerk_.open_card("00001");
  window_.tell({});
  action("Fiches affichées").trigger();
  QFileDialog* dialog = nullptr;
  ASSERT_TRUE(until([&] { return (dialog = window_.findChild<QFileDialog*>()) != nullptr; }));
  emit dialog->fileSelected(QString::fromStdString(file("b.pdf")));
  dialog->close();
  QCoreApplication::processEvents();
  clerk_.type("Txt_NomAidant", "ABC");
  EXPECT_EQ(clerk_.widget<QLineEdit>("Txt_NomAidant").text().toStdString(), "HUET FABIENNEABC");
  auto* batch = window_.findChild<CardBatch*>();
  ASSERT_NE(batch, nullptr) << "it goes on";
  clerk_.answer_next(Answer::No);
  clerk_.click("Cmd_Annul");
  EXPECT_EQ(window_.findChild<CardBatch*>(), batch);
  action("Arrêter le PDF").trigger();
  settle();
  EXPECT_EQ(window_.findChild<CardBatch*>(), nullptr);
  EXPECT_EQ(clerk_.status(), "Le PDF des fiches est abandonné.");
  EXPECT_FALSE(fs::exists(file("b.pdf")));
}

TEST_F(OnPaper, AFileTakesTheOnlyPlaceOfAnOlderOne) {
  clerk_.open_card("00001");
  fs::create_symlink(file("target"), file("link.pdf"));
  std::ofstream(file("target")) << "theirs";
  EXPECT_EQ(write("Fiche en PDF", "link.pdf"),
            "Le document « " + file("link.pdf") +
                " » n'a pas été écrit : c'est un lien. Donnez le nom du fichier lui-même.");
  EXPECT_EQ(fs::file_size(file("target")), 6U);
  EXPECT_NE(write("Fiche en PDF", "base").find("c'est une base de fiches"), std::string::npos);
  EXPECT_TRUE(store::SqliteDatabase::is_at(file("base")));
  std::ofstream(file("old.pdf")) << "old";
  write("Fiche en PDF", "old.pdf");
  EXPECT_EQ(pages("old.pdf"), 1);
  EXPECT_NE(write("Fiche en PDF", "none/f.pdf").find("n'"), std::string::npos);
  for (const auto& entry : fs::directory_iterator(folder_.file("")))
    EXPECT_EQ(entry.path().string().find("partiel"), std::string::npos) << entry.path();
}

TEST_F(OnPaper, NothingIsOfferedThatCannotBeDone) {
  EXPECT_FALSE(action("Imprimer la fiche").isEnabled()) << "none is open";
  EXPECT_TRUE(action("Tableau en PDF").isEnabled());
  clerk_.open_card("00001");
  EXPECT_TRUE(action("Imprimer la fiche").isEnabled());
  clerk_.at_next_message([&](qt::MessageSheet& sheet) {
    for (const char* entry : {"Imprimer la fiche", "Fiche en PDF", "Tableau en PDF", "Fiches affichées"})
      EXPECT_FALSE(action(entry).isEnabled()) << entry;
    sheet.button(Answer::No)->click();
  });
  clerk_.click("Cmd_Supp");
  settle();
  EXPECT_TRUE(action("Fiche en PDF").isEnabled());
  auto& amendments = static_cast<screen::ListBox&>(*window_.component().screen().base().find("Lst_DatEffet"));
  amendments.set_index(0);
  clerk_.click("Cmd_Detail");
  ASSERT_NE(window_.component().open_sheet(), nullptr);
  action("Fiche en PDF").trigger();
  EXPECT_EQ(clerk_.status(), "Terminez d'abord ce qui est ouvert sur la fiche.");
  EXPECT_EQ(window_.findChild<QFileDialog*>(), nullptr);
}

TEST_F(OnPaper, APrinterTakesTheChosenPagesAndThePreviewCountsThem) {
  const paper::Document document{"Trois pages", paper::kUpright, [](const QSizeF& size) {
                                   std::vector<paper::Page> pages(3);
                                   paper::put_feet(pages, size, {"base", "jour"});
                                   return pages;
                                 }};
  QPrinter printer(QPrinter::HighResolution);
  paper::set_up(printer, document);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(QString::fromStdString(file("p.pdf")));
  printer.setPrintRange(QPrinter::PageRange);
  printer.setFromTo(2, 3);
  ASSERT_TRUE(paper::print(printer, document));
  EXPECT_EQ(pages("p.pdf"), 2);
  EXPECT_NE(text("p.pdf", 1).find("page 2 / 3"), std::string::npos);
  clerk_.open_card("00001");
  action("Aperçu de la fiche").trigger();
  auto* preview = window_.findChild<paper::Preview*>();
  ASSERT_NE(preview, nullptr);
  auto* number = preview->findChild<QLabel*>("preview_number");
  EXPECT_TRUE(until([&] { return number->text() == "Page 1 sur 1"; })) << number->text().toStdString();
}

}  // namespace
}  // namespace velanor::app
