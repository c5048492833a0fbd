#include "host/UndoStack.h"

#include <cstddef>
#include <cstring>
#include <limits>
#include <sstream>

#include "host/ChartWindows.h"
#include "host/WorkDataStore.h"

namespace host {

namespace {

// The root element of every record's tree.
const char kRootName[] = "UndoRecord";
const int kTitleUnits = sizeof(coreUndoBegin::title) / sizeof(coreWChar);

std::string hex(const void* p) {
    std::ostringstream out;
    out << p;
    return out.str();
}

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

void* handleOf(std::uint32_t word) { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(word)); }

// The title of a begin record, read unit by unit (the record is packed); false when no
// terminator comes within its 256 units.
bool readTitle(const coreUndoBegin* record, QString* title) {
    const char* at = reinterpret_cast<const char*>(record) + offsetof(coreUndoBegin, title);
    title->clear();
    for (int i = 0; i < kTitleUnits; ++i) {
        coreWChar unit;
        std::memcpy(&unit, at + i * sizeof unit, sizeof unit);
        if (unit == 0) return true;
        *title += QChar(unit);
    }
    return false;
}

}  // namespace

UndoStack::UndoStack(Host& host, WorkDataStore& store, ChartWindows& charts)
    : host_(host), store_(store), charts_(charts) {
    host_.on(MSG_UNDO_BEGIN, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return begin(target, reinterpret_cast<coreUndoBegin*>(p1), d);
    });
    host_.on(MSG_UNDO_COMMIT, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return commit(target, p1, d);
    });
    host_.on(MSG_UNDO_NODE_INDEX, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return nodeIndex(target, reinterpret_cast<const coreSzNode*>(p1), d);
    });
    host_.on(MSG_UNDO_REFRESHED, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return rebuilt(target, reinterpret_cast<void*>(p1), p2, d);
    });
    host_.on(MSG_UNDO_REPLY, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return reply(target, reinterpret_cast<const coreUndoRefresh*>(p1), p2, d);
    });
}

UndoStack::~UndoStack() {
    dropTree(pending_);
    for (Record& r : records_) dropTree(r);
}

QStringList UndoStack::titles() const {
    QStringList out;
    for (const Record& r : records_) out << r.title;
    return out;
}

bool UndoStack::makeTree(Record& record) {
    record.document = store_.createDocument(QString::fromLatin1(kRootName));
    record.root = record.document ? store_.root(record.document) : nullptr;
    return record.root != nullptr;
}

void UndoStack::dropTree(Record& record) {
    if (record.document) store_.closeDocument(record.document);
    record.document = nullptr;
    record.root = nullptr;
}

// ---------------------------------------------------------------------------------------
// Messages from the module

int UndoStack::begin(void* target, coreUndoBegin* record, std::string& detail) {
    if (!record) return 1;
    const auto refuse = [&](const std::string& why) {
        const coreSzNode none{0, 0, 0};
        const std::int32_t zero = 0;
        std::memcpy(reinterpret_cast<char*>(record) + offsetof(coreUndoBegin, root), &none, sizeof none);
        std::memcpy(reinterpret_cast<char*>(record) + offsetof(coreUndoBegin, recordId), &zero, sizeof zero);
        detail = "begin refused: " + why;
        return 1;
    };
    if (target != host_.coreHandle()) return refuse("not sent to the core");
    QString title;
    if (!readTitle(record, &title)) return refuse("the title has no terminator");
    void* widget = nullptr;
    void* hostHandle = nullptr;
    std::memcpy(&widget, reinterpret_cast<const char*>(record) + offsetof(coreUndoBegin, widget), sizeof widget);
    std::memcpy(&hostHandle, reinterpret_cast<const char*>(record) + offsetof(coreUndoBegin, hostHandle),
                sizeof hostHandle);
    void* iface = charts_.interfaceOf(widget);
    if (!iface) return refuse(hex(widget) + " is not a chart window");

    Record fresh{nextId_, 0, title, hostHandle, widget, iface, nullptr, nullptr};
    coreSzNode root{0, 0, 0};
    if (!makeTree(fresh) || !store_.describe(fresh.root, &root)) {
        dropTree(fresh);
        return refuse("no tree could be made");
    }
    // Ids stay positive and non-zero however many records there were.
    nextId_ = nextId_ == std::numeric_limits<std::int32_t>::max() ? 1 : nextId_ + 1;
    if (pending_.id) detail = "record " + std::to_string(pending_.id) + " never committed, dropped; ";
    dropTree(pending_);
    pending_ = fresh;
    std::memcpy(reinterpret_cast<char*>(record) + offsetof(coreUndoBegin, root), &root, sizeof root);
    std::memcpy(reinterpret_cast<char*>(record) + offsetof(coreUndoBegin, recordId), &fresh.id, sizeof fresh.id);
    detail += "begin \"" + title.toStdString() + "\" for " + hex(widget) + ": record " + std::to_string(fresh.id) +
              ", root " + hex(fresh.root);
    return 0;
}

