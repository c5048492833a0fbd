#include "host/ChartLayouts.h"

#include <QFileInfo>

#include "host/ChartWindows.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

namespace host {

namespace {

// The Type attribute's words, by chart type value.
const char* const kTypeWords[] = {"pf", "renko", "kagi"};

bool fail(QString* error, const QString& why) {
    if (error) *error = why;
    return false;
}

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

}  // namespace

ChartLayouts::ChartLayouts(Host& host, ChartWindows& charts, WorkDataStore& store)
    : host_(host), charts_(charts), store_(store) {}

bool ChartLayouts::save(void* widget, const QString& path, QString* error) {
    data::ChartType type;
    if (!charts_.typeOf(widget, &type)) return fail(error, QStringLiteral("not a chart window"));
    void* document = store_.open(path, error);
    if (!document) return false;
    void* root = store_.root(document);
    if (root) {
        if (store_.node(root)->name != QLatin1String(rootName()))
            return fail(error, QStringLiteral("%1 holds something other than a chart layout").arg(path));
        store_.clear(root);
    } else {
        root = store_.createChild(document, QString::fromLatin1(rootName()));
    }
    void* node = store_.createChild(root, QString::fromLatin1(windowName()));
    if (!node || !store_.setAttribute(root, QStringLiteral("Type"), QString::fromLatin1(kTypeWords[int(type)])))
        return fail(error, QStringLiteral("%1: the layout could not be made").arg(path));
    if (!saveInto(widget, node, error)) return false;
    return store_.save(node, error);
}

bool ChartLayouts::saveInto(void* widget, void* node, QString* error) {
    coreSzNode record;
    if (!charts_.typeOf(widget, nullptr)) return fail(error, QStringLiteral("not a chart window"));
    if (!store_.clear(node) || !store_.describe(node, &record))
        return fail(error, QStringLiteral("no node for the layout"));
    const int answer = host_.send(charts_.interfaceOf(widget), MSG_SAVE_CHART, P(widget), P(&record),
                                  "save layout into " + store_.path(node).toStdString());
    if (answer != 0) return fail(error, QStringLiteral("the module answered 3021 with %1").arg(answer));
    const workdata::Node* written = store_.node(node);
    if (!written || (written->children.empty() && written->attributes.empty()))
        return fail(error, QStringLiteral("the module wrote nothing into the layout"));
    return true;
}

void* ChartLayouts::windowNode(const QString& path, QString* error) {
    if (!QFileInfo(path).isFile()) {
        fail(error, QStringLiteral("no file %1").arg(path));
        return nullptr;
    }
    void* document = store_.open(path, error);
    if (!document) return nullptr;
    void* root = store_.root(document);
    void* node = root && store_.node(root)->name == QLatin1String(rootName())
                     ? store_.child(root, QString::fromLatin1(windowName()))
                     : nullptr;
    if (!node) fail(error, QStringLiteral("%1 holds no chart layout").arg(path));
    return node;
}

bool ChartLayouts::typeOf(const QString& path, data::ChartType* type, QString* error) {
    void* node = windowNode(path, error);
    if (!node) return false;
    const QString* word = store_.node(node)->parent->attribute(QStringLiteral("Type"));
    if (!word || !data::parseChartType(word->toStdString(), type))
        return fail(error, QStringLiteral("%1 names no chart type").arg(path));
    return true;
}

void* ChartLayouts::load(data::ChartType type, const QString& path, QString* error) {
    void* node = windowNode(path, error);
    return node ? loadFrom(type, node, error) : nullptr;
}

void* ChartLayouts::loadFrom(data::ChartType type, void* node, QString* error) {
    coreSzNode record;
    if (!store_.describe(node, &record)) {
        fail(error, QStringLiteral("no node for the layout"));
        return nullptr;
    }
    void* widget = charts_.create(type);
    if (!widget) {
        fail(error, QStringLiteral("the module made no %1 chart window").arg(QString::fromLatin1(data::chartTypeName(type))));
        return nullptr;
    }
    const int answer = host_.send(charts_.interfaceOf(widget), MSG_LOAD_CHART, P(widget), P(&record),
                                  "load layout from " + store_.path(node).toStdString());
    if (answer != 0) {
        fail(error, QStringLiteral("the module answered 3020 with %1").arg(answer));
        charts_.destroy(widget);
        return nullptr;
    }
    return widget;
}

}  // namespace host
