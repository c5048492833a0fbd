#include "host/terminal/WindowSettings.h"

#include <algorithm>

#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/WorkDataStore.h"
#include "host/data/ChartObject.h"
#include "host/data/DataObject.h"
#include "host/terminal/ChartDescription.h"
#include "host/workdata/WorkTree.h"

namespace host {
namespace terminal {

namespace {

// Bounds a workspace's values must keep to; the dialogs offer less.
const int kMaxPenWidth = 100, kMaxPenStyle = 5;
const int kMinPoints = 1, kMaxPoints = 400;
const int kMaxTextChars = LS_TEXT_CHARS - 1;
const int kMaxFamilyBytes = 1023;

QString text(const workdata::Node& n, const char* name) {
    const QString* v = n.attribute(QString::fromLatin1(name));
    return v ? *v : QString();
}

bool has(const workdata::Node& n, const char* name) { return n.attribute(QString::fromLatin1(name)) != nullptr; }

// Reads an attribute into `out` when present and within bounds; false (out unchanged) for a
// value outside them.
template <class T>
bool number(const workdata::Node& n, const char* name, double low, double high, T* out) {
    if (!has(n, name)) return true;
    bool ok = false;
    const double v = text(n, name).toDouble(&ok);
    if (!ok || !(v >= low && v <= high)) return false;
    *out = T(v);
    return true;
}

bool colour(const workdata::Node& n, const char* name, unsigned* out) {
    if (!has(n, name)) return true;
    bool ok = false;
    const unsigned v = text(n, name).toUInt(&ok, 16);
    if (!ok) return false;
    *out = v;
    return true;
}

bool flag(const workdata::Node& n, const char* name, bool* out) {
    if (!has(n, name)) return true;
    const QString v = text(n, name);
    if (v != QLatin1String("0") && v != QLatin1String("1")) return false;
    *out = v == QLatin1String("1");
    return true;
}

QString hex(unsigned v, int digits) { return QStringLiteral("%1").arg(v, digits, 16, QLatin1Char('0')); }
QString yes(bool b) { return b ? QStringLiteral("1") : QStringLiteral("0"); }

}  // namespace

std::vector<std::int32_t> windowStudies(Emulator& emulator, void* widget) {
    std::vector<std::int32_t> out;
    for (std::int32_t id : emulator.studies().ids()) {
        const LineStudies::Study* s = emulator.studies().study(id);
        const data::DataObject* o = s ? emulator.data().ownerOf(s->dataArray) : nullptr;
        if (!o) continue;
        const auto& subs = o->subscriptions();
        if (std::any_of(subs.begin(), subs.end(), [widget](const data::Subscription& x) { return x.subscriber == widget; }))
            out.push_back(id);
    }
    std::sort(out.begin(), out.end());
    return out;
}

void saveWindowSettings(Emulator& emulator, void* widget, void* node) {
    WorkDataStore& store = emulator.workData();
    for (const data::ChartObject* c : windowCharts(emulator.data(), widget)) {
        const data::ChartSettings& s = c->settings();
        void* e = store.createChild(node, QStringLiteral("Chart"));
        store.setAttribute(e, QStringLiteral("Instrument"), QString::fromStdString(c->instrument().name()));
        store.setAttribute(e, QStringLiteral("Box"), QString::number(s.box, 'g', 12));
        store.setAttribute(e, QStringLiteral("Reversal"), QString::number(s.reversal));
        store.setAttribute(e, QStringLiteral("Percent"), QString::number(s.percent, 'g', 12));
        store.setAttribute(e, QStringLiteral("Rising"), hex(s.rising, 8));
        store.setAttribute(e, QStringLiteral("Falling"), hex(s.falling, 8));
        store.setAttribute(e, QStringLiteral("Price"), QString::number(int(s.price)));
    }
    for (std::int32_t id : windowStudies(emulator, widget)) {
        const LineStudies::Study* st = emulator.studies().study(id);
        const ls::StudyParams& p = st->params;
        void* e = store.createChild(node, QStringLiteral("Study"));
        store.setAttribute(e, QStringLiteral("Kind"), QString::fromLatin1(ls::studyName(st->kind)));
        store.setAttribute(e, QStringLiteral("Colour"), hex(p.colour & 0xFFFFFFu, 6));
        store.setAttribute(e, QStringLiteral("Width"), QString::number(p.penWidth));
        store.setAttribute(e, QStringLiteral("Style"), QString::number(p.penStyle));
        store.setAttribute(e, QStringLiteral("Left"), yes(p.extendLeft));
        store.setAttribute(e, QStringLiteral("Right"), yes(p.extendRight));
        store.setAttribute(e, QStringLiteral("Text"), p.text);
        store.setAttribute(e, QStringLiteral("Family"), QString::fromStdString(p.family));
        store.setAttribute(e, QStringLiteral("Size"), QString::number(p.pointSize));
        store.setAttribute(e, QStringLiteral("Bold"), yes(p.bold));
        store.setAttribute(e, QStringLiteral("Italic"), yes(p.italic));
        store.setAttribute(e, QStringLiteral("Underline"), yes(p.underline));
        store.setAttribute(e, QStringLiteral("StrikeOut"), yes(p.strikeOut));
    }
}

std::vector<SavedChart> savedCharts(const workdata::Node& window, QStringList* problems) {
    std::vector<SavedChart> out;
    for (const auto& child : window.children) {
        const workdata::Node& n = *child;
        if (n.name != QLatin1String("Chart")) continue;
        SavedChart c;
        c.instrument = text(n, "Instrument");
        bool read = number(n, "Box", 0, 1e12, &c.settings.box) &&
                          number(n, "Reversal", 1, 1000, &c.settings.reversal) &&
                          number(n, "Percent", 0, 100, &c.settings.percent) && colour(n, "Rising", &c.settings.rising) &&
                          colour(n, "Falling", &c.settings.falling);
        int price = int(c.settings.price);
        read = read && number(n, "Price", 0, int(data::PriceField::Typical), &price);
        c.settings.price = data::PriceField(price);
        if (!read) {
            if (problems) *problems << QStringLiteral("the %1 chart's settings (a value out of bounds)").arg(c.instrument);
            continue;
        }
        out.push_back(c);
    }
    return out;
}

void restoreWindowSettings(Emulator& emulator, void* widget, const workdata::Node& window,
                           const std::vector<std::int32_t>& studiesBefore, QStringList* problems) {
    DataCore& data = emulator.data();
    // The charts were made with their saved settings (savedCharts, through the data core's
    // chooser); one that was not, because they did not fit, is tried again here so that the
    // reason is said.
    std::vector<data::ChartObject*> charts = windowCharts(data, widget);
    for (const SavedChart& saved : savedCharts(window, problems)) {
        const auto at = std::find_if(charts.begin(), charts.end(), [&saved](const data::ChartObject* c) {
            return QString::fromStdString(c->instrument().name()) == saved.instrument;
        });
        if (at == charts.end()) {
            if (problems) *problems << QStringLiteral("the settings of a %1 chart no window shows").arg(saved.instrument);
            continue;
        }
        data::ChartObject* c = *at;
        charts.erase(at);
        const data::ChartSettings& now = c->settings();
        const data::ChartSettings& s = saved.settings;
        if (now.box == s.box && now.reversal == s.reversal && now.percent == s.percent && now.rising == s.rising &&
            now.falling == s.falling && now.price == s.price)
            continue;
        std::string why;
        if (!data.configure(c->handle(), s, &why) && problems)
            *problems << QStringLiteral("the %1 chart's settings (%2)").arg(saved.instrument, QString::fromStdString(why));
    }
    std::vector<std::int32_t> studies;
    for (std::int32_t id : windowStudies(emulator, widget))
        if (!std::binary_search(studiesBefore.begin(), studiesBefore.end(), id)) studies.push_back(id);
    std::size_t nextStudy = 0;
    for (const auto& child : window.children) {
        const workdata::Node& n = *child;
        if (n.name != QLatin1String("Study")) continue;
        if (nextStudy >= studies.size()) {
            if (problems) *problems << QStringLiteral("the settings of a %1 study the window does not have").arg(text(n, "Kind"));
            continue;
        }
        const std::int32_t id = studies[nextStudy++];
        const LineStudies::Study* st = emulator.studies().study(id);
        if (QString::fromLatin1(ls::studyName(st->kind)) != text(n, "Kind")) {
            if (problems) *problems << QStringLiteral("the settings of a %1 study (the window's study there is a %2)")
                                           .arg(text(n, "Kind"), QString::fromLatin1(ls::studyName(st->kind)));
            continue;
        }
        ls::StudyParams p = st->params;
        unsigned c = p.colour;
        const bool read = colour(n, "Colour", &c) && number(n, "Width", 1, kMaxPenWidth, &p.penWidth) &&
                          number(n, "Style", 0, kMaxPenStyle, &p.penStyle) && flag(n, "Left", &p.extendLeft) &&
                          flag(n, "Right", &p.extendRight) && number(n, "Size", kMinPoints, kMaxPoints, &p.pointSize) &&
                          flag(n, "Bold", &p.bold) && flag(n, "Italic", &p.italic) &&
                          flag(n, "Underline", &p.underline) && flag(n, "StrikeOut", &p.strikeOut);
        if (!read) {
            if (problems) *problems << QStringLiteral("the settings of a %1 study (a value out of bounds)").arg(text(n, "Kind"));
            continue;
        }
        p.colour = c & 0xFFFFFFu;
        if (has(n, "Text")) {
            p.text = text(n, "Text");
            if (p.text.size() > kMaxTextChars) {
                p.text.truncate(kMaxTextChars);
                if (problems) *problems << QStringLiteral("a text study's text cut to %1 characters").arg(kMaxTextChars);
            }
        }
        if (has(n, "Family")) p.family = text(n, "Family").toStdString().substr(0, kMaxFamilyBytes);
        emulator.studies().setParams(id, p);
    }
}

}  // namespace terminal
}  // namespace host
