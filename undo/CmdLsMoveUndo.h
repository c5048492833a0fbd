// Moving a line study: its points as they were when the move began, under a "LineStudy"
// node marked "MoveLS", with the index the host gives that node (3147) as "nodeIndex". The
// node keeps the study's place: its line ("nArea", "nLayer", "nIndicator", "nLine") and its
// place among that line's studies ("nLineStudy", a value of the index rule; the host's node
// index says where the node sits in the record, not where the study sits on its line).
// Undo finds the study by that place, not by its host id: undoing a delete makes the study
// again in the host with a new id, at its old place.
#pragma once

#include "undo/Command.h"

class CmdLsMoveUndo : public Command {
public:
    // `extra` is the gx::LineStudy being moved, `before` a gx::lsControlPointsShapesWrap
    // with its points from when the move began (null: the study's own move snapshot).
    void Execute(int, void* widget, void* extra, void* before, void*) override;
    void UnExecute(int, void* widget, void* record, void* result, void*) override;
};
