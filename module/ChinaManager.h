// Font elements for Simplified Chinese: SimSun throughout, two points larger than asked.
#pragma once

#include "module/FontManager.h"

namespace font {

class ChinaManager : public Manager {
public:
    ChinaManager();
    int getFontSize(int n) const override { return n + 2; }
};

}  // namespace font
