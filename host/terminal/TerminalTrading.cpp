// The terminal's ticket for the deals and orders the charts ask for: opened modal to the
// main window with the request's instrument, account and price; what the person books goes
// into the blotter, and the status bar says what was booked or that nothing was.
#include <QLocale>
#include <QMainWindow>
#include <cmath>

#include "host/DataCore.h"
#include "host/DialogAnswerer.h"
#include "host/Emulator.h"
#include "host/data/Instrument.h"
#include "host/terminal/Terminal.h"
#include "host/terminal/TradeTicket.h"

namespace host {
namespace terminal {

QDialog* Terminal::openTicket(const DealingService::Trade& request) {
    if (closing_) return nullptr;
    const std::string name = request.instrument;
    const data::Instrument* instrument = emulator_.data().loaded(name);
    const int decimals = instrument ? instrument->precision() : 4;
    // The market is the instrument's latest quote, read when the ticket shows it and again
    // when a deal is booked (a replay may have moved it in between).
    DataCore& data = emulator_.data();
    const auto market = [&data, name]() {
        const data::Instrument* i = data.loaded(name);
        return i && !i->quotes().empty() ? i->quotes().back().close : std::nan("");
    };
    TradeTicket* ticket = new TradeTicket(emulator_.dealing(), request, market, decimals, window());
    ticket->setAttribute(Qt::WA_DeleteOnClose);
    // A person fills it in, also while the emulator answers the module's dialogs.
    ticket->setProperty(DialogAnswerer::leaveAloneProperty(), true);
    connect(ticket, &TradeTicket::booked, this, [this, decimals](const DealingService::Trade& t) {
        const QString price = t.kind == DealingService::TradeKind::Deal && t.price == 0
                                  ? tr("at the market")
                                  : tr("at %1").arg(QString::number(t.price, 'f', decimals));
        showMessage(tr("Booked: %1 %2 %3 %4 (%5) on %6")
                        .arg(QString::fromLatin1(DealingService::sideName(t.side)),
                             QLocale(QLocale::English, QLocale::UnitedStates).toString(t.amount, 'f', 0),
                             QString::fromStdString(t.instrument), price,
                             QString::fromLatin1(DealingService::kindName(t.kind)), t.accountName));
        refresh();
    });
    connect(ticket, &QDialog::rejected, this, [this, name] {
        showMessage(tr("Ticket for %1 cancelled: nothing booked.").arg(QString::fromStdString(name)));
    });
    ticket->open();
    return ticket;
}

}  // namespace terminal
}  // namespace host
