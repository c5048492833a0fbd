// Random bytes as a work-data file: the store opens it (3163) and the whole tree is walked
// through CXMLWorkData with every typed read. A document the store accepted must save to
// XML that reads back to the same text.
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <cstring>
#include <memory>
#include <set>
#include <unistd.h>

#include "host/Host.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"
#include "xml/CXMLWorkData.h"

namespace {

QString g_path;

void Check(bool condition) {
    if (!condition) std::abort();
}

// The module's copy of every attribute must equal the store's, byte for byte.
void Walk(const host::WorkDataStore& store, CXMLWorkData& node, int depth) {
    const host::workdata::Node* held = store.node(node.node());
    Check(held != nullptr);
    for (const CCoreSzItem& item : node.attributes()) {
        const QByteArray key = item.name.toLocal8Bit();
        node.readInteger(key.constData(), 1);
        node.readFloat(key.constData(), 1);
        node.readColorString(key.constData(), Qt::red);
        if (key.size() < 255) Check(held->attribute(item.name) && *held->attribute(item.name) == item.value);
    }
    if (depth > 40) return;
    // Every child name is walked with getFirstNode/getNextNode, as a layout is restored.
    std::set<QString> walked;
    for (const CXMLWorkData::ChildEntry& entry : std::vector<CXMLWorkData::ChildEntry>(node.children())) {
        if (!walked.insert(entry.name).second) continue;
        const QByteArray name = entry.name.toLocal8Bit();
        node.readFont(name.constData(), QFont());
        std::unique_ptr<CXMLWorkData> child(node.getFirstNode(name.constData()));
        Check(child != nullptr);
        for (; child; child.reset(node.getNextNode())) Walk(store, *child, depth + 1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    new QGuiApplication(*argc, *argv);
    g_path = QDir::temp().filePath(QStringLiteral("fuzz_workdata_load_%1.xml").arg(getpid()));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    {
        QFile file(g_path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return 0;
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    host::Host host;
    host::WorkDataStore store(host);
    coreOpenWorkData request;
    std::memset(&request, 0, sizeof request);
    std::memcpy(request.path, g_path.utf16(), g_path.size() * sizeof(coreWChar));
    const int answer = host::Host::callback(nullptr, MSG_WD_OPEN, reinterpret_cast<std::intptr_t>(&request), 0);
    Check((answer == 0) == (request.handle != nullptr));
    if (!request.handle) return 0;

    // The document node's only child is the root element.
    CXMLWorkData top(nullptr, request.handle, request.handle, &host::Host::callback);
    Check(top.children().size() == 1);
    Walk(store, top, 0);

    const QByteArray saved = store.text(request.handle);
    host::workdata::Node again;
    Check(host::workdata::parse(saved, again));
    Check(host::workdata::serialize(again) == saved);
    return 0;
}
