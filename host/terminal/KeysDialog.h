// Help > Keys and mouse: one table of everything a person can do with the keyboard and the
// mouse, in three parts: a chart window (what the module's chart does with each key and
// gesture), the terminal's menu shortcuts (read from the menu bar itself, so the table
// never goes stale) and the terminal's other gestures (panels, ticket). Searchable.
#pragma once

#include <QDialog>
#include <QString>
#include <vector>

class QLineEdit;
class QMenuBar;
class QTableWidget;

namespace host {
namespace terminal {

class KeysDialog : public QDialog {
    Q_OBJECT
public:
    struct Row {
        QString where;    // "Chart window", "Terminal menu", "Terminal"
        QString keys;     // the key or gesture
        QString does;
    };

    KeysDialog(const QMenuBar* menus, QWidget* parent = nullptr);

    // Every row, in the table's order.
    static std::vector<Row> rows(const QMenuBar* menus);
    // The chart window's keys and gestures.
    static std::vector<Row> chartRows();
    QTableWidget* table() const { return table_; }
    // Shows only the rows that contain `text` (any case) in any column.
    void filter(const QString& text);

private:
    QLineEdit* search_;
    QTableWidget* table_;
};

}  // namespace terminal
}  // namespace host
