// The terminal's Instruments panel: every instrument of the data core, one a line. A line
// dragged out carries the instrument's drag data ("kovar/symbol-indicator", host/DragData.h)
// onto a chart window; a double click or Return asks for it in the active chart.
#pragma once

#include <QListWidget>
#include <QStringList>

#include "util/QtCompat.h"

namespace host {

class DataCore;

namespace terminal {

class InstrumentPanel : public QListWidget {
    Q_OBJECT
public:
    explicit InstrumentPanel(DataCore& data, QWidget* parent = nullptr);

    // Rebuilds the lines from the data core, keeping the selection.
    void refresh();
    // The instrument of the current line; empty for none.
    QString current() const;
    // Makes `name`'s line the current one; false when there is none.
    bool select(const QString& name);

signals:
    // Double click or Return on a line.
    void chosen(const QString& name);

protected:
    QStringList mimeTypes() const override;
    QMimeData* mimeData(pf::ListWidgetItems items) const override;

private:
    DataCore& data_;
};

}  // namespace terminal
}  // namespace host
