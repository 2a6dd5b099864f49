#include "reliability/host_fault_injector.h"
#include "host/object_factory.h"
#include <QSet>

const QString HostFaultInjector::FaultMarker = QStringLiteral("injected fault");

struct HostFaultInjector::State {
    QList<HostCall> calls;
    QHash<QString, int> counts;
    QSet<QString> armed;            // "key#number"
    QHash<QString, int> creations;  // per ProgID
    QSet<QString> armedCreations;   // "progId#number"

    // Counts the call and fails it when armed.
    void enter(const QString& key, const QString& detail)
    {
        const int number = ++counts[key];
        HostCall call{key, number, detail, false};
        const QString tag = key + QLatin1Char('#') + QString::number(number);
        if (armed.remove(tag)) {
            call.failed = true;
            calls.append(call);
            throw HostError(FaultNumber, QStringLiteral("%1: %2").arg(FaultMarker, tag));
        }
        calls.append(call);
    }
};

namespace {

using StatePtr = std::shared_ptr<HostFaultInjector::State>;

QString op(const QString& progId, const char* operation) { return HostFaultInjector::key(progId, operation); }

// A wrapper keeps the real object and the shared state; each call is counted
// (and maybe failed) before it is handed on.
template <class Interface>
class Wrapped : public Interface {
public:
    Wrapped(std::shared_ptr<Interface> inner, StatePtr s) : m_inner(std::move(inner)), m_s(std::move(s)) {}

protected:
    std::shared_ptr<Interface> m_inner;
    StatePtr m_s;
};

class SharePropsWrapper : public Wrapped<IShareProps> {
public:
    using Wrapped::Wrapped;
    QVariant GetProperty(qint64 processId, const QString& name) override
    {
        m_s->enter(op(ProgIds::ShareProps, "GetProperty"), name);
        return m_inner->GetProperty(processId, name);
    }
    void SetProperty(qint64 processId, const QString& name, const QVariant& value) override
    {
        m_inner->SetProperty(processId, name, value);
    }
};

class GetDataWrapper : public Wrapped<IGetData> {
public:
    using Wrapped::Wrapped;
    RecordsetPtr ExecuteSQL(const QString& props, const QString& sql) override
    {
        m_s->enter(op(ProgIds::GetData, "ExecuteSQL"), sql);
        return m_inner->ExecuteSQL(props, sql);
    }
    std::optional<GoodsRecord> CheckReturnBills(const GoodsRecord& record) override
    {
        m_s->enter(op(ProgIds::GetData, "CheckReturnBills"),
                   record.isNone() ? QString() : record.GetValue(QStringLiteral("FID")).toString());
        return m_inner->CheckReturnBills(record);
    }
};

class SaveDataWrapper : public Wrapped<ISaveData> {
public:
    using Wrapped::Wrapped;
    void SavePickingGoods(const GoodsRecord& record) override
    {
        m_s->enter(op(ProgIds::SaveData, "SavePickingGoods"),
                   record.isNone() ? QString()
                                   : record.GetValue(QStringLiteral("FLogisticsOrder")).toString() + QLatin1Char('=')
                                       + record.GetValue(QStringLiteral("FPickingGoodsstatus")).toString());
        m_inner->SavePickingGoods(record);
    }
    void UpdateDeliveryData(const QString& props, qint64 fid) override
    {
        m_s->enter(op(ProgIds::SaveData, "UpdateDeliveryData"), QString::number(fid));
        m_inner->UpdateDeliveryData(props, fid);
    }
};

class WebOrderInfoWrapper : public Wrapped<IWebOrderInfo> {
public:
    using Wrapped::Wrapped;
    std::optional<GoodsRecord> GetSingleSQLData(const QString& props, const QString& sql) override
    {
        m_s->enter(op(ProgIds::WebOrderInfo, "GetSingleSQLData"), sql);
        return m_inner->GetSingleSQLData(props, sql);
    }
};

class UserProfileWrapper : public Wrapped<IUserProfile> {
public:
    using Wrapped::Wrapped;
    GoodsRecord LoadUserProfile(const QString& props, const QString& category, const QString& key) override
    {
        m_s->enter(op(ProgIds::UserProfile, "LoadUserProfile"), key);
        return m_inner->LoadUserProfile(props, category, key);
    }
    void SaveUserProfile(const QString& props, const QString& category, const QString& key, const GoodsRecord& record) override
    {
        m_s->enter(op(ProgIds::UserProfile, "SaveUserProfile"), key);
        m_inner->SaveUserProfile(props, category, key, record);
    }
};

class AccessoryViewWrapper : public Wrapped<IAccessoryView> {
public:
    using Wrapped::Wrapped;
    QByteArray GetID(const QString& props, int attachmentId) override
    {
        m_s->enter(op(ProgIds::AccessoryView, "GetID"), QString::number(attachmentId));
        return m_inner->GetID(props, attachmentId);
    }
};

class ZipWrapper : public Wrapped<IZip> {
public:
    using Wrapped::Wrapped;
    void DeCompress(const QString& sourcePath, const QString& targetPath) override
    {
        m_s->enter(op(ProgIds::Zip, "DeCompress"), targetPath.section(QLatin1Char('/'), -1));
        m_inner->DeCompress(sourcePath, targetPath);
    }
};

class SoundWrapper : public Wrapped<ISound> {
public:
    using Wrapped::Wrapped;
    void Play(const QString& fileName) override
    {
        m_s->enter(op(ProgIds::Sound, "Play"), fileName);
        m_inner->Play(fileName);
    }
};

class ResLoaderWrapper : public Wrapped<IResLoader> {
public:
    using Wrapped::Wrapped;
    void setResDirectory(const QString& dir) override { m_inner->setResDirectory(dir); }
    void setResFileBaseName(const QString& name) override { m_inner->setResFileBaseName(name); }
    void setLanguageID(const QString& code) override { m_inner->setLanguageID(code); }
    QString LoadString(const QString& key) override
    {
        m_s->enter(op(ProgIds::ResLoader, "LoadString"), key);
        return m_inner->LoadString(key);
    }
};

class FrmResLoaderWrapper : public Wrapped<IFrmResLoader> {
public:
    using Wrapped::Wrapped;
    QString SetFrmFont(QWidget* form, const QString& languageCode, bool& flag) override
    {
        m_s->enter(op(ProgIds::FrmResLoader, "SetFrmFont"), languageCode);
        return m_inner->SetFrmFont(form, languageCode, flag);
    }
};

template <class Interface, class Wrapper>
bool wrapAs(const QString& progId, const std::shared_ptr<ServerObject>& object, const StatePtr& state)
{
    auto inner = std::dynamic_pointer_cast<Interface>(object);
    if (!inner)
        return false;
    RegisterServerObject(progId, [progId, inner, state]() -> std::shared_ptr<ServerObject> {
        const int number = ++state->creations[progId];
        if (state->armedCreations.remove(progId + QLatin1Char('#') + QString::number(number)))
            return nullptr;   // the factory answers "can't create object"
        return std::make_shared<Wrapper>(inner, state);
    });
    return true;
}

} // namespace

