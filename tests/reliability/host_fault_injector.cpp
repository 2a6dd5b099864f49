#include "reliability/host_fault_injector.h"
#include "host/object_factory.h"
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

const QString HostFaultInjector::FaultMarker = QStringLiteral("injected fault");

struct HostFaultInjector::State {
    QList<HostCall> calls;
    QHash<QString, int> counts;
    QSet<QString> armed;   // "key#number"

    // Counts the call; false when it is to fail.
    bool pass(const QString& key, const QString& detail)
    {
        const int number = ++counts[key];
        const bool fail = armed.remove(key + QLatin1Char('#') + QString::number(number));
        calls.append({key, number, detail, fail});
        return !fail;
    }
};

namespace {

using StatePtr = std::shared_ptr<HostFaultInjector::State>;

template <class I>
struct Wrapped : I {
    using Interface = I;
    Wrapped(QString progId, std::shared_ptr<I> inner, StatePtr s)
        : m_progId(std::move(progId)), m_inner(std::move(inner)), m_s(std::move(s)) {}

    void enter(const char* operation, const QString& detail)
    {
        const QString key = HostFaultInjector::key(m_progId, operation);
        if (!m_s->pass(key, detail))
            throw HostError(91000, QStringLiteral("%1: %2#%3").arg(HostFaultInjector::FaultMarker, key).arg(m_s->counts[key]));
    }

    QString m_progId;
    std::shared_ptr<I> m_inner;
    StatePtr m_s;
};

// An operation that is counted, and maybe failed, before it is handed on.
#define RNW_PASS_ON(Ret, Name, Params, Args, Detail) \
    Ret Name Params override                         \
    {                                                \
        enter(#Name, Detail);                        \
        return m_inner->Name Args;                   \
    }

struct GetData : Wrapped<IGetData> {
    using Wrapped::Wrapped;
    RNW_PASS_ON(RecordsetPtr, ExecuteSQL, (const QString& props, const QString& sql), (props, sql), sql)
    RNW_PASS_ON(std::optional<GoodsRecord>, CheckReturnBills, (const GoodsRecord& record), (record), {})
};

struct SaveData : Wrapped<ISaveData> {
    using Wrapped::Wrapped;
    RNW_PASS_ON(void, SavePickingGoods, (const GoodsRecord& r), (r),
                r.isNone() ? QString() : r.GetValue(QStringLiteral("FPickingGoodsstatus")).toString())
    RNW_PASS_ON(void, UpdateDeliveryData, (const QString& props, qint64 fid), (props, fid), {})
};

struct WebOrderInfo : Wrapped<IWebOrderInfo> {
    using Wrapped::Wrapped;
    RNW_PASS_ON(std::optional<GoodsRecord>, GetSingleSQLData, (const QString& props, const QString& sql), (props, sql), sql)
};

struct UserProfile : Wrapped<IUserProfile> {
    using Wrapped::Wrapped;
    RNW_PASS_ON(GoodsRecord, LoadUserProfile, (const QString& p, const QString& c, const QString& key), (p, c, key), key)
    RNW_PASS_ON(void, SaveUserProfile, (const QString& p, const QString& c, const QString& key, const GoodsRecord& r),
                (p, c, key, r), key)
};

#undef RNW_PASS_ON

// Every creation of the ProgID's object is counted, and fails when armed: no
// object, which the factory reports as it does for any ProgID.
void countCreations(const QString& progId, const StatePtr& state, const std::function<std::shared_ptr<ServerObject>()>& make)
{
    RegisterServerObject(progId, [=]() -> std::shared_ptr<ServerObject> {
        return state->pass(HostFaultInjector::key(progId, "new"), {}) ? make() : nullptr;
    });
}

template <class Wrapper>
void wrap(const QString& progId, const StatePtr& state)
{
    auto inner = CreateServerObjectAs<typename Wrapper::Interface>(progId);
    countCreations(progId, state, [=] { return std::make_shared<Wrapper>(progId, inner, state); });
}

} // namespace

HostFaultInjector::HostFaultInjector() : m_state(std::make_shared<State>()) {}

void HostFaultInjector::install()
{
    // Objects whose one call follows their creation in the same handler:
    // a failing creation stands for a failing call.
    for (const QString& id : {ProgIds::ShareProps, ProgIds::AccessoryView, ProgIds::Zip, ProgIds::Sound, ProgIds::ResLoader,
                              ProgIds::FrmResLoader}) {
        const std::shared_ptr<ServerObject> object = CreateServerObject(id);
        countCreations(id, m_state, [object] { return object; });
    }
    wrap<GetData>(ProgIds::GetData, m_state);
    wrap<SaveData>(ProgIds::SaveData, m_state);
    wrap<WebOrderInfo>(ProgIds::WebOrderInfo, m_state);
    wrap<UserProfile>(ProgIds::UserProfile, m_state);
}

QString HostFaultInjector::key(const QString& progId, const char* operation)
{
    return progId + QLatin1Char('.') + QLatin1String(operation);
}

void HostFaultInjector::arm(const QString& key, int number)
{
    m_state->armed.insert(key + QLatin1Char('#') + QString::number(number));
}

void HostFaultInjector::disarm() { m_state->armed.clear(); }

QList<HostCall> HostFaultInjector::calls() const { return m_state->calls; }

int HostFaultInjector::count(const QString& key) const { return m_state->counts.value(key); }

bool HostFaultInjector::fired() const
{
    return std::any_of(m_state->calls.begin(), m_state->calls.end(), [](const HostCall& c) { return c.failed; });
}

void HostFaultInjector::resetCounts()
{
    m_state->calls.clear();
    m_state->counts.clear();
}

bool SplitTsqlLiterals(const QString& sql, QStringList* literals, QString* shape)
{
    static const QRegularExpression literal(QStringLiteral("'([^']*(?:''[^']*)*)'"));
    QString outside;
    qsizetype from = 0;
    for (const QRegularExpressionMatch& m : literal.globalMatch(sql)) {
        outside += sql.mid(from, m.capturedStart() - from) + QStringLiteral("'?'");
        from = m.capturedEnd();
        if (literals)
            *literals << m.captured(1).replace(QStringLiteral("''"), QStringLiteral("'"));
    }
    // A quote between two literals would have opened one: only the rest can hold an open one.
    outside += sql.mid(from);
    if (shape)
        *shape = outside;
    return !sql.mid(from).contains(QLatin1Char('\''));
}
