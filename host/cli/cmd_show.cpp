// `pfhost show FILE`: prints a saved work-data document (a chart layout, the default
// parameters, a skin) as an indented tree of nodes with their attributes, so that a person
// can see what it holds without reading the XML.
#include <QFile>
#include <QString>
#include <cstdio>

#include "host/cli/Commands.h"
#include "host/workdata/WorkTree.h"

namespace {

// A value in double quotes with the characters a terminal would swallow made visible.
QString quoted(const QString& value) {
    QString out = QStringLiteral("\"");
    for (const QChar ch : value) {
        switch (ch.unicode()) {
        case '\n': out += QLatin1String("\\n"); break;
        case '\r': out += QLatin1String("\\r"); break;
        case '\t': out += QLatin1String("\\t"); break;
        case '"': out += QLatin1String("\\\""); break;
        case '\\': out += QLatin1String("\\\\"); break;
        default:
            if (ch.unicode() < 0x20)
                out += QStringLiteral("\\x%1").arg(ch.unicode(), 2, 16, QLatin1Char('0'));
            else
                out += ch;
        }
    }
    return out + QLatin1Char('"');
}

void print(const host::workdata::Node& node, bool countsOnly) {
    const QString indent(2 * (node.depth - 1), QLatin1Char(' '));
    QString line = indent + node.name;
    if (countsOnly || node.attributes.empty())
        line += QStringLiteral("  (%1 attributes, %2 children)")
                    .arg(node.attributes.size())
                    .arg(node.children.size());
    std::printf("%s\n", line.toUtf8().constData());
    if (!countsOnly)
        for (const auto& a : node.attributes)
            std::printf("%s  %s = %s\n", indent.toUtf8().constData(), a.first.toUtf8().constData(),
                        quoted(a.second).toUtf8().constData());
    for (const auto& c : node.children) print(*c, countsOnly);
}

int runShow(const QStringList& args) {
    const QStringList files = [&args] {
        QStringList out;
        for (const QString& a : args)
            if (!a.startsWith(QLatin1String("--"))) out << a;
        return out;
    }();
    if (files.isEmpty()) {
        std::fprintf(stderr, "pfhost show: name a document\n");
        return 2;
    }
    int status = 0;
    for (const QString& path : files) {
        QFile file(path);
        host::workdata::Node top;
        QString error;
        if (!file.open(QIODevice::ReadOnly)) {
            error = file.errorString();
        } else if (host::workdata::parse(file.readAll(), top, &error)) {
            if (files.size() > 1) std::printf("%s:\n", path.toUtf8().constData());
            for (const auto& root : top.children) print(*root, host::cli::hasFlag(args, "--tree"));
            continue;
        }
        std::fprintf(stderr, "pfhost show: %s: %s\n", path.toUtf8().constData(),
                     error.toUtf8().constData());
        status = 1;
    }
    return status;
}

}  // namespace

PF_HOST_COMMAND("show", "FILE... [--tree]",
                "print a saved work-data document as a tree of nodes and attributes "
                "(--tree: nodes only)",
                runShow);
