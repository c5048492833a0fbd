// The emulated terminal's undo stack. The module contributes undoable steps to it; when the
// person at the terminal undoes, the host hands the top step back to the module.
//
//   3138  begin a record (p1 coreUndoBegin): the title (UTF-16, terminated within its 256
//         units) and the chart window (host handle, widget). The host makes the record's tree
//         in a work-data document held in memory, writes its root node into `root` (as
//         WorkDataStore::describe fills it) and a non-zero `recordId`, and answers 0. A record
//         begun earlier and never committed is dropped then. On a refusal `root` and
//         `recordId` are written as zeros, when the record can be written at all.
//   3139  commit the begun record (p1 its recordId): it goes on top of the stack.
//   3147  p1 coreSzNode: the node's index among its parent's children, -1 for an unknown node.
//   3142  p1 widget, p2 count: the module rebuilt `count` objects of that window in an undo.
//   3141  p1 coreUndoRefresh, p2 the undo's result: the module's answer to 3140, kept as it came.
//
// Undoing pops the top record and sends 3140 to the chart type interface of the record's
// window with a coreUndoStart {document, document2, root node, widget, kind, recordId}. A
// busy window answers 1 and sends no 3141: the record was not undone and goes back on top.
// Otherwise the record's tree is dropped. The host does not follow windows: a record of a
// window that was destroyed meanwhile is still handed to the interface that made it, and
// dropped whatever the answer.
//
// Records of the module have kind 0; the host has records of its own (kinds 5 and 7), which
// tests put on the stack with pushHostRecord.
//
// Every message from the module answers 1 and changes nothing for a null record, a target
// other than the core, an unterminated title, a widget that is not a chart window, a record
// id that is not the begun record's, or an unknown node.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <string>
#include <vector>

#include "host/Host.h"

namespace host {

class ChartWindows;
class WorkDataStore;

class UndoStack {
public:
    UndoStack(Host& host, WorkDataStore& store, ChartWindows& charts);
    ~UndoStack();
    UndoStack(const UndoStack&) = delete;
    UndoStack& operator=(const UndoStack&) = delete;

    // A committed (or begun) record.
    struct Record {
        std::int32_t id;
        std::int32_t kind;         // 0 the module's; 5 and 7 the host's own
        QString title;
        void* hostHandle;          // as the module gave it
        void* widget;              // the chart window
        void* iface;               // its chart type interface, where 3140 goes
        void* document;            // the record's work-data document (in memory)
        void* root;                // the root node the module writes under
    };
    // Committed records, bottom first: the last is undone next.
    const std::vector<Record>& records() const { return records_; }
    // Their titles, bottom first.
    QStringList titles() const;
    // The record begun and not committed yet; null when there is none.
    const Record* pending() const { return pending_.id ? &pending_ : nullptr; }

    // One undo: the top record handed back to its window.
    struct Undo {
        bool sent = false;         // false: the stack was empty
        int answer = -1;           // the module's answer to 3140
        bool replied = false;      // a 3141 came while it ran
        coreUndoRefresh refresh{}; // what that 3141 carried
        std::intptr_t result = -1; // and its result
        Record record{};           // the record undone
    };
    Undo undo();

    // Puts a record of the host's own kind (5 or 7) for `widget`'s window on the stack, with
    // an empty tree. False for another kind or a widget that is not a chart window.
    bool pushHostRecord(std::int32_t kind, void* widget, const QString& title = QStringLiteral("Host step"));

    // Every 3141 the module sent, in order; `expected` says it answered a 3140 in progress.
    struct Reply {
        coreUndoRefresh refresh;
        std::intptr_t result;
        bool expected;
    };
    const std::vector<Reply>& replies() const { return replies_; }
    // Every 3142 accepted: (widget, count), in order.
    const std::vector<std::pair<void*, std::int32_t> >& refreshes() const { return refreshes_; }
    // Forgets the replies and refreshes heard so far (a long run keeps its memory flat).
    void forgetReplies() {
        std::vector<Reply>().swap(replies_);
        std::vector<std::pair<void*, std::int32_t> >().swap(refreshes_);
    }

private:
    bool makeTree(Record& record);
    void dropTree(Record& record);

    int begin(void* target, coreUndoBegin* record, std::string& detail);
    int commit(void* target, std::intptr_t id, std::string& detail);
    int nodeIndex(void* target, const coreSzNode* node, std::string& detail);
    int rebuilt(void* target, void* widget, std::intptr_t count, std::string& detail);
    int reply(void* target, const coreUndoRefresh* refresh, std::intptr_t result, std::string& detail);

    Host& host_;
    WorkDataStore& store_;
    ChartWindows& charts_;
    std::vector<Record> records_;
    Record pending_{};
    std::int32_t nextId_ = 1;
    bool undoing_ = false;
    std::vector<Reply> replies_;
    std::vector<std::pair<void*, std::int32_t> > refreshes_;
};

}  // namespace host
