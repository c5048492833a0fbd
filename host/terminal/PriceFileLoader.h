// Reads price files for the desktop terminal on a thread of their own, so that a large file
// (a million quotes) never stops the window: the reading reports its progress and can be
// stopped; the instrument it made joins the data core on the GUI thread afterwards.
#pragma once

#include <QString>
#include <QThread>
#include <atomic>
#include <memory>
#include <string>

#include "host/data/Instrument.h"

namespace host {
namespace terminal {

class PriceFileLoader : public QThread {
    Q_OBJECT
public:
    // `name` empty: the name the file gives (CsvPriceReader::nameFromPath).
    PriceFileLoader(const QString& path, const QString& name, QObject* parent = nullptr);
    ~PriceFileLoader() override;

    const QString& path() const { return path_; }
    // The name asked for; empty: the file's.
    const QString& name() const { return name_; }
    // After finished(): the instrument, or null with error() saying why.
    std::unique_ptr<data::Instrument> take() { return std::move(instrument_); }
    const QString& error() const { return error_; }
    // Ends the reading soon; the result is null then.
    void stop() { stop_ = true; }

signals:
    // Per cent of the file read.
    void progress(int percent);

protected:
    void run() override;

private:
    QString path_;
    QString name_;
    std::unique_ptr<data::Instrument> instrument_;
    QString error_;
    std::atomic<bool> stop_{false};
};

}  // namespace terminal
}  // namespace host
