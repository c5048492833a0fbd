#include "host/terminal/PriceFileLoader.h"

#include <QFileInfo>

#include "host/data/CsvPriceReader.h"

namespace host {
namespace terminal {

PriceFileLoader::PriceFileLoader(const QString& path, const QString& name, QObject* parent)
    : QThread(parent), path_(path), name_(name) {}

PriceFileLoader::~PriceFileLoader() {
    stop_ = true;
    wait();
}

void PriceFileLoader::run() {
    const qint64 size = QFileInfo(path_).size();
    int last = -1;
    std::string why;
    instrument_ = data::CsvPriceReader::readFile(
        path_.toStdString(), name_.toStdString(), &why, [this, size, &last](std::uint64_t bytes) {
            const int percent = size > 0 ? int(qMin<qint64>(100, qint64(bytes) * 100 / size)) : 0;
            if (percent != last) emit progress(last = percent);
            return !stop_.load();
        });
    if (!instrument_) error_ = QString::fromStdString(why);
}

}  // namespace terminal
}  // namespace host