HostFaultInjector::HostFaultInjector() : m_state(std::make_shared<State>()) {}

HostFaultInjector::~HostFaultInjector() = default;

QStringList HostFaultInjector::allProgIds()
{
    return {ProgIds::ShareProps,  ProgIds::GetData,       ProgIds::SaveData, ProgIds::WebOrderInfo,
            ProgIds::UserProfile, ProgIds::AccessoryView, ProgIds::Zip,      ProgIds::Sound,
            ProgIds::ResLoader,   ProgIds::FrmResLoader};
}

QString HostFaultInjector::key(const QString& progId, const char* operation)
{
    return progId + QLatin1Char('.') + QLatin1String(operation);
}

void HostFaultInjector::install(const QStringList& progIds)
{
    for (const QString& id : progIds) {
        const std::shared_ptr<ServerObject> object = CreateServerObject(id);
        const bool wrapped = wrapAs<IShareProps, SharePropsWrapper>(id, object, m_state)
            || wrapAs<IGetData, GetDataWrapper>(id, object, m_state)
            || wrapAs<ISaveData, SaveDataWrapper>(id, object, m_state)
            || wrapAs<IWebOrderInfo, WebOrderInfoWrapper>(id, object, m_state)
            || wrapAs<IUserProfile, UserProfileWrapper>(id, object, m_state)
            || wrapAs<IAccessoryView, AccessoryViewWrapper>(id, object, m_state)
            || wrapAs<IZip, ZipWrapper>(id, object, m_state)
            || wrapAs<ISound, SoundWrapper>(id, object, m_state)
            || wrapAs<IResLoader, ResLoaderWrapper>(id, object, m_state)
            || wrapAs<IFrmResLoader, FrmResLoaderWrapper>(id, object, m_state);
        if (!wrapped)
            throw HostError(HostErrors::CannotCreateObject, QStringLiteral("no wrapper for %1").arg(id));
    }
}

