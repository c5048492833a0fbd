// Formats dates and times through the two functions the host hands over on message 3207.
#pragma once

#include <QDateTime>
#include <QString>

class CModule;

namespace Telvix {

class DateTime {
public:
    // The host's formatting functions: the arguments, then the result string to fill.
    typedef void (*FormatDateTimeFn)(const QDateTime& time, const QString& format, QString& out);
    typedef void (*FormatTimeFn)(long time, const QString& format, bool flag, QString& out);

    // Asks the host for the two functions; they stay null unless the host answers 0.
    DateTime(CModule* module, void* handle);

    bool IsValid() const { return formatDateTime_ && formatTime_; }
    // Empty when the host wrote nothing or supplied no function.
    QString toString(const QDateTime& time, const QString& format) const;
    QString toString(long time, const QString& format, bool flag) const;

private:
    FormatDateTimeFn formatDateTime_ = nullptr;
    FormatTimeFn formatTime_ = nullptr;
};

}  // namespace Telvix
