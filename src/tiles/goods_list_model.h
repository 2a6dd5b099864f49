#pragma once
// The goods list without pixels: the records of the loaded order, the state
// of every tile (counts, marks, selection, place) and the counting, look-up
// and arrangement rules. GoodsListView shows it through a few real tiles.
//
// Line index = record index = tile index, counted from 0. Sizes are twips.
#include "host/goods_record.h"
#include "host/record_list.h"
#include <QString>
#include <vector>

// What one tile shows. The real GoodsView widgets mirror this.
struct GoodsTileState {
    QString goodsId;
    QString entryId;
    QString name;
    QString url;
    qint32 orderCnt = 0;
    qint32 checkedCnt = 0;
    QString picture;          // the path actually loaded ("" none yet)
    QString pendingPicture;   // an existing file not decoded yet
    bool okShow = false;
    bool warningShow = false;
    bool selected = false;
    int left = 0;             // the tile's place in the list, twips
    int top = 0;
};

class GoodsListModel {
public:
    static constexpr int TileGap = 120;
    static constexpr int DefaultColumns = 3;

    GoodsListModel();

    // ---- lines
    // Appends the record (the same shared record, not a copy) and a tile
    // filled from it; adds "GoodsURL", "OkShow", "WarningShow" and "Visible"
    // to the record when missing. Returns the new line index.
    int addGoods(const GoodsRecord& record);
    // Removes line `index` (record and tile); later lines move up one index.
    // Out of range: nothing.
    void removeGoods(int index);
    // Forgets every line; the records themselves are not touched.
    void clear();
    int count() const { return int(m_tiles.size()); }
    int highestTileIndex() const { return count() - 1; }
    const RecordList& records() const { return m_records; }
    GoodsRecord record(int index) const;   // none() out of range
    const GoodsTileState& tile(int index) const { return m_tiles[size_t(index)]; }
    GoodsTileState& tile(int index) { return m_tiles[size_t(index)]; }
    bool hasLine(int index) const;         // a record and a tile exist at index
    // Reads name, URL and both counts of line `index` again from its record.
    void refreshFromRecord(int index);

    // ---- counts: an index past the last line is a no-op or gives 0; a
    // negative index has no tile and raises HostError, as IsPicked does.
    void PickingGoods(int index);            // +1; a 32-bit overflow raises HostError
    qint32 GetExcessCnt(int index) const;    // checked - ordered when more, else 0
    qint32 GetPickedCnt(int index) const;    // min(checked, ordered)
    void ClearCheckedCnt(int index);         // checked := 0, marks untouched
    // 0 short, 1 complete (OK mark), 2 excess (alter mark, OK hidden).
    // An index without a tile raises HostError.
    qint16 IsPicked(int index);
    // Writes a checked count to the tile and then to the record.
    void setCheckedCnt(int index, qint32 count);
    // Mark changes, mirrored into the record's "OkShow" / "WarningShow".
    void setOkShow(int index, bool show);
    void setWarningShow(int index, bool show);

    // ---- keyed tables of checked counts: key = line index as decimal text
    // Adds "0", "1", ... with every tile's checked count (a key already in the
    // table raises HostError, as the host's keyed table does).
    void GetCheckCnt(GoodsRecord& table) const;
    // Restores "0", "1", ... up to the first missing key; marks untouched.
    void SetCheckCnt(const GoodsRecord& table);
    // The station's save and restore of a line's whole picking state (counts
    // and serials), keyed by goods and entry (CaptureLineStates); the restore
    // shows the counts again and evaluates every line's marks.
    void GetCheckCntNew(GoodsRecord& lineStates) const;
    void SetCheckCntNew(const GoodsRecord& lineStates);

    // ---- look-ups
    bool GoodsIDExists(const QString& goodsId) const;
    // -2 when the trimmed ID is empty, -1 when absent, else the first index.
    qint32 GetGoodsIndex(const QString& goodsId) const;
    // The same, matching "GoodsID" and "FEntryID" together.
    qint32 GetGoodsIndexNew(const QString& goodsId, qint32 entryId) const;
    // The first line whose record has this goods id and entry id; -1 none.
    int findLine(qint32 goodsId, qint32 entryId) const;
    // Whether line `index` has this goods id and entry id.
    bool lineMatches(int index, qint32 goodsId, qint32 entryId) const;

    // ---- selection and arrangement
    QString selectedGoodsID() const { return m_selectedGoodsId; }
    void setSelectedGoodsID(const QString& id) { m_selectedGoodsId = id; }
    int columnCount() const { return m_columns; }
    void setColumnCount(int columns);     // at least 1
    int topRow() const { return m_topRow; }
    void setTopRow(int row) { m_topRow = row < 0 ? 0 : row; }
    int rowCount() const { return m_rowCount; }
    // 1 when the lines fit in one row, else the rows they fill.
    void setRowCountFromLines();
    int rowOf(int index) const { return index / m_columns; }
    // Selection flags for every line (true only at selectedIndex; a negative
    // index means the line of the selected goods ID), then every tile's place.
    void arrange(int selectedIndex);
    // Places only, selection kept.
    void placeTiles();
    void placeTile(int index);
    // Distance between the tops of two rows / the lefts of two columns.
    static int rowPitch();
    static int columnPitch();
    // Selection flags only, places kept (a click on a tile).
    void selectOnly(int index);
    int selectedIndex() const;            // the first selected line, -1 none
    // ImgDown moves while top row < row count - 2, ImgUp while top row > 0.
    bool canScrollDown() const { return m_topRow < m_rowCount - 2; }
    bool canScrollUp() const { return m_topRow > 0; }
    // The top row that shows `row` when `visibleRows` rows fit in view.
    int topRowShowing(int row, int visibleRows) const;

    // ---- statements
    static QString webOrderGoodsSql(const QString& code);
    // One line per order entry, keeping FEntryID.
    static QString webOrderEntryGoodsSql(const QString& code);
    static QString goodsIndexByBarCodeSql(const QString& barCode);

    // Value of a record or table entry as a 32-bit integer: empty/null is 0,
    // text that is no number raises HostError (type mismatch), a value out of
    // range raises HostError (overflow). Fractions round half to even.
    static qint32 toInt32(const QVariant& value);

private:
    void requireTile(int index) const;

    RecordList m_records;
    std::vector<GoodsTileState> m_tiles;
    QString m_selectedGoodsId;
    int m_columns = DefaultColumns;
    int m_topRow = 0;
    int m_rowCount = 0;
};
