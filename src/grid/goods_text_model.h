#pragma once
// The counting rules of the grid view on its goods list, without pixels.
// The list is the order's shared goods set; counts are written into its lines.
// Grid row r shows the set's r-th line (index lower bound + r - 1): every
// walk over the lines covers all of them, the first one included.
#include "host/goods_record.h"
#include "host/record_list.h"
#include <QString>
#include <QVariant>
#include <unordered_map>

class GoodsTextModel {
public:
    // Line status of a count.
    enum Status : qint16 { Short = 0, Complete = 1, Excess = 2 };

    void setList(const RecordList& list);
    RecordList list() const { return m_list; }
    bool hasList() const { return !m_list.isNone(); }
    int upperBound() const { return hasList() ? m_list.UpperBound() : -1; }
    GoodsRecord line(int index) const;          // none() when out of range

    // First line in list order with this goods id (and entry id); none() when none.
    GoodsRecord firstLine(qint32 goodsId) const;
    GoodsRecord lineOf(qint32 goodsId, qint32 entryId) const;
    // Set index of the first line with this goods id (and entry id); -1 when none.
    int indexOf(qint32 goodsId) const;
    int indexOf(qint32 goodsId, qint32 entryId) const;

    // Adds 1 to "GoodsCheckedCnt" and returns the new count.
    static qint32 addOne(GoodsRecord& line);
    static qint16 status(const GoodsRecord& line);
    static qint32 pickedCnt(const GoodsRecord& line);   // min(picked, ordered)
    static qint32 excessCnt(const GoodsRecord& line);   // picked - ordered when above, else 0
    // The row key: "GoodsID" followed directly by "FEntryID" (25, 7 gives "257").
    static QString rowKey(const GoodsRecord& line);
    // A count or id value read as a whole number; text that is no number reads 0.
    static qint64 wholeNumber(const QVariant& value);

    qint16 IsPicked(qint32 goodsId) const;
    qint16 IsPickedNew(qint32 goodsId, qint32 entryId) const;
    qint32 GetPickedCnt(qint32 goodsId) const;
    qint32 GetExcessCnt(qint32 goodsId) const;
    // The same on the line of this goods and entry.
    qint32 GetPickedCntNew(qint32 goodsId, qint32 entryId) const;
    qint32 GetExcessCntNew(qint32 goodsId, qint32 entryId) const;
    qint32 GetGoodsIndex(const QString& goodsId) const;

    // Reorders the shared list in place: lines still short first, then the
    // complete and over-picked ones, each group in its present order.
    void partitionUnfinishedFirst();
    // status(line), worked out again only when the line was written since
    // it was last asked (a refresh asks about every line).
    qint16 knownStatus(const GoodsRecord& line);

private:
    struct KnownStatus {
        GoodsRecord line = GoodsRecord::none();
        quint64 version = 0;
        qint16 status = Short;
    };
    RecordList m_list = RecordList::none();
    std::unordered_map<const void*, KnownStatus> m_known;
};
