// Inserts the module's default texts into the host's translation table (message 3019)
// and translates keys through Qt's translation, for which the host installs a translator.
#pragma once

#include <QString>

class CModule;

class CTranslateManager {
public:
    // `owner` supplies the host callback and handle for InsertTranslate.
    explicit CTranslateManager(const QString& context, const CModule* owner = nullptr);

    const QString& GetContextName() const { return context_; }

    // Each text is cut to 1023 bytes and terminated. Returns the host's answer, 1 without host.
    int InsertTranslate(const char* context, const char* key, const char* text) const;
    int InsertTranslate(const char* key, const char* text) const;

    // The key's text in the user's language, or the key itself when none is known.
    QString Translate(const char* key, const char* comment = nullptr) const;

private:
    QString context_;
    QByteArray context8_;
    const CModule* owner_;
};
