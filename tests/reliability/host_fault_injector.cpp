#include "reliability/host_fault_injector.h"
#include "host/object_factory.h"
#include <QRegularExpression>

const QString HostFaultInjector::FaultMarker = QStringLiteral("injected fault");

bool HostFaultInjector::State::pass(const QString& key, const QString& detail)
{
    const int number = ++counts[key];
    const bool fail = armed.remove(key + QLatin1Char('#') + QString::number(number));
    calls.append({key, number, detail, fail});
    return !fail;
}

namespace {

using StatePtr = std::shared_ptr<HostFaultInjector::State>;

template <class I>
struct Wrapped : I {
    using Interface = I;
    Wrapped(QString progId, std::shared_ptr<I> inner, StatePtr s)
        : m_progId(std::move(progId)), m_inner(std::move(inner)), m_s(std::move(s)) {}

    QString m_progId;
    std::shared_ptr<I> m_inner;
    StatePtr m_s;
};

// An operation that is counted, and maybe failed, before it is handed on.
#define RNW_PASS_ON(Ret, Name, Params, Args, Detail)                                                   \
    Ret Name Params override                                                                           \
    {                                                                                                  \
        const QString site = HostFaultInjector::key(m_progId, #Name);                                  \
        if (!m_s->pass(site, Detail))                                                                  \
            throw HostError(91000, QStringLiteral("%1: %2").arg(HostFaultInjector::FaultMarker, site)); \
        return m_inner->Name Args;                                                                     \
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
using Factory = std::function<std::shared_ptr<ServerObject>()>;

void countCreations(const QString& progId, const StatePtr& state, const Factory& make)
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

bool SplitTsqlLiterals(const QString& sql, QStringList* literals)
{
    static const QRegularExpression literal(QStringLiteral("'([^']*(?:''[^']*)*)'"));
    qsizetype end = 0;
    for (const QRegularExpressionMatch& m : literal.globalMatch(sql)) {
        *literals << m.captured(1).replace(QStringLiteral("''"), QStringLiteral("'"));
        end = m.capturedEnd();
    }
    // A quote between two literals would have opened one: only the rest can hold an open one.
    return !sql.mid(end).contains(QLatin1Char('\''));
}
