#include "host/terminal/KeysDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTableWidget>
#include <QVBoxLayout>

namespace host {
namespace terminal {

namespace {

QString plain(QString text) {
    // "&File" is "File"; "&&" stays one '&'.
    text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QLatin1Char('\x01'), QLatin1Char('&'));
    return text;
}

void menuRows(const QMenu* menu, const QString& path, std::vector<KeysDialog::Row>* out) {
    for (QAction* a : menu->actions()) {
        if (a->isSeparator()) continue;
        const QString name = path + QStringLiteral(" > ") + plain(a->text());
        if (a->menu()) {
            menuRows(a->menu(), name, out);
            continue;
        }
        QStringList keys;
        for (const QKeySequence& k : a->shortcuts()) keys << k.toString(QKeySequence::NativeText);
        if (!keys.isEmpty()) out->push_back({KeysDialog::tr("Terminal menu"), keys.join(QStringLiteral(", ")), name});
    }
}

}  // namespace

std::vector<KeysDialog::Row> KeysDialog::chartRows() {
    const QString w = tr("Chart window");
    return {
        {w, tr("Home"), tr("Scroll to the oldest figures")},
        {w, tr("End"), tr("Scroll to the newest figures")},
        {w, tr("Left / Right"), tr("Scroll one position back / forward")},
        {w, tr("Alt+Left / Alt+Right"), tr("Scroll ten positions back / forward")},
        {w, tr("Ctrl+Left / Ctrl+Right"), tr("Scroll to the oldest / newest figures")},
        {w, tr("PageUp / PageDown"), tr("Scroll a page forward / back")},
        {w, tr("+ or ="), tr("Zoom in")},
        {w, tr("-"), tr("Zoom out")},
        {w, tr("Delete"), tr("Delete the selected lines and studies (Edit > Undo brings them back)")},
        {w, tr("Ctrl+A"), tr("Select every line and study of the chart")},
        {w, tr("Escape"), tr("Cancel the study being placed, switch the cross cursor off, end every selection")},
        {w, tr("Mouse wheel"), tr("Scroll back (wheel away) / forward (wheel towards you); Alt: ten times as far")},
        {w, tr("Ctrl+mouse wheel"), tr("Zoom in (wheel away) / out (wheel towards you)")},
        {w, tr("Left drag across an area"), tr("Zoom into the positions dragged across (more than 6 pixels)")},
        {w, tr("Click on a figure"), tr("Select its line and open its indicator settings")},
        {w, tr("Hover over a figure"), tr("Tool tip with the figure's prices and times")},
        {w, tr("Double click on a study"), tr("Open the study's settings")},
        {w, tr("Double click on empty space"), tr("Open the chart window's properties")},
        {w, tr("Click on a study / Shift+click"), tr("Select it / add it to the selection")},
        {w, tr("Drag a study or one of its points"), tr("Move the study or that point")},
        {w, tr("Double click (placing a polyline)"), tr("End the polyline at that point")},
        {w, tr("Double click on a polyline point"), tr("Remove that point")},
        {w, tr("Click (a study tool chosen)"), tr("Place the study's points, one click each")},
        {w, tr("Right click"), tr("Context menu: deal or order, properties, select, delete, zoom")},
        {w, tr("Middle click"), tr("Cross cursor on / off")},
        {w, tr("Area caption's close button"), tr("Close that area (Edit > Undo brings it back)")},
        {w, tr("Click or drag in the time scroll bar"), tr("Scroll to that place")},
        {w, tr("Tool bar: zoom buttons, slider, cross"), tr("Zoom in, zoom out, zoom to the slider's step, cross cursor")},
        {w, tr("Drop an instrument"), tr("Add it to the chart (asks before replacing the one shown)")},
    };
}

std::vector<KeysDialog::Row> KeysDialog::rows(const QMenuBar* menus) {
    std::vector<Row> out = chartRows();
    if (menus)
        for (QAction* a : menus->actions())
            if (a->menu()) menuRows(a->menu(), plain(a->text()), &out);
    const QString t = tr("Terminal");
    const std::vector<Row> terminal = {
        {t, tr("Double click or Return on an instrument"), tr("Add it to the chart window in front")},
        {t, tr("Drag an instrument onto a chart window"), tr("Add it to that window")},
        {t, tr("Ticket: Alt+B / Alt+S"), tr("Buy / sell")},
        {t, tr("Ticket: Return / Escape"), tr("Book / cancel")},
    };
    out.insert(out.end(), terminal.begin(), terminal.end());
    return out;
}

KeysDialog::KeysDialog(const QMenuBar* menus, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("keysDialog"));
    setWindowTitle(tr("Keys and mouse"));
    search_ = new QLineEdit;
    search_->setObjectName(QStringLiteral("keysSearch"));
    search_->setPlaceholderText(tr("Find a key or an action"));
    search_->setClearButtonEnabled(true);
    const std::vector<Row> all = rows(menus);
    table_ = new QTableWidget(int(all.size()), 3);
    table_->setObjectName(QStringLiteral("keysTable"));
    table_->setHorizontalHeaderLabels({tr("Where"), tr("Key or mouse"), tr("What it does")});
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    for (std::size_t r = 0; r < all.size(); ++r) {
        table_->setItem(int(r), 0, new QTableWidgetItem(all[r].where));
        table_->setItem(int(r), 1, new QTableWidgetItem(all[r].keys));
        table_->setItem(int(r), 2, new QTableWidgetItem(all[r].does));
    }
    table_->setWordWrap(true);
    table_->resizeColumnsToContents();
    QDialogButtonBox* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(search_, &QLineEdit::textChanged, this, &KeysDialog::filter);
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->addWidget(search_);
    layout->addWidget(table_, 1);
    layout->addWidget(buttons);
    resize(1060, 660);
    // Long texts wrap within the last column once it has its width.
    connect(table_->horizontalHeader(), &QHeaderView::sectionResized, table_, [this] { table_->resizeRowsToContents(); });
}

void KeysDialog::filter(const QString& text) {
    for (int r = 0; r < table_->rowCount(); ++r) {
        bool shown = text.isEmpty();
        for (int c = 0; c < table_->columnCount() && !shown; ++c)
            shown = table_->item(r, c)->text().contains(text, Qt::CaseInsensitive);
        table_->setRowHidden(r, !shown);
    }
}

}  // namespace terminal
}  // namespace host
