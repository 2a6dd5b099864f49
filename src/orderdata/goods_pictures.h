#pragma once
// Goods pictures: attachments fetched through the host, decompressed into
// the picture folder as "Tmp_" followed by the item id.
#include <QString>

bool WriteGoodsPicture(const QString& props, qint32 attachmentId, const QString& itemId);
bool DecompressGoodsPicture(const QString& itemId);
