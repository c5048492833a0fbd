// Deleting selected lines and line studies (and with them the indicators, layers and areas
// the deletion empties). The record's one "Node" holds a "PFIndicator" node per selected
// line, with that line's "PFLine" under it: the indicator's layout keys, its place ("nArea",
// "nLayer", "nodeIndex") and the counts its line, layer and area had ("nLineCount",
// "IndicatorCount", "LayerCount"); and a "LineStudy" node per study that goes ("DeleteLS",
// the host's node index as "nodeIndex", its place on its line as "nLineStudy"). Undo works
// out from the counts what went, and puts back, in order of place, the areas and layers that
// went, the indicators (asking the host for their data again) or, for an indicator that
// stayed, its lines; then the studies, each at its old place on its line.
#pragma once

#include "undo/Command.h"

class CmdAnyLineDelUndo : public Command {
public:
    void Execute(int, void* widget, void*, void*, void*) override;
    void UnExecute(int, void* widget, void* record, void* result, void*) override;
};
