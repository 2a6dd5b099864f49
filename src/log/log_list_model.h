#pragma once
// The rows of the picking log pane as data: the shown entries, each row's
// text, visibility and top, the scroll position and the saved text. The pane
// widget only draws what this says.
#include "host/goods_record.h"
#include "host/record_list.h"
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

class LogListModel {
public:
    // Rows of the visible page; the last page keeps this many rows in view.
    static constexpr int PageRows = 7;
    // Height of every row, in twips.
    static constexpr int RowHeightTwips = 660;

    LogListModel();

    // Appends one entry and its row; an entry that is none or has an empty
    // "log" is ignored. The first entry into an empty list does not record
    // the row count (kept on purpose, see clear()).
    void addLog(const GoodsRecord& entry);
    // Drops every row (row 0 only becomes invisible) and empties the list.
    // The row count and the top index stay as they were: after a clear the
    // scroll position is kept and scrolling works against the previous count
    // until a second entry is added.
    void clear();
    // One row down while the top is below rowCountField() - PageRows; true when it moved.
    bool scrollDown();
    // One row up while the top is above 0; true when it moved.
    bool scrollUp();

    RecordList entries() const { return m_entries; }   // the shown-entry list
    int upperBound() const { return m_entries.UpperBound(); }
    int shownCount() const { return m_entries.Count(); }
    int topIndex() const { return m_topIndex; }
    int rowCountField() const { return m_rowCount; }
    // Rows that exist: row 0 always, rows 1..upperBound() while loaded.
    int rowSlots() const { return int(m_rows.size()); }
    QString rowText(int i) const;                // "" for a row that does not exist
    bool rowVisible(int i) const;                // the row's visibility flag
    // Twips: RowHeightTwips x (i - topIndex). Every layout places the rows this
    // way and the top index changes only with a layout, so it is the row's top.
    int rowTop(int i) const;
    // Position of the "异常" painted red in row i, -1 when none is painted.
    int rowRedPos(int i) const;
    // Texts of the visible rows whose top lies within [0, areaTwips), top to bottom.
    QStringList rowTextsInView(int areaTwips) const;
    // Texts of every visible row, in list order.
    QStringList allRowTexts() const;

    // Where the first "异常" is painted: searched between 0 and the length of
    // the text trimmed of blanks; -1 when not found there.
    static int redMarkPos(const QString& text);
    // The saved file's text: the dash line with the time, then CR LF + "log"
    // of each entry, then the final CR LF.
    QString saveText(const QDateTime& now) const;
    // The platform's default date-time text ("2024/5/3 14:05:09"; the time is
    // left out at midnight).
    static QString defaultDateTimeText(const QDateTime& now);
    // Fourteen digits: the date "yyyyMMdd" followed by the time "HHmmss".
    static QString proposedFileName(const QDateTime& now);

private:
    struct Row {
        QString text;
        bool visible = false;
        int redPos = -1;
    };
    void showInRow(int i, const QString& text);

    RecordList m_entries;
    std::vector<Row> m_rows;        // row i shows entry i
    int m_rowCount = 0;
    int m_topIndex = 0;
};
