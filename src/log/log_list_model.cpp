#include "log/log_list_model.h"
#include "host/record_keys.h"
#include <QtGlobal>
#include <cmath>

namespace {

const QString kErrorMark = QStringLiteral("异常");

// The classic Trim: blanks only, not tabs or line breaks.
int trimmedLength(const QString& text)
{
    int front = 0;
    while (front < text.size() && text.at(front) == QLatin1Char(' '))
        ++front;
    int back = text.size();
    while (back > front && text.at(back - 1) == QLatin1Char(' '))
        --back;
    return back - front;
}

} // namespace

LogListModel::LogListModel() : m_rows(1) {}

int LogListModel::redMarkPos(const QString& text)
{
    // Searched from 0 up to the trimmed length, as the row always searched:
    // with leading blanks a mark near the end falls outside and stays black.
    const int limit = trimmedLength(text);
    const int p = text.indexOf(kErrorMark);
    return (p >= 0 && p + kErrorMark.size() <= limit) ? p : -1;
}

void LogListModel::showInRow(int i, const QString& text)
{
    Row& row = m_rows[size_t(i)];
    row.text = text;
    row.redPos = redMarkPos(text);
    row.visible = true;
}

void LogListModel::addLog(const GoodsRecord& entry)
{
    if (entry.isNone())
        return;
    const QString text = entry.GetValue(RecordKeys::log, QString()).toString();
    if (text.isEmpty())
        return;
    const int n = m_entries.UpperBound() + 1;
    if (n == 0) {
        // Row 0 is reused, and this path leaves the row count as it was.
        m_entries.Add(entry);
        showInRow(0, text);
        return;
    }
    m_entries.Insert(n, entry);
    m_rows.resize(size_t(n) + 1);
    m_rowCount = m_entries.UpperBound() + 1;
    showInRow(n, text);
}

void LogListModel::clear()
{
    for (int i = m_entries.UpperBound(); i >= 0; --i) {
        if (i != 0)
            m_rows.resize(size_t(i));
        else
            m_rows[0].visible = false;
    }
    m_entries.Clear();
}

bool LogListModel::scrollDown()
{
    if (m_topIndex >= m_rowCount - PageRows)
        return false;
    ++m_topIndex;
    return true;
}

bool LogListModel::scrollUp()
{
    if (m_topIndex <= 0)
        return false;
    --m_topIndex;
    return true;
}

QString LogListModel::rowText(int i) const
{
    return (i >= 0 && i < rowSlots()) ? m_rows[size_t(i)].text : QString();
}

bool LogListModel::rowVisible(int i) const
{
    return i >= 0 && i < rowSlots() && m_rows[size_t(i)].visible;
}

int LogListModel::rowTop(int i) const
{
    // Single precision, as the rows have always been placed.
    const float top = float(RowHeightTwips) * float(i - m_topIndex);
    return int(std::lround(top));
}

int LogListModel::rowRedPos(int i) const
{
    return (i >= 0 && i < rowSlots()) ? m_rows[size_t(i)].redPos : -1;
}

QStringList LogListModel::rowTextsInView(int areaTwips) const
{
    QStringList texts;
    for (int i = 0; i <= m_entries.UpperBound() && i < rowSlots(); ++i) {
        const int top = rowTop(i);
        if (m_rows[size_t(i)].visible && top >= 0 && top < areaTwips)
            texts << m_rows[size_t(i)].text;
    }
    return texts;
}

QStringList LogListModel::allRowTexts() const
{
    QStringList texts;
    for (int i = 0; i <= m_entries.UpperBound() && i < rowSlots(); ++i) {
        if (m_rows[size_t(i)].visible)
            texts << m_rows[size_t(i)].text;
    }
    return texts;
}

QString LogListModel::defaultDateTimeText(const QDateTime& now)
{
    // The runtime leaves out a time of exactly midnight.
    if (now.time() == QTime(0, 0, 0))
        return now.toString(QStringLiteral("yyyy/M/d"));
    return now.toString(QStringLiteral("yyyy/M/d H:mm:ss"));
}

QString LogListModel::proposedFileName(const QDateTime& now)
{
    return now.date().toString(QStringLiteral("yyyyMMdd")) + now.time().toString(QStringLiteral("HHmmss"));
}

QString LogListModel::saveText(const QDateTime& now) const
{
    const QString dashes = QStringLiteral("---------------------------");
    QString text = dashes + defaultDateTimeText(now) + QLatin1Char(' ') + dashes;
    for (int i = 0; i <= m_entries.UpperBound(); ++i)
        text += QStringLiteral("\r\n") + m_entries.Item(i).GetValue(RecordKeys::log, QString()).toString();
    // The file's print adds one line break after the whole text.
    return text + QStringLiteral("\r\n");
}
