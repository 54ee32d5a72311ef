// The parts of the serial cells.
#pragma once

#include "tests/hangs/cell.h"

namespace kesp::hangs {

void AddSerialReadingCells(Cells& cells);
void AddSerialLineCells(Cells& cells);
void AddSerialWritingCells(Cells& cells);
void AddSerialModemCells(Cells& cells);
void AddSerialHeldUpCells(Cells& cells);
void AddSerialReleaseCells(Cells& cells);

}  // namespace kesp::hangs
