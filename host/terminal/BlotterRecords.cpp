#include "host/terminal/BlotterRecords.h"

#include <cmath>

#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

namespace host {
namespace terminal {

namespace {

const char kBlotter[] = "Blotter";
const char kTrade[] = "Trade";

QString text(const workdata::Node& node, const char* name) {
    const QString* value = node.attribute(QString::fromLatin1(name));
    return value ? *value : QString();
}

// A number written with full precision, read back exactly.
QString exact(double v) { return QString::number(v, 'g', 17); }

}  // namespace

bool BlotterRecords::write(WorkDataStore& store, void* root, const std::vector<DealingService::Trade>& trades) {
    void* blotter = store.createChild(root, QString::fromLatin1(kBlotter));
    if (!blotter) return false;
    for (const DealingService::Trade& t : trades) {
        void* n = store.createChild(blotter, QString::fromLatin1(kTrade));
        if (!n) return false;
        store.setAttribute(n, QStringLiteral("Time"), t.received.toUTC().toString(Qt::ISODateWithMs));
        store.setAttribute(n, QStringLiteral("Dealing"), QString::fromStdString(t.dealingName));
        store.setAttribute(n, QStringLiteral("AccountId"), QString::number(t.accountId));
        store.setAttribute(n, QStringLiteral("Account"), t.accountName);
        store.setAttribute(n, QStringLiteral("Instrument"), QString::fromStdString(t.instrument));
        store.setAttribute(n, QStringLiteral("Kind"), QString::fromLatin1(DealingService::kindName(t.kind)));
        if (t.side != DealingService::Side::None) {
            store.setAttribute(n, QStringLiteral("Side"), QString::fromLatin1(DealingService::sideName(t.side)));
            store.setAttribute(n, QStringLiteral("Amount"), exact(t.amount));
        }
        store.setAttribute(n, QStringLiteral("Price"), exact(t.price));
    }
    return true;
}

std::vector<DealingService::Trade> BlotterRecords::read(const workdata::Node& top, QStringList* skipped) {
    std::vector<DealingService::Trade> out;
    std::size_t bad = 0, dropped = 0;
    for (const auto& child : top.children) {
        if (child->name != QLatin1String(kBlotter)) continue;
        for (const auto& n : child->children) {
            if (n->name != QLatin1String(kTrade)) continue;
            DealingService::Trade t;
            t.dealing = nullptr;
            t.received = QDateTime::fromString(text(*n, "Time"), Qt::ISODateWithMs);
            t.received.setTimeSpec(Qt::UTC);
            bool okId = false, okPrice = false, okAmount = true;
            t.accountId = text(*n, "AccountId").toInt(&okId);
            t.dealingName = text(*n, "Dealing").toStdString();
            t.accountName = text(*n, "Account");
            t.instrument = text(*n, "Instrument").toStdString();
            const QString kind = text(*n, "Kind"), side = text(*n, "Side");
            t.kind = kind == QLatin1String("order") ? DealingService::TradeKind::Order : DealingService::TradeKind::Deal;
            t.price = text(*n, "Price").toDouble(&okPrice);
            t.side = side == QLatin1String("buy")    ? DealingService::Side::Buy
                     : side == QLatin1String("sell") ? DealingService::Side::Sell
                                                     : DealingService::Side::None;
            if (t.side != DealingService::Side::None) t.amount = text(*n, "Amount").toDouble(&okAmount);
            const bool kindOk = kind == QLatin1String("deal") || kind == QLatin1String("order");
            if (!t.received.isValid() || !okId || !okPrice || !okAmount || !std::isfinite(t.price) ||
                !std::isfinite(t.amount) || t.instrument.empty() || !kindOk ||
                (!side.isEmpty() && t.side == DealingService::Side::None)) {
                ++bad;
                continue;
            }
            out.push_back(t);
        }
    }
    if (out.size() > kMostTrades) {
        dropped = out.size() - kMostTrades;
        out.erase(out.begin(), out.begin() + std::ptrdiff_t(dropped));
    }
    if (skipped && bad) *skipped << QStringLiteral("%1 trades of the blotter that could not be read").arg(bad);
    if (skipped && dropped)
        *skipped << QStringLiteral("the oldest %1 trades of the blotter (it keeps the newest %2)").arg(dropped).arg(kMostTrades);
    return out;
}

}  // namespace terminal
}  // namespace host
