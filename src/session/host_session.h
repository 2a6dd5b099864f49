#pragma once
// The host session: the host property string, fetched afresh for every
// middle-tier call, and the parsed set HostProps kept for the component's life.
#include "host/goods_record.h"
#include <QString>
#include <functional>

// Fetches the property string: from the optional host object when one is set,
// else from PropsMgr.ShareProps for this process. Never cached.
QString GetPropsString();
// Stores the text as the last parsed string and rebuilds HostProps from it.
// A key given twice raises HostError.
bool ParsePropsString(const QString& text);
// The value of a key of HostProps (parsed on first use); a missing key raises HostError.
QString GetPropValue(const QString& key);
qint32 GetUserID();
// Plain-text search of a freshly fetched string; "" for a missing key.
QString FindPropValue(const QString& key);

// The parsed set (case-insensitive keys, insertion order) and the raw text last parsed.
GoodsRecord HostProps();
QString LastParsedPropsString();
// The optional host object that exposes a PropsString property.
void SetPropsHostObject(std::function<QString()> propsString);
// Drops HostProps and the host object (tests; the component's unload).
void ResetHostSession();
