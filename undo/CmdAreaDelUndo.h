// Closing an area: the area with its layers, indicators and lines, as a saved layout has
// them, under a "Node" that keeps the area's place. Undo rebuilds it there, asking the host
// for its data again. The record holds the area's lines too, so one undo brings all back.
#pragma once

#include "undo/Command.h"

class CmdAreaDelUndo : public Command {
public:
    // `parameter` is the area's position in the chart (0 for the top one).
    void Execute(int parameter, void* widget, void*, void*, void*) override;
    void UnExecute(int, void* widget, void* record, void* result, void*) override;
};
