#include "host/PropertyDialog.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFontDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <cstring>

namespace host {

namespace {

// Bounds of what the dialog reads from a page.
constexpr int kMaxGroups = 256;
constexpr int kMaxEntries = 1024;
constexpr int kMaxListItems = 4096;

QString ReadUni(const coreWChar* field, int units) {
    int n = 0;
    while (n < units && field[n] != 0) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(field), n);
}

void WriteUni(coreWChar* field, int units, const QString& text) {
    const int n = std::min(int(text.size()), units - 1);
    std::memcpy(field, text.utf16(), sizeof(coreWChar) * std::size_t(n));
    field[n] = 0;
}

// A text entry's value may fill its whole field; the terminator follows only when there is
// room, and the rest of the field is zeroed.
void FillUni(coreWChar* field, int units, const QString& text) {
    const int n = std::min(int(text.size()), units);
    std::memcpy(field, text.utf16(), sizeof(coreWChar) * std::size_t(n));
    std::fill(field + n, field + units, coreWChar(0));
}

template <typename T>
T Load(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <typename T>
void Save(void* p, const T& v) {
    std::memcpy(p, &v, sizeof v);
}

QString FontText(const QFont& f) {
    QString s = f.family() + QStringLiteral(",") + QString::number(f.pointSize());
    if (f.bold()) s += QStringLiteral(",bold");
    if (f.italic()) s += QStringLiteral(",italic");
    return s;
}

QString ColorText(const QColor& c) { return QStringLiteral("%1,%2,%3").arg(c.red()).arg(c.green()).arg(c.blue()); }

bool ParseColor(const QString& text, QColor* out) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() == 3) {
        int rgb[3];
        for (int i = 0; i < 3; ++i) {
            bool ok = false;
            rgb[i] = parts[i].trimmed().toInt(&ok);
            if (!ok || rgb[i] < 0 || rgb[i] > 255) return false;
        }
        *out = QColor(rgb[0], rgb[1], rgb[2]);
        return true;
    }
    if (parts.size() != 1 || !QColor::isValidColor(text.trimmed())) return false;
    *out = QColor(text.trimmed());
    return true;
}

bool ParseBool(const QString& text, bool* out) {
    const QString t = text.trimmed().toLower();
    if (t == QLatin1String("1") || t == QLatin1String("true") || t == QLatin1String("yes") || t == QLatin1String("on")) {
        *out = true;
        return true;
    }
    if (t == QLatin1String("0") || t == QLatin1String("false") || t == QLatin1String("no") || t == QLatin1String("off")) {
        *out = false;
        return true;
    }
    return false;
}

bool ParseFont(const QString& text, const QFont& current, QFont* out) {
    const QStringList parts = text.split(QLatin1Char(','));
    QFont f = current;
    if (parts.isEmpty() || parts[0].trimmed().isEmpty()) return false;
    f.setFamily(parts[0].trimmed());
    f.setBold(false);
    f.setItalic(false);
    for (int i = 1; i < parts.size(); ++i) {
        const QString p = parts[i].trimmed().toLower();
        bool ok = false;
        const int size = p.toInt(&ok);
        if (ok && size > 0 && size <= 200) f.setPointSize(size);
        else if (p == QLatin1String("bold")) f.setBold(true);
        else if (p == QLatin1String("italic")) f.setItalic(true);
        else return false;
    }
    *out = f;
    return true;
}

}  // namespace

PropertyDialog::PropertyDialog(PROPERTY_PAGE* page, void* widget, std::function<int()> apply,
                               std::function<bool()> alive, QWidget* parent)
    : QDialog(parent), page_(page), widget_(widget), apply_(std::move(apply)), alive_(std::move(alive)) {
    build();
}

PropertyDialog::~PropertyDialog() {}

