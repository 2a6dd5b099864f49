#include "station/serial_lists.h"
#include <QList>
#include <QStringView>

namespace {
bool isAbsent(QStringView element)
{
    return element.isEmpty() || element == u"0";
}
} // namespace

bool SerialListContains(const QString& list, const QString& value)
{
    if (list.isEmpty() || value.isEmpty())
        return false;
    for (const QStringView element : QStringView(list).split(u',')) {
        if (element == value)
            return true;
    }
    return false;
}

bool ListDiffersFrom(const QString& list, const QString& value)
{
    if (list.isEmpty() || isAbsent(value))
        return false;
    for (const QStringView element : QStringView(list).split(u',')) {
        if (!isAbsent(element) && element != value)
            return true;
    }
    return false;
}