int UndoStack::commit(void* target, std::intptr_t id, std::string& detail) {
    if (target != host_.coreHandle() || !pending_.id || id != pending_.id) {
        detail = "commit " + std::to_string(id) + " refused: " +
                 (pending_.id ? "the begun record is " + std::to_string(pending_.id) : std::string("none begun"));
        return 1;
    }
    records_.push_back(pending_);
    pending_ = Record{};
    detail = "commit record " + std::to_string(id) + " \"" + records_.back().title.toStdString() + "\", " +
             std::to_string(records_.size()) + " on the stack";
    return 0;
}

int UndoStack::nodeIndex(void* target, const coreSzNode* node, std::string& detail) {
    if (target != host_.coreHandle() || !node) return -1;
    coreSzNode n;
    std::memcpy(&n, node, sizeof n);
    const int index = store_.childIndex(handleOf(n.node));
    detail = "index of " + hex(handleOf(n.node)) + " = " + std::to_string(index);
    return index;
}

int UndoStack::rebuilt(void* target, void* widget, std::intptr_t count, std::string& detail) {
    if (target != host_.coreHandle() || !charts_.interfaceOf(widget) || count < 0 ||
        static_cast<std::int64_t>(count) > std::numeric_limits<std::int32_t>::max()) {
        detail = "rebuilt refused";
        return 1;
    }
    refreshes_.emplace_back(widget, static_cast<std::int32_t>(count));
    detail = "rebuilt " + std::to_string(count) + " in " + hex(widget);
    return 0;
}

int UndoStack::reply(void* target, const coreUndoRefresh* refresh, std::intptr_t result, std::string& detail) {
    if (target != host_.coreHandle() || !refresh) return 1;
    Reply r;
    std::memcpy(&r.refresh, refresh, sizeof r.refresh);
    r.result = result;
    r.expected = undoing_;
    replies_.push_back(r);
    detail = "undo reply " + std::to_string(result) + ": " + std::to_string(r.refresh.first) + ", " +
             std::to_string(r.refresh.third) + ", " + hex(r.refresh.fourth) + (undoing_ ? "" : " (no undo asked)");
    return undoing_ ? 0 : 1;
}

// ---------------------------------------------------------------------------------------
// The terminal's side

UndoStack::Undo UndoStack::undo() {
    Undo out;
    if (records_.empty()) return out;
    out.record = records_.back();
    records_.pop_back();
    const Record& r = out.record;
    coreSzNode root{0, 0, 0};
    store_.describe(r.root, &root);
    coreUndoStart start;
    std::memset(&start, 0, sizeof start);
    start.document = root.document;
    start.document2 = root.document2;
    start.node = root.node;
    start.widget = r.widget;
    start.kind = r.kind;
    start.recordId = r.id;

    const std::size_t before = replies_.size();
    undoing_ = true;
    out.sent = true;
    out.answer = host_.send(r.iface, MSG_UNDO_REQUEST, P(&start), 0,
                            "undo record " + std::to_string(r.id) + " \"" + r.title.toStdString() + "\" of " +
                                hex(r.widget) + ", kind " + std::to_string(r.kind));
    undoing_ = false;
    out.replied = replies_.size() > before;
    if (out.replied) {
        out.refresh = replies_.back().refresh;
        out.result = replies_.back().result;
    }
    if (out.answer != 0 && !out.replied && charts_.interfaceOf(r.widget)) {
        // A busy window: nothing was undone, the step stays available. Records the module
        // committed meanwhile go below it.
        records_.push_back(r);
        return out;
    }
    Record done = out.record;  // the caller still sees which nodes the record had
    dropTree(done);
    return out;
}

bool UndoStack::pushHostRecord(std::int32_t kind, void* widget, const QString& title) {
    void* iface = charts_.interfaceOf(widget);
    if ((kind != CORE_UNDO_KIND_HOST5 && kind != CORE_UNDO_KIND_HOST7) || !iface) return false;
    Record r{nextId_, kind, title, nullptr, widget, iface, nullptr, nullptr};
    if (!makeTree(r)) return false;
    nextId_ = nextId_ == std::numeric_limits<std::int32_t>::max() ? 1 : nextId_ + 1;
    records_.push_back(r);
    return true;
}

}  // namespace host
