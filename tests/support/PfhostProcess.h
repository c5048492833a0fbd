// The build's pfhost program run as a child process, for the tests that drive it from its
// command line.
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QStringList>

// pfhost beside the module at `modulePath`; empty when it is not built.
inline QString PfhostBeside(const QString& modulePath) {
    const QString path = QFileInfo(modulePath).dir().filePath(QStringLiteral("pfhost"));
    return QFileInfo::exists(path) ? path : QString();
}

// Runs pfhost with `args`. `*status` is its exit code, or -1 when it did not end by itself
// within `timeoutMs`; returns everything it printed.
inline QString RunPfhost(const QString& pfhost, const QStringList& args, int* status, int timeoutMs = 60000) {
    QProcess p;
    p.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    p.start(pfhost, args);
    const bool ended = p.waitForFinished(timeoutMs);
    if (!ended) {
        p.kill();
        p.waitForFinished();
    }
    *status = ended && p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    return QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError());
}
