#pragma once
// GoodsListView: the loaded order as a scrolling grid of GoodsView tiles,
// three to a row, with the checked counts of every line.
//
// Line index = record index = tile index, from 0: line i is record i of the
// list and tile i. The state of every tile lives in GoodsListModel; only the
// rows in view have real GoodsView widgets, taken from a small pool, so an
// order of thousands of lines loads and scrolls at once.
//
// Errors: the loaders, the refreshes and the click handlers report their own
// errors in a message box and never raise. The operations the station calls
// inside its own handlers raise HostError: IsPicked (or a count operation)
// with a negative index or an index without a tile, GetGoodsIndexByBarCode on
// a failing database, a keyed table holding a value that is no number.
#include "host/goods_record.h"
#include "tiles/goods_list_model.h"
#include <QString>
#include <QWidget>
#include <vector>

class GoodsView;
class QScrollBar;
class TileArrow;

class GoodsListView : public QWidget {
    Q_OBJECT

public:
    explicit GoodsListView(QWidget* parent = nullptr);
    ~GoodsListView() override;

    // ---- loading
    // Shows the module-wide goods set (its records themselves, so counts
    // written here are the GoodsLine's counts). No set, or an empty one:
    // nothing happens (the station clears with ClearGoods). Selects line 0.
    void LoadPickingGoods();
    // Loads the order of set["KeyCode"] with the list's own grouped query
    // (one line per item, quantities summed), props from set["PorpsString"].
    // A set without either key: nothing happens, the list is not cleared.
    void LoadWebOrderGoods(const GoodsRecord& set);
    // set["ScanMode"] non-zero: one line per order entry (keeping "FEntryID"
    // for GetGoodsIndexNew); missing or 0: exactly LoadWebOrderGoods.
    void LoadWebOrderGoodsNew(const GoodsRecord& set);
    // Appends the record (shared, not copied) and its tile; the row count
    // follows. Returns the new line index.
    int AddGoods(const GoodsRecord& record);
    // Removes line `index`; later lines move up. Out of range: nothing.
    void RemoveGoods(int index);
    // Empties the list (records and tiles) and scrolls back to the top; the
    // pooled widgets are kept for the next order.
    void ClearGoods();
    // As ClearGoods, and also forgets the selection and frees the pooled
    // widgets: used when the list is hidden for the grid view.
    void ClearGoodsNew();
    // True when the list holds at least one line.
    bool IsLoadGoods() const;
    // Redraws the tiles in view from their state.
    void Refresh();
    // Reads every line's name, URL and counts again from its record and
    // re-arranges with the current selection. Lines are never re-ordered:
    // the line index must stay the index of the order's goods set.
    void RefreshGoods();
    // Reads the line of goodsId/entryId again from its record, selects it,
    // brings it into view and raises GoodsSelected. No match: nothing.
    void RefreshGoodsNew(qint32 goodsId, qint32 entryId);

    // ---- counts: an index past the last line does nothing or gives 0; a
    // negative one has no tile and raises HostError, like IsPicked.
    void PickingGoods(int index);
    qint32 GetExcessCnt(int index) const;
    qint32 GetPickedCnt(int index) const;
    void ClearCheckedCnt(int index);
    // 0 short, 1 complete (shows the OK mark), 2 excess (alter mark).
    // Raises HostError for an index without a tile.
    qint16 IsPicked(int index);
    // Keyed tables of checked counts, key = line index as text ("0", "1", ...).
    void GetCheckCnt(GoodsRecord& table) const;
    // Restores up to the first missing key; marks are left as they are.
    void SetCheckCnt(const GoodsRecord& table);
    // The station's save and restore of every line's picking state, keyed by
    // goods and entry (CaptureLineStates); the restore re-evaluates the marks.
    void GetCheckCntNew(GoodsRecord& lineStates) const;
    void SetCheckCntNew(const GoodsRecord& lineStates);

    // ---- look-ups
    bool GoodsIDExists(const QString& goodsId) const;
    qint32 GetGoodsIndex(const QString& goodsId) const;           // -1 absent, -2 empty
    qint32 GetGoodsIndexNew(const QString& goodsId, qint32 entryId) const;
    // Looks the barcode up in the database (any order), then GetGoodsIndex of
    // its item: -2 when nothing matched, -1 when the goods are not in this
    // order. The order key takes no part. A database failure raises HostError.
    qint32 GetGoodsIndexByBarCode(const QString& orderKey, const QString& barCode);

    // ---- selection
    // Selects the line, brings it into view, raises GoodsSelected. A negative
    // index, or one past the last line: nothing.
    void SelectedGoodsByIndex(qint16 index);
    // The goods scan's selection: the (last) line with this goods id and entry
    // id is selected and shown, GoodsSelected raised; no match leaves every
    // tile deselected. goodsId 0: nothing.
    void SelectedGoodsSerilNumNew(qint32 goodsId, qint32 entryId);
    // Selects the first line with this goods id and entry id as
    // SelectedGoodsByIndex does. Returns its index, -1 none, -2 goodsId 0.
    qint32 SelectedGoodsNew(qint32 goodsId, qint32 entryId);
    QString selectedGoodsID() const { return m_model.selectedGoodsID(); }

    // ---- scrolling: ImgUp/ImgDown move the top row by one
    void scrollUp();     // while the top row is above 0
    void scrollDown();   // while the top row is below the row count - 2
    int topRow() const { return m_model.topRow(); }
    int rowCount() const { return m_model.rowCount(); }
    int columnCount() const { return m_model.columnCount(); }
    void setColumnCount(int columns);
    // Rows that fit in the tile area (at least 1).
    int visibleRows() const;

    // ---- state for the form and for tests
    const GoodsListModel& model() const { return m_model; }
    // The record of line `index`; none() out of range.
    GoodsRecord goodsRecord(int index) const { return m_model.record(index); }
    // The widget showing line `index`, or nullptr when its row is not in view.
    GoodsView* tileWidget(int index) const;
    // The picture path of line `index` as the tile has it (decodes it if the
    // line was never in view).
    QString goodsPictureOf(int index);
    // Number of GoodsView widgets alive (the pool).
    int tileWidgetCount() const { return int(m_pool.size()); }

signals:
    void GoodsSelected(const GoodsRecord& line);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void loadWebOrder(const GoodsRecord& set, bool perEntry);
    int addLine(const GoodsRecord& record);   // record and tile, no widget work
    void finishLoading();
    void showPartialLoad();
    void clearLines();
    void selectIndex(int index);
    void setScrollTop(int row, bool sync);    // VScMain and the top row together
    void bringIntoView(int index);
    void layoutChildren();
    void syncScrollRange();
    void syncTiles();               // bind/unbind/move the widgets of the rows in view
    void syncLine(int index);       // one line's widget, if it has one
    void bindTile(GoodsView* view, int index);
    void applyPicture(GoodsView* view, int index);
    GoodsView* takeTile();
    void unbindAll();
    void dropAllTiles();
    void onTileClicked(const QString& goodsId);

    GoodsListModel m_model;
    QWidget* m_area = nullptr;          // the tiles' clipping area
    QScrollBar* VScMain = nullptr;
    TileArrow* ImgUp = nullptr;
    TileArrow* ImgDown = nullptr;
    std::vector<GoodsView*> m_pool;     // every tile widget
    std::vector<GoodsView*> m_free;     // pooled widgets not showing a line
    std::vector<GoodsView*> m_lineWidget;   // per line: its widget or nullptr
    bool m_syncingScroll = false;
};
