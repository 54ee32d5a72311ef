// Lines, table and figures.
#include "tests/hangs/report.h"

#include <stdexcept>

namespace kesp::hangs {

namespace {

std::string InMilliseconds(Milliseconds time) {
  return std::to_string(time.count()) + " ms";
}

}  // namespace

Report::Report(const std::string& file) : out_(file.empty() ? stdout : std::fopen(file.c_str(), "w")) {
  if (out_ == nullptr) throw std::runtime_error(file + " cannot be written");
}

void Report::Print(const std::string& line) const {
  std::fprintf(out_, "%s\n", line.c_str());
  std::fflush(out_);
}

void Report::Add(const Cell& cell, const Trial& trial, bool again) {
  const bool exceeded = trial.was_timed() && trial.excess() > kTolerance;
  std::string verdict = trial.failures().empty() ? "ok" : "FAILED";
  if (exceeded) verdict = again ? "TOO LATE AGAIN" : "TOO LATE";
  const std::string excess = trial.was_timed() ? InMilliseconds(trial.excess()) : "-";
  Print(cell.Name() + ": " + excess + " over " + InMilliseconds(cell.limit) +
        (cell.without_limit.empty() ? "" : " after its end") + ", " + verdict);
  if (trial.was_timed()) NoteWorst(cell, trial);
  for (const std::string& failure : trial.failures()) {
    Print("  " + failure);
    failures_.push_back(cell.Name() + ": " + failure);
  }
  if (again && !exceeded) spared_.push_back(cell.Name());
  if (again ? exceeded : false) ++broken_;
  if (!trial.failures().empty()) ++broken_;
  stale_ += trial.is_stale() ? 1 : 0;
  announced_ += trial.is_announced() ? 1 : 0;
  dead_ += trial.is_dead() ? 1 : 0;
  if (again) return;
  ++cells_;
  without_limit_ += cell.without_limit.empty() ? 0 : 1;
}

void Report::NoteWorst(const Cell& cell, const Trial& trial) {
  Worst& worst = worst_[cell.transport];
  if (trial.excess() <= worst.excess) return;
  worst = {trial.excess(), cell.member + ", " + cell.way};
}

void Report::PrintFigures() const {
  for (const std::string& failure : failures_) Print("failed: " + failure);
  for (const std::string& cell : spared_)
    Print("too late the first time only, so the machine's doing: " + cell);
  for (const auto& [transport, worst] : worst_) {
    Print("figure worst excess, " + transport + " = " + InMilliseconds(worst.excess) + " (" + worst.cell +
          ")");
  }
  Print("figure cells = " + std::to_string(cells_));
  Print("figure replies that were stale = " + std::to_string(stale_));
  Print("figure stale replies that the reference announces = " + std::to_string(announced_));
  Print("figure objects that did not work again = " + std::to_string(dead_));
  Print("figure waits without a limit by design = " + std::to_string(without_limit_));
  Print("figure cells that were too late the first time only = " + std::to_string(spared_.size()));
}

}  // namespace kesp::hangs
