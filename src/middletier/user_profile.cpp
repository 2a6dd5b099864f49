// TolBase.UserProfile: keyed records saved per user, category and key in
// t_UserProfile, one row per entry. The table has exactly the columns FUserID,
// FCategory, FKey, FName and FValue, as at every site: an entry is found by its
// name, never by its row's place (SQLite hands rows back in the order they were
// saved; a server may not).
#include "host/object_factory.h"
#include "middletier/middle_tier_values.h"
#include "sql/sql_engine.h"

namespace {

qint64 sessionUser(const QString& props)
{
    return WholeNumberValue(PropsValue(props, QStringLiteral("UserID")), QStringLiteral("UserID"));
}

class UserProfile : public IUserProfile {
public:
    GoodsRecord LoadUserProfile(const QString& props, const QString& category, const QString& key) override
    {
        RecordsetPtr rows = SqlEngine::forProps(props)->executeBound(
            QStringLiteral("SELECT FName, FValue FROM t_UserProfile"
                           " WHERE FUserID = ? AND FCategory = ? AND FKey = ?"),
            {sessionUser(props), category, key});
        GoodsRecord profile;
        for (; !rows->isEOF(); rows->MoveNext())
            profile.SetValue(rows->Fields(QStringLiteral("FName")).toString(), rows->Fields(QStringLiteral("FValue")));
        return profile;
    }

    void SaveUserProfile(const QString& props, const QString& category, const QString& key,
                         const GoodsRecord& record) override
    {
        if (record.isNone())
            throw HostError(HostErrors::ObjectNotSet, QStringLiteral("Object variable or With block variable not set"));
        const qint64 user = sessionUser(props);
        auto engine = SqlEngine::forProps(props);
        engine->inTransaction([&] {
            engine->executeBound(
                QStringLiteral("DELETE FROM t_UserProfile WHERE FUserID = ? AND FCategory = ? AND FKey = ?"),
                {user, category, key});
            for (int i = 0; i < record.Count(); ++i) {
                const QVariant value = record.ValueAt(i);
                engine->executeBound(
                    QStringLiteral("INSERT INTO t_UserProfile (FUserID, FCategory, FKey, FName, FValue)"
                                   " VALUES (?, ?, ?, ?, ?)"),
                    {user, category, key, record.KeyAt(i), value.isNull() ? QVariant() : QVariant(value.toString())});
            }
        });
    }
};

const BuiltInServerObject registration(ProgIds::UserProfile, [] { return std::make_shared<UserProfile>(); });

} // namespace
