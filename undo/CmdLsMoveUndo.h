// Moving a line study: its points as they were when the move began, under a "LineStudy"
// node marked "MoveLS" with the node's index in the record (3147). Undo finds the study by
// its handle and gives it those points back.
#pragma once

#include "undo/Command.h"

class CmdLsMoveUndo : public Command {
public:
    // `extra` is the gx::LineStudy being moved.
    void Execute(int, void* widget, void* extra, void*, void*) override;
    void UnExecute(int, void* widget, void* record, void* result, void*) override;
};
