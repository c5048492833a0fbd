#include "undo/CommandFactory.h"

#include "undo/CmdAnyLineDelUndo.h"
#include "undo/CmdAreaDelUndo.h"
#include "undo/CmdLsMoveUndo.h"
#include "undo/CmdScaleUndo.h"

const CommandFactory& CommandFactory::Instance() {
    static const CommandFactory factory;
    return factory;
}

std::unique_ptr<Command> CommandFactory::Create(int code) const {
    switch (code) {
        case LineDelete: return std::unique_ptr<Command>(new CmdAnyLineDelUndo);
        case AreaDelete: return std::unique_ptr<Command>(new CmdAreaDelUndo);
        case LineStudyMove: return std::unique_ptr<Command>(new CmdLsMoveUndo);
        case ScaleChange: return std::unique_ptr<Command>(new CmdScaleUndo);
        default: return std::unique_ptr<Command>();
    }
}
