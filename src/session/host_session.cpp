#include "session/host_session.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/props_text.h"
#include "session/variant_convert.h"
#include <QObject>

namespace {

struct SessionState {
    GoodsRecord hostProps = GoodsRecord::none();
    QString lastParsed;
    std::function<QString()> hostObject;
};

SessionState& state()
{
    static SessionState s;
    return s;
}

// The store may hand back an object instead of plain text; its PropsString
// property is the text then.
QString variantToText(const QVariant& value)
{
    if (value.canConvert<QObject*>()) {
        if (const QObject* object = value.value<QObject*>()) {
            const QVariant inner = object->property("PropsString");
            if (inner.isValid())
                return inner.toString();
        }
    }
    return value.toString();
}

} // namespace

QString GetPropsString()
{
    if (state().hostObject)
        return state().hostObject();
    auto store = CreateServerObjectAs<IShareProps>(ProgIds::ShareProps);
    return variantToText(store->GetProperty(CurrentProcessId(), QStringLiteral("PropsString")));
}

bool ParsePropsString(const QString& text)
{
    SessionState& s = state();
    s.lastParsed = text;
    s.hostProps = GoodsRecord();
    for (const auto& pair : SplitPropsText(text))
        s.hostProps.Add(pair.first, pair.second);   // a second key raises, as the host's set does
    return true;
}

QString GetPropValue(const QString& key)
{
    if (state().hostProps.isNone())
        ParsePropsString(GetPropsString());
    return state().hostProps.Item(key).toString();
}

qint32 GetUserID()
{
    return variantToLong(GetPropValue(QStringLiteral("UserID")));
}

QString FindPropValue(const QString& key)
{
    QString props = GetPropsString();
    if (!props.endsWith(QLatin1Char(';')))
        props += QLatin1Char(';');
    // Deliberately loose: the first "key=" anywhere wins, even inside a braced
    // value or at the tail of a longer key. The lookup helpers rely on it.
    const int start = props.indexOf(key + QLatin1Char('='), 0, Qt::CaseInsensitive);
    if (start < 0)
        return QString();
    QString rest = props.mid(start);
    const int end = rest.indexOf(QLatin1Char(';'));
    if (end >= 0)
        rest.truncate(end);
    return rest.mid(key.size() + 1);
}

GoodsRecord HostProps() { return state().hostProps; }

QString LastParsedPropsString() { return state().lastParsed; }

void SetPropsHostObject(std::function<QString()> propsString)
{
    state().hostObject = std::move(propsString);
}

void ResetHostSession()
{
    SessionState& s = state();
    s.hostProps = GoodsRecord::none();
    s.lastParsed.clear();
    s.hostObject = nullptr;
}
