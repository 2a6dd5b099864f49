#include "station/verdict.h"

VerdictText ComposeVerdict(const QString& code, qint32 excess, qint32 missing, qint32 wrong)
{
    QString text = code + QStringLiteral("异常")
        + QStringLiteral(", 超出") + QString::number(excess) + QStringLiteral("件")
        + QStringLiteral(", 缺少") + QString::number(missing) + QStringLiteral("件")
        + QStringLiteral(", 误拣") + QString::number(wrong) + QStringLiteral("件");
    // Only the excess and missing parts are cut when zero; the wrong-goods part
    // always stays, the log readers are used to seeing "误拣0件".
    text.replace(QStringLiteral("超出0件"), QString());
    text.replace(QStringLiteral("缺少0件"), QString());
    text.replace(QStringLiteral(",,"), QString());
    const bool success = excess == 0 && missing == 0 && wrong == 0;
    if (success) {
        text.remove(QLatin1Char(','));
        text.replace(QStringLiteral("异常"), QStringLiteral("通过"));
    }
    return {text, success};
}

QString PickInfoFor(qint32 excess, qint32 wrong)
{
    if (excess != 0)
        return QStringLiteral("拣货超量");
    if (wrong != 0)
        return QStringLiteral("非本单商品");
    return QString();
}
