// Deleting selected lines (and with them the indicators, layers and areas the deletion
// empties): one "Node" per selected line with its indicator's saved form, its place (area,
// layer, indicator) and what the deletion takes with it. Undo puts back, in order of place,
// the areas and layers that went, the indicators (asking the host for their data again) or,
// for an indicator that stayed, its lines.
#pragma once

#include "undo/Command.h"

class CmdAnyLineDelUndo : public Command {
public:
    void Execute(int, void* widget, void*, void*, void*) override;
    void UnExecute(int, void* widget, void* record, void* result, void*) override;
};
