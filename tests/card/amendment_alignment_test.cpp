// The eight columns, the item attributes and what a save stores, held against a list of lines of
// our own through thousands of random commands.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "card/record/element.h"
#include "support/office.h"
#include "velanor/date.h"

namespace velanor::test {
namespace {

struct Line {
  int day = 0;
  std::string qualification;
  std::string rate;                  // as shown
  std::vector<std::string> amounts;  // hundredths, one item each
};

class RandomLines : public testing::Test {
 protected:
  RandomLines() {
    load(database_, "lib/cards.play");
    store::DbRecord card = *database_.find("VELANORO", kId);
    for (int a : {12, 13, 14, 15, 16, 17, 18, 38, 30, 31, 32, 33}) card.set(a, "");
    database_.put("VELANORO", kId, card);
    office_.component.init();
    must(office_.hand.type(ui_.Txt_Asso, "001"));
    open();
  }

  static void must(const screen::Refusal& why) { ASSERT_EQ(why, ""); }
  void open() { must(office_.hand.type(ui_.Txt_Aidant, "00010")); }
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  int free_day() {
    for (;;) {
      const int day = 20455 + below(900);
      if (std::none_of(lines_.begin(), lines_.end(), [&](const Line& line) { return line.day == day; }))
        return day;
    }
  }
  void type_over(screen::TextBox& box, const std::string& text) {
    must(office_.hand.replace_text(box, ""));
    must(office_.hand.type(box, text));
  }
  void pick_qualification(const std::string& code) {
    must(office_.hand.drop_down(ui_.Cbo_Qualif));
    must(office_.hand.choose(ui_.Cbo_Qualif, ui_.Cbo_Qualif.find(code)));
  }
  void sort() {
    std::sort(lines_.begin(), lines_.end(), [](const Line& a, const Line& b) { return a.day < b.day; });
  }

  void add(bool keep) {
    Line line{free_day(), below(2) == 0 ? "AD" : "RS", std::to_string(10 + below(80)) + ",500", {}};
    must(office_.hand.click(ui_.Cmd_AjDetail));
    type_over(ui_.Txt_DatEffet, entry::date_text(entry::date_of(line.day)));
    must(office_.hand.focus(ui_.Txt_TxHor));
    type_over(ui_.Txt_DatDepGrille, "");
    type_over(ui_.Txt_TxHor, line.rate);
    pick_qualification(line.qualification);
    must(office_.hand.click(keep ? ui_.Cmd_OkDetail : ui_.Cmd_AnnulDetail));
    if (keep) lines_.push_back(std::move(line));
    sort();
  }

  void edit(bool keep) {
    const int at = below(static_cast<int>(lines_.size()));
    Line line = lines_[static_cast<std::size_t>(at)];
    must(office_.hand.double_click(*ui_.amendment_lists()[static_cast<std::size_t>(below(8))], at));
    line.rate = std::to_string(10 + below(80)) + ",250";
    type_over(ui_.Txt_TxHor, line.rate);
    if (below(2) == 0) {
      line.day = free_day();
      type_over(ui_.Txt_DatEffet, entry::date_text(entry::date_of(line.day)));
    }
    must(office_.hand.click(keep ? ui_.Cmd_OkDetail : ui_.Cmd_AnnulDetail));
    if (keep) lines_[static_cast<std::size_t>(at)] = line;
    sort();
  }

  void remove() {
    const int at = below(static_cast<int>(lines_.size()));
    must(office_.hand.pick(ui_.Lst_DureMens, at));
    must(office_.hand.click(ui_.Cmd_SuppDetail));
    lines_.erase(lines_.begin() + at);
  }

