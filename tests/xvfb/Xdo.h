// xdotool for the tests that drive `pfhost terminal` from outside with real X events: runs
// it and waits for windows by their titles.
#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QTest>

class Xdo {
public:
    Xdo() : path_(QStandardPaths::findExecutable(QStringLiteral("xdotool"))) {}
    bool Available() const { return !path_.isEmpty(); }
    // Runs xdotool with `args`; its output.
    QString Run(const QStringList& args) const {
        QProcess p;
        p.start(path_, args);
        p.waitForFinished(10000);
        return QString::fromLocal8Bit(p.readAllStandardOutput()).trimmed();
    }
    // The id of a visible window whose title matches, once there is one; empty after `ms`.
    QString WaitWindow(const QString& title, int ms) const {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < ms) {
            const QString ids = Run({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), title});
            if (!ids.isEmpty()) return ids.split(QLatin1Char('\n')).last();
            QTest::qWait(100);
        }
        return QString();
    }

private:
    QString path_;
};
