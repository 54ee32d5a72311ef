// Registrations of threads and their cells.
#include "simulator/gpib/thread_table.h"

#include <gtest/gtest.h>

namespace kesp::simulator::gpib {
namespace {

constexpr Outcome kOutcome{0x2100, 6, 42};

// Four cells of a thread.
struct CellsOfThread {
  std::array<std::int32_t, 4> values{-1, -1, -1, -1};
  Cells cells{&values[0], &values[1], &values[2], &values[3]};
};

class ThreadTableTest : public testing::Test {
 protected:
  ThreadTable table_{{}};
  CellsOfThread own_;
  CellsOfThread other_;
  const std::array<std::int32_t, 4> untouched_{-1, -1, -1, -1};
  const std::array<std::int32_t, 4> reported_{0x2100, 6, 42, 42};
};

TEST_F(ThreadTableTest, Ordinals_CountFromOneAsThreadsCome) {
  EXPECT_EQ(table_.OrdinalOf(500), 1U);
  EXPECT_EQ(table_.OrdinalOf(3), 2U);
  EXPECT_EQ(table_.OrdinalOf(500), 1U);
  table_.End(500);
  EXPECT_EQ(table_.OrdinalOf(500), 3U) << "another thread with an identifier used before";
}

TEST_F(ThreadTableTest, Report_GoesToRegisteredCellsOfThatThread) {
  EXPECT_EQ(table_.Register(1, own_.cells), 0);
  EXPECT_EQ(table_.Register(2, other_.cells), 0);
  table_.Report(1, kOutcome);
  EXPECT_EQ(own_.values, reported_);
  EXPECT_EQ(other_.values, untouched_);
}

TEST_F(ThreadTableTest, Register_WithTheSameCells_SucceedsAgain) {
  table_.Register(1, own_.cells);
  EXPECT_EQ(table_.Register(1, own_.cells), 0);
}

TEST_F(ThreadTableTest, Register_WithOtherCells_KeepsTheFirst) {
  table_.Register(1, own_.cells);
  EXPECT_EQ(table_.Register(1, other_.cells), 1);
  table_.Report(1, kOutcome);
  EXPECT_EQ(own_.values, reported_);
  EXPECT_EQ(other_.values, untouched_);
}

TEST_F(ThreadTableTest, Register_WithANullCell_IsRefused) {
  for (std::size_t i = 0; i < 4; ++i) {
    Cells cells = own_.cells;
    cells.at(i) = nullptr;
    EXPECT_EQ(table_.Register(1, cells), 3);
  }
  table_.Report(1, kOutcome);
  EXPECT_EQ(own_.values, untouched_);
}

TEST_F(ThreadTableTest, AfterUnregisterOrEnd_NothingIsWritten) {
  table_.Register(1, own_.cells);
  EXPECT_TRUE(table_.Unregister(1));
  EXPECT_FALSE(table_.Unregister(1));
  table_.Report(1, kOutcome);
  table_.Register(2, other_.cells);
  EXPECT_EQ(table_.End(2), 2U);
  EXPECT_EQ(table_.End(2), std::nullopt);
  table_.Report(2, kOutcome);
  EXPECT_EQ(own_.values, untouched_);
  EXPECT_EQ(other_.values, untouched_);
}

TEST_F(ThreadTableTest, End_OfAThreadThatIsNotRegistered_HasNoOrdinal) {
  table_.OrdinalOf(1);
  EXPECT_EQ(table_.End(1), std::nullopt);
}

TEST_F(ThreadTableTest, ForgetRegistrations_LeavesNone) {
  table_.Register(1, own_.cells);
  table_.ForgetRegistrations();
  table_.Report(1, kOutcome);
  EXPECT_EQ(own_.values, untouched_);
}

TEST_F(ThreadTableTest, ScriptedResults_ComeFirst) {
  ThreadTable table({2, 0, 1});
  EXPECT_EQ(table.Register(1, own_.cells), 2);
  EXPECT_FALSE(table.Unregister(1)) << "2 does not register";
  EXPECT_EQ(table.Register(1, own_.cells), 0);
  EXPECT_EQ(table.Register(1, own_.cells), 1);
  table.Report(1, kOutcome);
  EXPECT_EQ(own_.values, reported_);
  EXPECT_EQ(table.Register(1, own_.cells), 0) << "the script is over";
}

TEST_F(ThreadTableTest, ScriptedSuccessWithNullCells_WritesTheOthers) {
  ThreadTable table({0});
  EXPECT_EQ(table.Register(1, Cells{nullptr, &own_.values[1], nullptr, nullptr}), 0);
  table.Report(1, kOutcome);
  EXPECT_EQ(own_.values[1], 6);
}

}  // namespace
}  // namespace kesp::simulator::gpib
