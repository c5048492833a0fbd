#include "data/KVDataStore.h"

#include <algorithm>
#include <cstdlib>

CKVDataStore::CKVDataStore() = default;

CKVDataStore::CKVDataStore(coreListCreateData* list) { Create(list); }

CKVDataStore::~CKVDataStore() { Clear(); }

void CKVDataStore::Create(coreListCreateData* list) {
    Clear();
    // A list without its pointer array or with a negative count holds no arrays.
    if (!list || !list->arrays || list->count <= 0) return;
    arrays_ = list->arrays;
    count_ = list->count;
    for (int i = 0; i < count_; ++i) {
        const CKVDataLine line(arrays_[i]);
        lines_.push_back(line);
    }
}

CKVDataLine* CKVDataStore::AddLine() {
    CKVDataLine line;
    line.Create();
    const std::size_t count = lines_.size() + 1;
    auto* arrays = static_cast<fxDataPointArray**>(std::calloc(count, sizeof(fxDataPointArray*)));
    if (!arrays) return nullptr;
    // The pointer array becomes the store's own; a borrowed one belongs to the host and is not freed.
    if (ownsArrays_) std::free(arrays_);
    arrays_ = arrays;
    ownsArrays_ = true;
    count_ = static_cast<int>(count);
    lines_.push_back(line);  // the copy shares the new header and takes the owns flag
    for (std::size_t i = 0; i < lines_.size(); ++i) arrays_[i] = lines_[i].GetHeader();
    // `line` dies here with capacity 0 and frees nothing: the header is the copy's now.
    return &lines_.back();
}

void CKVDataStore::Update(coreListCreateData* list) {
    if (!list || !list->arrays) return;
    // Only lines that exist are updated; a longer list does not reach past them.
    const std::size_t n = std::min(lines_.size(), static_cast<std::size_t>(std::max(0, +list->count)));
    for (std::size_t i = 0; i < n; ++i) lines_[i].Update(list->arrays[i]);
}

CKVDataLine* CKVDataStore::FindLineByName(const QString& name) {
    for (CKVDataLine& line : lines_)
        if (line.GetHeader() && line.GetName() == name) return &line;
    return nullptr;
}

CKVDataLine* CKVDataStore::operator[](unsigned index) {
    return index < static_cast<unsigned>(count_) && index < lines_.size() ? &lines_[index] : nullptr;
}

void CKVDataStore::ClearData() {
    for (CKVDataLine& line : lines_) line.ClearData();
}

void CKVDataStore::Clear() {
    lines_.clear();
    if (ownsArrays_) std::free(arrays_);
    ownsArrays_ = false;
    arrays_ = nullptr;
    count_ = 0;
}