void PropertyDialog::build() {
    QVBoxLayout* layout = new QVBoxLayout(this);
    if (page_) {
        setWindowTitle(ReadUni(page_->title, PROPERTY_NAME_UNITS));
        const QString description = ReadUni(page_->description, PROPERTY_NAME_UNITS);
        if (!description.isEmpty()) layout->addWidget(new QLabel(description, this));
        const int groups = std::max(0, std::min<int>(page_->groupCount, kMaxGroups));
        for (int gi = 0; gi < groups && page_->groups; ++gi) {
            PROPERTY_GROUP* g = page_->groups[gi];
            if (!g) continue;
            const QString groupName = ReadUni(g->name, PROPERTY_NAME_UNITS);
            groups_ << groupName;
            QGroupBox* box = new QGroupBox(groupName, this);
            QFormLayout* form = new QFormLayout(box);
            layout->addWidget(box);
            const int count = std::max(0, std::min<int>(g->list.count, kMaxEntries));
            for (int i = 0; i < count && g->list.items; ++i) {
                PROPERTY* p = g->list.items[i];
                if (!p) continue;
                Entry e{groupName, ReadUni(p->name, PROPERTY_NAME_UNITS), p->type, p, p->value, nullptr, false,
                        QColor(), QFont()};
                const std::size_t index = entries_.size();
                switch (e.type) {
                    case PROPERTY_TYPE_INT: e.editor = new QSpinBox(box); break;
                    case PROPERTY_TYPE_DOUBLE: e.editor = new QDoubleSpinBox(box); break;
                    case PROPERTY_TYPE_BOOL: e.editor = new QCheckBox(box); break;
                    case PROPERTY_TYPE_TEXT: e.editor = new QLineEdit(box); break;
                    case PROPERTY_TYPE_LIST: e.editor = new QComboBox(box); break;
                    case PROPERTY_TYPE_DATETIME: {
                        QDateTimeEdit* edit = new QDateTimeEdit(box);
                        edit->setTimeSpec(Qt::UTC);
                        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
                        e.editor = edit;
                        break;
                    }
                    case PROPERTY_TYPE_COLOR:
                    case PROPERTY_TYPE_FONT: {
                        QPushButton* button = new QPushButton(box);
                        connect(button, &QPushButton::clicked, this, [this, index] {
                            Entry& en = entries_[index];
                            if (en.type == PROPERTY_TYPE_COLOR) {
                                const QColor c = QColorDialog::getColor(en.color, this);
                                if (c.isValid()) en.color = c;
                                showColor(en);
                            } else {
                                bool ok = false;
                                const QFont f = QFontDialog::getFont(&ok, en.font, this);
                                if (ok) en.font = f;
                                showFont(en);
                            }
                        });
                        e.editor = button;
                        break;
                    }
                    default: e.editor = new QLabel(box); break;
                }
                e.editable = e.value && e.type >= PROPERTY_TYPE_INT && e.type < PROPERTY_TYPE_WIDGET &&
                             !(p->flag & PROPERTY_FLAG_READONLY);
                e.editor->setEnabled(e.editable);
                e.editor->setToolTip(ReadUni(p->description, PROPERTY_NAME_UNITS));
                form->addRow(e.name, e.editor);
                entries_.push_back(e);
                load(entries_.back());
            }
        }
    }
    QDialogButtonBox* buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, [this] { apply(); });
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        apply();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void PropertyDialog::showColor(Entry& e) {
    QPushButton* b = static_cast<QPushButton*>(e.editor);
    b->setText(ColorText(e.color));
    QPixmap swatch(16, 16);
    swatch.fill(e.color);
    b->setIcon(QIcon(swatch));
}

void PropertyDialog::showFont(Entry& e) { static_cast<QPushButton*>(e.editor)->setText(FontText(e.font)); }

