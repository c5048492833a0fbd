// The base of the module's windows: a QWidget that is also a property owner (CPropertyHead),
// so that a window can show its settings in the terminal's property pages and store them as
// the defaults of its kind (setStartParam).
#pragma once

#include <QWidget>

#include "property/CPropertyHead.h"

class CSimpleGUIWidget : public QWidget, public CPropertyHead {
    Q_OBJECT
public:
    explicit CSimpleGUIWidget(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags())
        : QWidget(parent, flags) {}
};
