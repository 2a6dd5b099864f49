#pragma once
// The goods view the worker looks at: the tiles (GoodsListView) while
// chkShowText is unchecked, the grid (GoodsTextView) while it is checked.
// Every call the station makes into a view goes through here, so no handler
// asks which of the two is showing. Tiles address a line by its index, the
// grid by goods and entry.
#include "host/goods_record.h"
#include <QSize>
#include <QtGlobal>

class GoodsListView;
class GoodsTextView;

class ActiveView {
public:
    ActiveView(GoodsListView& tiles, GoodsTextView& grid, bool gridShown);

    bool isGrid() const { return m_gridShown; }

    // chkShowText was clicked: the active view shown and filled for the
    // current order (the grid sized to the goods area), the other hidden and emptied.
    void switchTo(const QSize& goodsArea);
    // The goods of the order just loaded; an empty set empties the view,
    // which would otherwise keep what it showed.
    void showGoods(bool hasLines);
    // The picked counts of every line, keyed by line, and back.
    GoodsRecord checkCounts() const;
    void setCheckCounts(const GoodsRecord& counts);

    // One line of the order, as both views address it.
    struct Line {
        qint32 index;     // in the goods set, for the tiles
        qint32 itemId;
        qint32 entryId;
    };
    void select(const Line& line);
    void countOne(const Line& line);
    // 0 short, 1 complete, 2 excess.
    int status(const Line& line);
    // The undo before a typed quantity works on the line the quantity goes
    // to: with the same goods on two entries, the first line's count is not
    // the one being replaced.
    qint32 excessCnt(const Line& line) const;
    qint32 pickedCnt(const Line& line) const;
    void clearCheckedCnt(const Line& line);
    // Re-sorts or redraws the line after it became complete or excess.
    void refresh(const Line& line);

private:
    GoodsListView& m_tiles;
    GoodsTextView& m_grid;
    bool m_gridShown;
};
