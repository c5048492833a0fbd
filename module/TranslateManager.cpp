#include "module/TranslateManager.h"

#include <QCoreApplication>
#include <cstring>
#include <memory>

#include "module/CModule.h"

namespace {

void copyField(char* field, std::size_t size, const char* text) {
    std::memset(field, 0, size);
    if (text) std::strncpy(field, text, size - 1);
}

}  // namespace

CTranslateManager::CTranslateManager(const QString& context, const CModule* owner)
    : context_(context), context8_(context.toLocal8Bit()), owner_(owner) {}

int CTranslateManager::InsertTranslate(const char* context, const char* key,
                                       const char* text) const {
    if (!owner_ || !owner_->sendToHost) return 1;
    std::unique_ptr<coreTranslateRecord> record(new coreTranslateRecord);
    copyField(record->context, sizeof record->context, context);
    copyField(record->key, sizeof record->key, key);
    copyField(record->text, sizeof record->text, text);
    return owner_->sendToHost(owner_->hostHandle, MSG_INSERT_TRANSLATION,
                              reinterpret_cast<std::intptr_t>(record.get()), 0);
}

int CTranslateManager::InsertTranslate(const char* key, const char* text) const {
    return InsertTranslate(context8_.constData(), key, text);
}

QString CTranslateManager::Translate(const char* key, const char* comment) const {
    return QCoreApplication::translate(context8_.constData(), key, comment);
}