  // An item of a fixed amount; the new one goes in before those of the same label.
  void add_item() {
    const int at = below(static_cast<int>(lines_.size()));
    must(office_.hand.pick(ui_.Lst_Qualif, at));
    must(office_.hand.click(ui_.Cmd_Detail));
    auto& form = dynamic_cast<forms::ItemScreen&>(office_.component.screen().top());
    const int euros = 1 + below(900);
    must(office_.hand.click(form.Cmd_Ajouter));
    must(office_.hand.type(form.Txt_Code, "003"));
    must(office_.hand.type(form.Txt_Montant, std::to_string(euros)));
    must(office_.hand.click(form.Cmd_OK));
    must(office_.hand.click(form.Cmd_Retour));
    auto& amounts = lines_[static_cast<std::size_t>(at)].amounts;
    amounts.push_back(std::to_string(euros * 100));
  }

  void expect_aligned(const store::DbRecord& record, bool saved) {
    for (screen::ListBox* list : ui_.amendment_lists())
      ASSERT_EQ(list->count(), static_cast<int>(saved ? 0 : lines_.size()));
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const int value = static_cast<int>(i) + 1;
      const Line& line = lines_[i];
      if (saved) {
        ASSERT_EQ(element(record, card::kEffective, value), std::to_string(line.day));
        ASSERT_EQ(element(record, card::kQualification, value), line.qualification);
        ASSERT_EQ(element(record, card::kHourlyRate, value), line.rate.substr(0, 2) + line.rate.substr(3));
        ASSERT_EQ(element(record, card::kNewMeasure, value), "N");
      } else {
        ASSERT_EQ(ui_.Lst_DatEffet.line(static_cast<int>(i)), entry::date_text(entry::date_of(line.day)));
        ASSERT_EQ(ui_.Lst_Qualif.line(static_cast<int>(i)), line.qualification);
        ASSERT_EQ(ui_.Lst_TxHor.line(static_cast<int>(i)), line.rate);
      }
      for (std::size_t n = 0; n <= line.amounts.size(); ++n) {
        const bool there = n < line.amounts.size();
        ASSERT_EQ(element(record, card::kItemCode, value, static_cast<int>(n) + 1), there ? "003" : "");
        ASSERT_EQ(element(record, card::kItemAmount, value, static_cast<int>(n) + 1),
                  there ? line.amounts[n] : "");
      }
    }
    for (const card::Field& column : card::kItemColumns) {
      for (int value = static_cast<int>(lines_.size()) + 1; value <= record.Count(column.number); ++value)
        ASSERT_EQ(element(record, column, value), "") << "items beyond the last line";
    }
  }

  // Saves where the card's rules let it, and opens it again.
  void save() {
    const auto without =
        std::any_of(lines_.begin(), lines_.end(), [](const Line& l) { return l.amounts.empty(); });
    if (without || lines_.empty()) return;
    office_.toolkit.messages.clear();
    must(office_.hand.click(ui_.Cmd_OK));
    if (!office_.toolkit.messages.empty()) return;
    ++saved_;
    ASSERT_NO_FATAL_FAILURE(expect_aligned(*database_.find("VELANORO", kId), true));
    open();
  }

  static constexpr const char* kId = "000100012026";
  store::MemoryDatabase database_;
  Office office_{database_};
  card::CardScreen& ui_ = office_.ui;
  std::mt19937 random_{20260101};
  std::vector<Line> lines_;
  int saved_ = 0;
};

TEST_F(RandomLines, LinesColumnsAndItemsStayTogetherThroughRandomCommands) {
  constexpr int kCommands = 30'000;
  constexpr std::size_t kMost = 12;
  for (int i = 0; i < kCommands; ++i) {
    SCOPED_TRACE(i);
    const int command = below(10);
    if (lines_.empty() || (command < 2 && lines_.size() < kMost)) {
      add(true);
    } else if (command < 3) {
      add(false);
    } else if (command < 5) {
      edit(command == 3);
    } else if (command == 5) {
      remove();
    } else if (command < 9) {
      add_item();
    } else {
      save();
    }
    ASSERT_NO_FATAL_FAILURE(expect_aligned(office_.component.card_in_hand(), false));
  }
  EXPECT_GT(saved_, 100);
}

}  // namespace
}  // namespace velanor::test