// The buffer's value into the editor.
void PropertyDialog::load(Entry& e) {
    void* v = e.property->value;
    e.value = v;
    if (!v) return;
    switch (e.type) {
        case PROPERTY_TYPE_INT: {
            const PROPERTY_VALUE_INT r = Load<PROPERTY_VALUE_INT>(v);
            QSpinBox* s = static_cast<QSpinBox*>(e.editor);
            if (r.minimum <= r.maximum) s->setRange(r.minimum, r.maximum);
            else s->setRange(INT32_MIN, INT32_MAX);
            s->setValue(r.value);
            break;
        }
        case PROPERTY_TYPE_DOUBLE: {
            const PROPERTY_VALUE_DOUBLE r = Load<PROPERTY_VALUE_DOUBLE>(v);
            QDoubleSpinBox* s = static_cast<QDoubleSpinBox*>(e.editor);
            s->setDecimals(std::max(0, std::min<int>(r.decimals, 15)));
            if (r.minimum <= r.maximum) s->setRange(r.minimum, r.maximum);
            s->setValue(r.value);
            break;
        }
        case PROPERTY_TYPE_BOOL:
            static_cast<QCheckBox*>(e.editor)->setChecked(Load<std::uint8_t>(v) != 0);
            break;
        case PROPERTY_TYPE_TEXT:
            static_cast<QLineEdit*>(e.editor)->setText(ReadUni(static_cast<const coreWChar*>(v), PROPERTY_TEXT_UNITS));
            break;
        case PROPERTY_TYPE_COLOR:
            e.color = QColor(QRgb(Load<std::uint32_t>(v) | 0xFF000000u));
            showColor(e);
            break;
        case PROPERTY_TYPE_FONT: {
            const PROPERTY_VALUE_FONT* d = static_cast<const PROPERTY_VALUE_FONT*>(v);
            QFont f(ReadUni(d->family, PROPERTY_TEXT_UNITS));
            const std::int32_t size = Load<std::int32_t>(&d->pointSize);
            if (size > 0 && size <= 1000) f.setPointSize(size);
            f.setBold(d->bold != 0);
            f.setItalic(d->italic != 0);
            f.setUnderline(d->underline != 0);
            f.setStrikeOut(d->strikeOut != 0);
            e.font = f;
            showFont(e);
            break;
        }
        case PROPERTY_TYPE_LIST: {
            const PROPERTY_VALUE_LIST r = Load<PROPERTY_VALUE_LIST>(v);
            QComboBox* c = static_cast<QComboBox*>(e.editor);
            c->clear();
            const int count = r.items ? std::max(0, std::min<int>(r.count, kMaxListItems)) : 0;
            for (int i = 0; i < count; ++i) c->addItem(ReadUni(r.items[i].text, PROPERTY_NAME_UNITS));
            if (r.selected >= 0 && r.selected < count) c->setCurrentIndex(r.selected);
            break;
        }
        case PROPERTY_TYPE_DATETIME:
            static_cast<QDateTimeEdit*>(e.editor)->setDateTime(
                QDateTime::fromSecsSinceEpoch(Load<std::int32_t>(v), Qt::UTC));
            break;
        case PROPERTY_TYPE_WIDGET: {
            const PROPERTY_VALUE_WIDGET r = Load<PROPERTY_VALUE_WIDGET>(v);
            static_cast<QLabel*>(e.editor)->setText(QStringLiteral("%1, %2").arg(r.first).arg(r.second));
            break;
        }
        default:
            static_cast<QLabel*>(e.editor)->setText(QStringLiteral("(type %1)").arg(e.type));
            break;
    }
}

