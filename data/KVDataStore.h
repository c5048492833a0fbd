// A list of price series lines built from the host's list record coreListCreateData.
#pragma once

#include <QString>

#include <vector>

#include "abi/records/dpa_records.h"
#include "data/KVDataLine.h"

class CKVDataStore {
public:
    CKVDataStore();
    explicit CKVDataStore(coreListCreateData* list);
    virtual ~CKVDataStore();
    CKVDataStore(const CKVDataStore&) = delete;
    CKVDataStore& operator=(const CKVDataStore&) = delete;

    // Borrows the list's arrays, one line per array in list order; null leaves the store empty.
    void Create(coreListCreateData* list);
    // Adds an owned, empty line and returns it; earlier line pointers may move.
    CKVDataLine* AddLine();
    // Hands each line the list's array of the same index.
    void Update(coreListCreateData* list);
    // The first line whose UTF-16 name equals `name` exactly, or null.
    CKVDataLine* FindLineByName(const QString& name);
    // Line `index`, or null when there is no such line.
    CKVDataLine* operator[](unsigned index);
    void ClearData();
    void Clear();

    int GetCount() const { return count_; }
    fxDataPointArray** GetArrays() const { return arrays_; }
    bool OwnsArrays() const { return ownsArrays_; }

private:
    int count_ = 0;
    fxDataPointArray** arrays_ = nullptr;
    bool ownsArrays_ = false;
    std::vector<CKVDataLine> lines_;
};
