// An undoable step. Before a change the user may want to take back, the module makes a
// command whose Execute records, in an undo record of the host's stack, what the change will
// destroy; when the user undoes, the host hands the record back and UnExecute rebuilds it.
// Commands hold no state: everything comes through the arguments and the chart.
#pragma once

class Command {
public:
    virtual ~Command() {}
    // `parameter` is command-specific; `widget` the chart widget.
    virtual void Execute(int parameter, void* widget, void* extra, void* unused1, void* unused2) = 0;
    // `record` is the host's coreUndoStart, `result` a coreUndoRefresh that receives the
    // record's first, third and fourth words after the restore. Nodes of other commands'
    // kinds in the record are left alone.
    virtual void UnExecute(int parameter, void* widget, void* record, void* result, void* unused) = 0;
};
