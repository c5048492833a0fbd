// CKVDataStore: borrowing the host's list, handing new owned lines over, updates and look-ups.
#include <gtest/gtest.h>

#include <algorithm>

#include "data/KVDataStore.h"
#include "dpa_arrays.h"

namespace {

TEST(KVDataStore, AddLineHandsTheHeaderToTheStoredCopy) {
    std::vector<fxDataPointArray*> empty(2);
    {
        CKVDataStore store;
        empty[0] = store.AddLine()->GetHeader();
        empty[1] = store.AddLine()->GetHeader();
        ASSERT_EQ(store.GetCount(), 2);
        EXPECT_TRUE(store[0]->IsOwner());
        EXPECT_TRUE(std::equal(empty.begin(), empty.end(), store.GetArrays()));
        EXPECT_EQ(store[2], nullptr);

        // A line with data survives the vector growing under it and is freed once, by the store.
        CKVDataLine* filled = store.AddLine();
        filled->InsertDPV(DPT_INT32, "TIME");
        const std::int32_t t = 42;
        filled->AppendData(reinterpret_cast<const unsigned char*>(&t));
        for (int i = 0; i < 8; ++i) empty.push_back(store.AddLine()->GetHeader());
        EXPECT_EQ(store[2]->GetTime(0), 42);
        store[2]->SetName("EURUSD", "", 'D', 1, 0);
        EXPECT_EQ(store.FindLineByName("EURUSD"), store[2]);
        EXPECT_EQ(store.FindLineByName("eurusd"), nullptr);
    }  // only the line with a data block frees its header
    for (fxDataPointArray* header : empty) FreeOwnedHeader(header);
}

TEST(KVDataStore, BorrowsTheHostListAndUpdatesByIndex) {
    HostArray a({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}});
    HostArray b({{DPT_INT32, "TIME"}});
    a.Add({1, 1});
    b.Add({5});
    b.Name(u"GBPUSD");
    fxDataPointArray* arrays[3] = {&a.a, nullptr, &b.a};
    coreListCreateData list{3, arrays};
    CKVDataStore store(&list);
    ASSERT_EQ(store.GetCount(), 3);
    EXPECT_FALSE(store.OwnsArrays());
    EXPECT_EQ(store[1]->GetHeader(), nullptr);  // a null entry gives an empty line
    EXPECT_EQ(store.FindLineByName("GBPUSD"), store[2]);

    a.Add({2, 2});
    fxDataPointArray* longer[5] = {&a.a, &b.a, &b.a, &b.a, &b.a};
    coreListCreateData update{5, longer};
    store.Update(&update);  // updates the three lines that exist, no more
    EXPECT_EQ(store[1]->GetHeader(), &b.a);
    EXPECT_EQ(store[1]->GetTime(0), 0);  // Update takes the array but does not learn its layout
    EXPECT_EQ(store[0]->GetPrevCount(), 2);

    fxDataPointArray* header = store.AddLine()->GetHeader();  // the host's pointer array is not freed
    EXPECT_TRUE(store.OwnsArrays());
    EXPECT_EQ(store.GetArrays()[2], &b.a);
    store.ClearData();  // borrowed blocks are let go, not freed
    EXPECT_EQ(+a.a.pointCount, 0);

    coreListCreateData broken{4, nullptr};
    store.Create(&broken);
    EXPECT_EQ(store[0], nullptr);
    FreeOwnedHeader(header);
}

}  // namespace