// The editor's value into the buffer.
void PropertyDialog::store(Entry& e) {
    void* v = e.property->value;
    if (!e.editable || !v) return;
    switch (e.type) {
        case PROPERTY_TYPE_INT: {
            PROPERTY_VALUE_INT r = Load<PROPERTY_VALUE_INT>(v);
            r.value = static_cast<QSpinBox*>(e.editor)->value();
            Save(v, r);
            break;
        }
        case PROPERTY_TYPE_DOUBLE: {
            PROPERTY_VALUE_DOUBLE r = Load<PROPERTY_VALUE_DOUBLE>(v);
            r.value = static_cast<QDoubleSpinBox*>(e.editor)->value();
            Save(v, r);
            break;
        }
        case PROPERTY_TYPE_BOOL:
            Save(v, std::uint8_t(static_cast<QCheckBox*>(e.editor)->isChecked() ? 1 : 0));
            break;
        case PROPERTY_TYPE_TEXT:
            FillUni(static_cast<coreWChar*>(v), PROPERTY_TEXT_UNITS, static_cast<QLineEdit*>(e.editor)->text());
            break;
        case PROPERTY_TYPE_COLOR:
            Save(v, std::uint32_t(e.color.rgb() & 0xFFFFFFu));
            break;
        case PROPERTY_TYPE_FONT: {
            PROPERTY_VALUE_FONT* d = static_cast<PROPERTY_VALUE_FONT*>(v);
            WriteUni(d->family, PROPERTY_TEXT_UNITS, e.font.family());
            Save(&d->pointSize, std::int32_t(e.font.pointSize()));
            d->bold = e.font.bold() ? 1 : 0;
            d->italic = e.font.italic() ? 1 : 0;
            d->underline = e.font.underline() ? 1 : 0;
            d->strikeOut = e.font.strikeOut() ? 1 : 0;
            break;
        }
        case PROPERTY_TYPE_LIST: {
            PROPERTY_VALUE_LIST r = Load<PROPERTY_VALUE_LIST>(v);
            const int index = static_cast<QComboBox*>(e.editor)->currentIndex();
            if (index >= 0) r.selected = index;
            Save(v, r);
            break;
        }
        case PROPERTY_TYPE_DATETIME:
            Save(v, std::int32_t(static_cast<QDateTimeEdit*>(e.editor)->dateTime().toSecsSinceEpoch()));
            break;
        default:
            break;
    }
}

QStringList PropertyDialog::entries() const {
    QStringList out;
    for (const Entry& e : entries_) out << e.name;
    return out;
}

QStringList PropertyDialog::groups() const { return groups_; }

PropertyDialog::Entry* PropertyDialog::find(const QString& name) {
    for (Entry& e : entries_)
        if (e.name == name || e.group + QLatin1Char('/') + e.name == name) return &e;
    return nullptr;
}

const PropertyDialog::Entry* PropertyDialog::find(const QString& name) const {
    return const_cast<PropertyDialog*>(this)->find(name);
}

int PropertyDialog::typeOf(const QString& name) const {
    const Entry* e = find(name);
    return e ? e->type : 0;
}

