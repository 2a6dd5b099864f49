#pragma once
// The grid view of the order's goods: one row per goods line, the picked
// count in column 5, rows coloured by progress. It shows and counts the lines
// of the module-wide goods set itself (shared handles), so the tile view and
// the replay output see the same numbers.
//
// Rows are numbered the grid's way: row 0 is the title row, data rows are
// 1..rowCount(), and grid row r shows list line r. Columns are the grid's 0..6:
// column 0 is the row-number column, 1..6 the goods columns.
#include "grid/goods_text_model.h"
#include "host/goods_record.h"
#include "host/record_list.h"
#include <QColor>
#include <QWidget>
#include <vector>

class QTableWidget;
class QTableWidgetItem;
class QLabel;

class GoodsTextView : public QWidget {
    Q_OBJECT
public:
    // Grid columns.
    enum Column { ColNumber = 0, ColName, ColBarCode, ColModel, ColOrderCnt, ColCheckedCnt, ColSerial, ColumnCount };

    explicit GoodsTextView(QWidget* parent = nullptr);
    ~GoodsTextView() override;

    // --- Loading and layout ---
    // Takes the module-wide goods set (GetGoodsLineSet) and fills one row per
    // line, row r from the set's r-th line, all black; selects row 1 and
    // raises GoodsSelected for the first line. Errors go to the error
    // reporter; nothing throws.
    void LoadPickingGoods();
    // Empties the grid; the list stays, so the counting operations keep working on it.
    void ClearGoods();
    // Moves unfinished lines to the top (stable, in the shared set itself),
    // refills the rows, then, when the current goods line's "FItemID" is above
    // 0, reselects that goods and recolours every row.
    void RefreshGoods();
    // The same, reselecting the line with this goods id and entry id (the ids
    // the goods scan passes; they also become the current goods and entry ids).
    void RefreshGoodsNew(qint32 goodsId, qint32 entryId);

    // --- Picking counts ---
    // Adds 1 to the first line of this goods; the row is found by the whole row key.
    void PickingGoods(qint32 goodsId);
    // Adds 1 to the line of this goods and entry and writes it into that row.
    void PickingGoodsNew(qint32 goodsId, qint32 entryId);
    // 0 short, 1 exactly picked, 2 over-picked; 0 when no line matches.
    qint16 IsPicked(qint32 goodsId) const;
    qint16 IsPickedNew(qint32 goodsId, qint32 entryId) const;
    // min(picked, ordered) of the first line of this goods; 0 when none.
    qint32 GetPickedCnt(qint32 goodsId) const;
    // picked - ordered when over-picked, else 0.
    qint32 GetExcessCnt(qint32 goodsId) const;
    // The same on the line of this goods and entry; the clear also writes its row.
    qint32 GetPickedCntNew(qint32 goodsId, qint32 entryId) const;
    qint32 GetExcessCntNew(qint32 goodsId, qint32 entryId) const;
    void ClearCheckedCntNew(qint32 goodsId, qint32 entryId);
    // Writes "0" into the row found by the whole row key (if any) and sets the
    // first line of this goods back to 0.
    void ClearCheckedCnt(qint32 goodsId);
    // List index of the first line (from index 0) whose "GoodsID" reads as
    // goodsId; -1 when none, -2 when goodsId is blank.
    qint32 GetGoodsIndex(const QString& goodsId) const;
    // Stores the goods id (and entry id) as current and raises GoodsSelected
    // with the first matching line; nothing for id <= 0 or no list.
    void SelectedGoodsByID(qint32 goodsId);
    void SelectedGoodsByIDNew(qint32 goodsId, qint32 entryId);
    // Puts each line's picking state back from a record of line states
    // (CaptureLineStates), matched by goods and entry, and redraws every row
    // with its count and colour.
    void SetCheckCntNew(const GoodsRecord& lineStates);
    // Adds every line's picking state to the record (a shared record, filled
    // through its handle), keyed by goods and entry.
    void GetCheckCntNew(const GoodsRecord& lineStates) const;

    // --- The grid's cell click (also what a mouse click on a cell runs) ---
    // row is the grid row (0 = title row, ignored). Errors are reported.
    void fpGoodsClick(int col, int row);

    // --- Read access for the form, the replay output and tests ---
    RecordList goodsList() const { return m_model.list(); }
    int rowCount() const;                       // data rows
    QString cellText(int row, int col) const;   // row 1..rowCount, col 0..6
    QString rowKey(int row) const;              // column-0 tag: GoodsID followed by FEntryID
    QString rowGoodsTag(int row) const;         // column-1 tag: GoodsID
    QColor rowColor(int row) const;             // text colour of the row (column 1)
    bool rowColorUniform(int row) const;        // every column of the row shares that colour
    int activeRow() const;                      // grid row of the active cell, 0 when none
    QString columnTitle(int col) const;         // as shown
    QTableWidget* fpGoods() const { return m_grid; }

signals:
    void GoodsSelected(GoodsRecord line);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void setUpGrid();
    void layOut();
    void fillRow(int row, const GoodsRecord& line);
    void paintRow(int row, const QColor& color);
    void setCountCell(int row, const QVariant& count);
    void setActiveRow(int row);
    void refresh(bool withEntry, qint32 goodsId, qint32 entryId);
    int rowOfWholeKey(qint32 goodsId) const;
    int rowOfKey(const QString& key) const;
    QTableWidgetItem* cell(int row, int col) const;
    void select(const GoodsRecord& line, qint32 goodsId);

    // What each row shows, so that a refresh rewrites only the rows whose
    // line moved or was written: the line and its version at the last fill,
    // whether a cell was written since, the one colour of all its cells.
    struct RowState {
        GoodsRecord line = GoodsRecord::none();
        quint64 version = 0;
        bool filled = false;
        QColor colour;   // invalid: the cells may differ
        QString key;     // the column-0 tag: GoodsID followed by FEntryID
    };
    void forgetRowStates();
    RowState& rowState(int row);
    bool rowShows(int row, const GoodsRecord& line);

    class QuietRows;
    QuietRows* m_quiet = nullptr;   // set while a refresh rewrites rows

    GoodsTextModel m_model;
    QTableWidget* m_grid = nullptr;
    QLabel* m_cornerTitle = nullptr;
    std::vector<RowState> m_rowStates;   // grid row r at r - 1
};
