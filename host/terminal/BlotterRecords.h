// The blotter in the workspace: one Trade node per deal or order booked, oldest first, under
// a Blotter node of the workspace's root:
//
//   <Blotter>
//     <Trade Time="2026-11-25T15:10:02.125Z" Dealing="Demo dealing" AccountId="1001"
//            Account="Demo account" Instrument="USDCHF" Kind="order" Side="sell"
//            Amount="250000" Price="0.9512"/>
//   </Blotter>
//
// Side and Amount are left out for a trade booked without a ticket. A trade that makes no
// sense (no time, instrument or kind, a price or amount that is not a number) is left out
// and named; a blotter of more than kMostTrades keeps its newest and says so.
#pragma once

#include <QStringList>
#include <vector>

#include "host/DealingService.h"

namespace host {

class WorkDataStore;
namespace workdata {
struct Node;
}

namespace terminal {

class BlotterRecords {
public:
    static const std::size_t kMostTrades = 1000000;

    // Adds the Blotter node with every trade under `root` (a node of the store).
    static bool write(WorkDataStore& store, void* root, const std::vector<DealingService::Trade>& trades);
    // The trades of the Blotter node under `top`; none when there is no such node.
    static std::vector<DealingService::Trade> read(const workdata::Node& top, QStringList* skipped);
};

}  // namespace terminal
}  // namespace host
