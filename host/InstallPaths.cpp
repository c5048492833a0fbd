#include "host/InstallPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace host {

namespace {

// The folder of the running program; /proc names it before a QCoreApplication exists.
QString programFolder() {
    if (QCoreApplication::instance()) return QCoreApplication::applicationDirPath();
    return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget()).absolutePath();
}

// A path of the installed layout, given relative to the program's folder.
QString installed(const char* relative) {
    return QDir::cleanPath(programFolder() + QLatin1Char('/') + QLatin1String(relative));
}

}  // namespace

std::string defaultModulePath() {
    const QString module = installed(PF_INSTALLED_MODULE);
    if (QFileInfo(module).isFile()) return QFile::encodeName(module).toStdString();
    return PF_MODULE_DEFAULT_PATH;
}

std::string examplesDir() {
    // Only an installed program has the module beside it: a build tree never does, whatever
    // else lies around it.
    if (QFileInfo(installed(PF_INSTALLED_MODULE)).isFile())
        return QFile::encodeName(installed(PF_INSTALLED_EXAMPLES)).toStdString();
    return PF_EXAMPLES_DIR;
}

}  // namespace host