void HostFaultInjector::arm(const QString& key, int number)
{
    m_state->armed.insert(key + QLatin1Char('#') + QString::number(number));
}

void HostFaultInjector::armCreation(const QString& progId, int number)
{
    m_state->armedCreations.insert(progId + QLatin1Char('#') + QString::number(number));
}

void HostFaultInjector::disarm()
{
    m_state->armed.clear();
    m_state->armedCreations.clear();
}

QList<HostCall> HostFaultInjector::calls() const { return m_state->calls; }

int HostFaultInjector::count(const QString& key) const { return m_state->counts.value(key); }

QList<HostCall> HostFaultInjector::failures() const
{
    QList<HostCall> failed;
    for (const HostCall& c : m_state->calls)
        if (c.failed)
            failed << c;
    return failed;
}

void HostFaultInjector::resetCounts()
{
    m_state->calls.clear();
    m_state->counts.clear();
    m_state->creations.clear();
}

bool SplitTsqlLiterals(const QString& sql, QStringList* literals, QString* shape)
{
    QString outside;
    qsizetype i = 0;
    const qsizetype n = sql.size();
    auto skipTo = [&](const QString& end) {
        const qsizetype at = sql.indexOf(end, i);
        if (at < 0)
            return false;
        outside += sql.mid(i, at + end.size() - i);
        i = at + end.size();
        return true;
    };
    while (i < n) {
        const QChar c = sql[i];
        if (c == QLatin1Char('-') && i + 1 < n && sql[i + 1] == QLatin1Char('-')) {
            const qsizetype end = sql.indexOf(QLatin1Char('\n'), i);
            outside += sql.mid(i, end < 0 ? -1 : end - i);
            i = end < 0 ? n : end;
        } else if (c == QLatin1Char('/') && i + 1 < n && sql[i + 1] == QLatin1Char('*')) {
            i += 2;
            outside += QStringLiteral("/*");
            if (!skipTo(QStringLiteral("*/")))
                return false;
        } else if (c == QLatin1Char('[')) {
            if (!skipTo(QStringLiteral("]")))
                return false;
        } else if (c == QLatin1Char('\'')) {
            QString literal;
            ++i;
            for (;;) {
                if (i >= n)
                    return false;
                if (sql[i] == QLatin1Char('\'')) {
                    if (i + 1 < n && sql[i + 1] == QLatin1Char('\'')) {
                        literal += QLatin1Char('\'');
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                literal += sql[i++];
            }
            if (literals)
                *literals << literal;
            outside += QStringLiteral("'?'");
        } else {
            outside += c;
            ++i;
        }
    }
    if (shape)
        *shape = outside;
    return true;
}
