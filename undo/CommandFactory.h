// Undo commands by code: 0 line delete, 2 area delete, 3 line-study move, 4 scale change.
// Any other code (1 among them) gives no command.
#pragma once

#include <memory>

#include "undo/Command.h"

class CommandFactory {
public:
    enum Code { LineDelete = 0, AreaDelete = 2, LineStudyMove = 3, ScaleChange = 4 };

    static const CommandFactory& Instance();
    // A new command owned by the caller; empty for an unknown code.
    std::unique_ptr<Command> Create(int code) const;
};