bool PropertyDialog::setValue(const QString& name, const QString& text, QString* error) {
    QString why;
    Entry* e = find(name);
    if (!e) why = QStringLiteral("no entry \"%1\" (entries: %2)").arg(name, entries().join(QStringLiteral(", ")));
    else if (!e->editable) why = QStringLiteral("the entry \"%1\" cannot be edited").arg(name);
    if (e && why.isEmpty()) {
        bool ok = false;
        switch (e->type) {
            case PROPERTY_TYPE_INT: {
                QSpinBox* s = static_cast<QSpinBox*>(e->editor);
                const int v = text.trimmed().toInt(&ok);
                ok = ok && v >= s->minimum() && v <= s->maximum();
                if (ok) s->setValue(v);
                else why = QStringLiteral("%1 is no integer from %2 to %3").arg(text).arg(s->minimum()).arg(s->maximum());
                break;
            }
            case PROPERTY_TYPE_DOUBLE: {
                QDoubleSpinBox* s = static_cast<QDoubleSpinBox*>(e->editor);
                const double v = text.trimmed().toDouble(&ok);
                ok = ok && v >= s->minimum() && v <= s->maximum();
                if (ok) s->setValue(v);
                else why = QStringLiteral("%1 is no number the entry takes").arg(text);
                break;
            }
            case PROPERTY_TYPE_BOOL: {
                bool b = false;
                ok = ParseBool(text, &b);
                if (ok) static_cast<QCheckBox*>(e->editor)->setChecked(b);
                else why = QStringLiteral("%1 is neither on nor off (1/0, true/false, yes/no, on/off)").arg(text);
                break;
            }
            case PROPERTY_TYPE_TEXT:
                static_cast<QLineEdit*>(e->editor)->setText(text);
                ok = true;
                break;
            case PROPERTY_TYPE_COLOR: {
                QColor c;
                ok = ParseColor(text, &c);
                if (ok) {
                    e->color = c;
                    showColor(*e);
                } else {
                    why = QStringLiteral("%1 is no colour (R,G,B with 0 to 255, #RRGGBB or a colour name)").arg(text);
                }
                break;
            }
            case PROPERTY_TYPE_FONT: {
                QFont f;
                ok = ParseFont(text, e->font, &f);
                if (ok) {
                    e->font = f;
                    showFont(*e);
                } else {
                    why = QStringLiteral("%1 is no font (Family[,size][,bold][,italic])").arg(text);
                }
                break;
            }
            case PROPERTY_TYPE_LIST: {
                QComboBox* c = static_cast<QComboBox*>(e->editor);
                int index = c->findText(text);
                if (index < 0) {
                    const int n = text.trimmed().toInt(&ok);
                    index = ok && n >= 0 && n < c->count() ? n : -1;
                }
                ok = index >= 0;
                if (ok) c->setCurrentIndex(index);
                else why = QStringLiteral("%1 is not one of: %2").arg(text, [c] {
                    QStringList items;
                    for (int i = 0; i < c->count(); ++i) items << c->itemText(i);
                    return items.join(QStringLiteral(", "));
                }());
                break;
            }
            case PROPERTY_TYPE_DATETIME: {
                QDateTime t = QDateTime::fromString(text.trimmed(), Qt::ISODate);
                if (t.isValid()) t = QDateTime(t.date(), t.time(), Qt::UTC);
                else {
                    const qint64 secs = text.trimmed().toLongLong(&ok);
                    if (ok) t = QDateTime::fromSecsSinceEpoch(secs, Qt::UTC);
                }
                ok = t.isValid();
                if (ok) static_cast<QDateTimeEdit*>(e->editor)->setDateTime(t);
                else why = QStringLiteral("%1 is no date and time (yyyy-MM-ddTHH:mm:ss or seconds)").arg(text);
                break;
            }
            default:
                why = QStringLiteral("the entry \"%1\" cannot be edited").arg(name);
                break;
        }
    }
    if (error) *error = why;
    return why.isEmpty();
}

QString PropertyDialog::value(const QString& name) const {
    const Entry* e = find(name);
    if (!e) return QString();
    switch (e->type) {
        case PROPERTY_TYPE_INT: return QString::number(static_cast<QSpinBox*>(e->editor)->value());
        case PROPERTY_TYPE_DOUBLE: return QString::number(static_cast<QDoubleSpinBox*>(e->editor)->value());
        case PROPERTY_TYPE_BOOL: return static_cast<QCheckBox*>(e->editor)->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
        case PROPERTY_TYPE_TEXT: return static_cast<QLineEdit*>(e->editor)->text();
        case PROPERTY_TYPE_COLOR: return ColorText(e->color);
        case PROPERTY_TYPE_FONT: return FontText(e->font);
        case PROPERTY_TYPE_LIST: return static_cast<QComboBox*>(e->editor)->currentText();
        case PROPERTY_TYPE_DATETIME:
            return static_cast<QDateTimeEdit*>(e->editor)->dateTime().toUTC().toString(Qt::ISODate);
        default: return static_cast<QLabel*>(e->editor)->text();
    }
}

int PropertyDialog::apply() {
    if (alive_ && !alive_()) return -1;
    for (Entry& e : entries_) store(e);
    const int answer = apply_ ? apply_() : 0;
    // The dialog shows what the module left in the page (a "Save as default" box clears).
    if (!alive_ || alive_())
        for (Entry& e : entries_) load(e);
    return answer;
}

void PropertyDialog::forgetPage() {
    alive_ = [] { return false; };
    for (Entry& e : entries_) e.property = nullptr;
}

bool PropertyDialog::refresh() {
    if (alive_ && !alive_()) return false;
    for (Entry& e : entries_) load(e);
    ++refreshes_;
    return true;
}

}  // namespace host
