// The base of the module's windows: a QWidget that will also own the window's property list
// once properties are shown in the host's property pages.
#pragma once

#include <QWidget>

class CSimpleGUIWidget : public QWidget {
    Q_OBJECT
public:
    explicit CSimpleGUIWidget(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags())
        : QWidget(parent, flags) {}
};
