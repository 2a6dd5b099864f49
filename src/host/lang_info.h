#pragma once
// RnLangInfo.LangInfo: the host's session language. The launcher's --lang
// sets it for the whole process; "chs" until then.
#include <QString>

void SetHostLanguageCode(const QString& code);
QString HostLanguageCode();
