// The zoom state before a zoom (tool bar buttons, zoom slider, zoom by selection): the time
// scroll bar's "Node", with the first area's first and visible positions beside it, so that
// a zoom the slider cannot describe (a selection) comes back exactly.
#pragma once

#include "undo/Command.h"

class CmdScaleUndo : public Command {
public:
    // `parameter` is the zoom kind: 0 zoom in, 1 zoom out, 2 slider or selection.
    void Execute(int parameter, void* widget, void*, void*, void*) override;
    void UnExecute(int, void* widget, void* record, void* result, void*) override;
};
