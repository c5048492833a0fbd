// The time and price under the mouse, shown in two labels of the host's main-window status
// bar. One per module; the host creates the labels and tells their window ids.
#pragma once

#include <QObject>
#include <QPointer>
#include <boost/shared_ptr.hpp>

#include "abi/records.h"

class QLabel;
class CModule;

namespace gx {

class Layer;

class TextStatusBar : public QObject {
    Q_OBJECT
public:
    // `handle` is the chart type interface's host handle, `handle2` the module's host handle;
    // requests go through `module`'s host callback (the live module when null).
    TextStatusBar(void* handle, void* handle2, CModule* module = nullptr);
    ~TextStatusBar() override;

    // Registers the panes with the host (3001 "STATUSBAR"), asks for each pane's window id
    // (7000) and finds the labels.
    void InitTextStatusBar();
    // When the point lies in the layer: the time of the position under it
    // ("dd.MM.yyyy hh:mm:ss") and the price under it with the instrument's decimals.
    void SetTextStatusBar(const boost::shared_ptr<Layer>& layer, const QPoint& point);
    // Clears the known labels; asks the host (7001) for the ids of the others.
    void ClearTextStatusBar();
    // The same, unless what the panes show was written for another layer than `layer`
    // since: the status bar is the module's, one for every window, and the area a mouse left
    // must not erase what the area under the mouse has written.
    void ClearTextStatusBar(const Layer* layer);

    QLabel* GetLabel(int pane) const;
    const coreStatusBarPanes& GetPanes() const { return panes_; }

private:
    QLabel* FindLabel(int pane);

    void* handle_;
    void* handle2_;
    CModule* module_;
    coreStatusBarPanes panes_;
    QPointer<QLabel> labels_[2];
    const Layer* writer_ = nullptr;  // the layer of what the panes show; compared, never read
};

}  // namespace gx
