#pragma once
// Language of the session and the translation of message texts, which are
// written in simplified Chinese in the code.
#include <QString>

class QWidget;

qint16 GetLanguageID();      // 1 chs, 2 en, 3 cht; asked once, then cached
QString GetLanguageCode();   // "chs", "en" or "cht"
// Translates one message; `text` is taken by reference as the host's loader
// may rewrite the caller's argument (one fixed case).
QString LoadString(QString& text);
QString LoadString(const QString& text);
QString ExpandMessage(const QString& text);
QString SetFrmFont(QWidget* form);
bool IsSettingFrmFont();
// Asks the resource loader for a key that is not a Chinese text (such as
// "irAmUS"), whatever the language; the key itself when there is no answer.
QString LoadResKey(const QString& key);
// Forgets the cached language and loaders (tests; a new session).
void ResetLanguageCache();
