#pragma once
// The picking state of an order's lines, kept by line identity (goods and
// entry together), so that an order left and taken up again gets every line
// back as it was: its counts and the serials scanned on it. The order of the
// lines, the view that showed them and the order in which the database hands
// them back play no part.
#include "host/goods_record.h"
#include "host/record_list.h"
#include <QString>

// "GoodsID/FEntryID" of a line: the key of its state.
QString LineIdentity(const GoodsRecord& line);

// Adds one entry per line to `states` (keyed by LineIdentity, the value a
// record of the line's GoodsCheckedCnt, GoodsPickCnt, FSeriNum, FSerialID,
// FKFPeriod and FKFDate, copied). A line already in `states` is written over.
void CaptureLineStates(const RecordList& lines, GoodsRecord& states);

// Writes each line's state back from `states`; a line without an entry is
// left as it is. Returns how many lines were restored.
int RestoreLineStates(const RecordList& lines, const GoodsRecord& states);
