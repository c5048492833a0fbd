// The terminal's property dialog: shows a property page the module hands over (10052) as a
// real Qt dialog and writes the edited values back into the page's value buffers when the
// person presses Apply or OK; the service then tells the module with 10054.
//
// The page is the module's memory (abi/records/property_records.h). The dialog reads it
// once when it opens and again on every refresh (10053), and never trusts it: group and
// entry counts are bounded, null groups, entries and value buffers are skipped, strings are
// read no further than their fields, and an entry of an unknown type is shown as a label.
//
// One group box per group, one row per entry, with the editor of the entry's type:
//   int       QSpinBox (the entry's minimum and maximum)
//   double    QDoubleSpinBox
//   bool      QCheckBox
//   text      QLineEdit
//   colour    a button showing the colour (QColorDialog when pressed)
//   font      a button showing family and size (QFontDialog when pressed)
//   list      QComboBox
//   date-time QDateTimeEdit (UTC)
//   widget    a label with the entry's two values
// Read-only entries and entries without a value buffer are shown disabled.
//
// Tests and pfhost edit without a person through entries(), setValue(), value() and apply().
#pragma once

#include <QColor>
#include <QDialog>
#include <QFont>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "abi/records.h"

class QWidget;

namespace host {

class PropertyDialog : public QDialog {
public:
    // `apply` is called after the values went into the page (Apply, OK, apply()); its
    // answer is apply()'s. `alive` says whether the page may still be touched (the module's
    // window still exists); without it the page is always taken as alive.
    PropertyDialog(PROPERTY_PAGE* page, void* widget, std::function<int()> apply,
                   std::function<bool()> alive = std::function<bool()>(), QWidget* parent = nullptr);
    ~PropertyDialog() override;

    PROPERTY_PAGE* page() const { return page_; }
    void* widget() const { return widget_; }

    // The entries as shown: "Group/Name" is accepted too where two groups share a name.
    QStringList entries() const;
    QStringList groups() const;
    // The entry's type (PROPERTY_TYPE), 0 for an entry there is none of.
    int typeOf(const QString& name) const;
    // Sets the editor of the entry shown as `name` from text: colours "R,G,B", "#RRGGBB" or
    // a colour name; checks 1/0, true/false, yes/no, on/off; lists an item's text or index;
    // fonts "Family[,size][,bold][,italic]"; date-times ISO 8601 in UTC or seconds since
    // 1970. False, with the reason in `error`, for an unknown entry, a disabled one or a text
    // that does not fit.
    bool setValue(const QString& name, const QString& text, QString* error = nullptr);
    // The editor's value as text, in the form setValue takes.
    QString value(const QString& name) const;

    // The editors' values into the page's buffers, then the apply callback; its answer, or
    // -1 when the page may no longer be touched.
    int apply();
    // The page's values into the editors again (10053); false when the page is gone.
    bool refresh();
    int refreshCount() const { return refreshes_; }
    // The page's memory is going (its window is being destroyed): the dialog lets go of it,
    // and apply() and refresh() touch nothing from now on.
    void forgetPage();

private:
    struct Entry {
        QString group;
        QString name;
        int type;
        PROPERTY* property;
        void* value;            // the buffer as read when the dialog opened
        QWidget* editor;
        bool editable;
        QColor color;
        QFont font;
    };
    void build();
    void load(Entry& e);
    void store(Entry& e);
    Entry* find(const QString& name);
    const Entry* find(const QString& name) const;
    void showColor(Entry& e);
    void showFont(Entry& e);

    PROPERTY_PAGE* page_;
    void* widget_;
    std::function<int()> apply_;
    std::function<bool()> alive_;
    std::vector<Entry> entries_;
    QStringList groups_;
    int refreshes_ = 0;
};

}  // namespace host
