// Font elements for Western languages: Tahoma for the window furniture and the charts,
// Arial for labels, legends, messages and printed texts, Courier New where columns of
// figures must line up.
#pragma once

#include "module/FontManager.h"

namespace font {

class DefaultManager : public Manager {
public:
    DefaultManager();
    int getFontSize(int n) const override { return n; }
};

}  // namespace font
