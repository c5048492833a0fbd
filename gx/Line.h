// A data line of a chart area.
//
// So far the line carries only its selection: the chart-type renderers it owns read the
// selected flag to draw a selected line with alternating dash patterns. The rest of the
// line (its data, captions, saving, input) is not here yet.
#pragma once

namespace gx {

class Line {
public:
    Line() = default;
    virtual ~Line() = default;

    void Select(bool selected) { selected_ = selected; }
    bool IsSelected() const { return selected_; }

private:
    bool selected_ = false;
};

}  // namespace gx
