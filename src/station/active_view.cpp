#include "station/active_view.h"
#include "grid/goods_text_view.h"
#include "tiles/goods_list_view.h"

ActiveView::ActiveView(GoodsListView& tiles, GoodsTextView& grid, bool gridShown)
    : m_tiles(tiles), m_grid(grid), m_gridShown(gridShown)
{
}

void ActiveView::switchTo(const QSize& goodsArea)
{
    if (m_gridShown) {
        m_tiles.hide();
        m_tiles.ClearGoodsNew();
        m_grid.show();
        m_grid.LoadPickingGoods();
        m_grid.resize(goodsArea);
    } else {
        m_tiles.show();
        m_tiles.LoadPickingGoods();
        m_grid.hide();
        m_grid.ClearGoods();
    }
}

void ActiveView::showGoods(bool hasLines)
{
    if (m_gridShown) {
        if (hasLines)
            m_grid.LoadPickingGoods();
        else
            m_grid.ClearGoods();
    } else {
        if (hasLines)
            m_tiles.LoadPickingGoods();
        else
            m_tiles.ClearGoods();
    }
}

GoodsRecord ActiveView::checkCounts() const
{
    GoodsRecord counts;
    if (m_gridShown)
        m_grid.GetCheckCntNew(counts);
    else
        m_tiles.GetCheckCntNew(counts);
    return counts;
}

void ActiveView::setCheckCounts(const GoodsRecord& counts)
{
    if (m_gridShown)
        m_grid.SetCheckCntNew(counts);
    else
        m_tiles.SetCheckCntNew(counts);
}

void ActiveView::select(const Line& line)
{
    if (m_gridShown)
        m_grid.SelectedGoodsByIDNew(line.itemId, line.entryId);
    else
        m_tiles.SelectedGoodsSerilNumNew(line.itemId, line.entryId);
}

void ActiveView::countOne(const Line& line)
{
    if (m_gridShown)
        m_grid.PickingGoodsNew(line.itemId, line.entryId);
    else
        m_tiles.PickingGoods(line.index);
}

int ActiveView::status(const Line& line)
{
    return m_gridShown ? int(m_grid.IsPickedNew(line.itemId, line.entryId)) : int(m_tiles.IsPicked(line.index));
}

qint32 ActiveView::excessCnt(const Line& line) const
{
    return m_gridShown ? m_grid.GetExcessCntNew(line.itemId, line.entryId) : m_tiles.GetExcessCnt(line.index);
}

qint32 ActiveView::pickedCnt(const Line& line) const
{
    return m_gridShown ? m_grid.GetPickedCntNew(line.itemId, line.entryId) : m_tiles.GetPickedCnt(line.index);
}

void ActiveView::clearCheckedCnt(const Line& line)
{
    if (m_gridShown)
        m_grid.ClearCheckedCntNew(line.itemId, line.entryId);
    else
        m_tiles.ClearCheckedCnt(line.index);
}

void ActiveView::refresh(const Line& line)
{
    if (m_gridShown)
        m_grid.RefreshGoodsNew(line.itemId, line.entryId);
    else
        m_tiles.RefreshGoodsNew(line.itemId, line.entryId);
}
