#pragma once
// Goods pictures: attachments fetched through the host, decompressed into
// the picture folder as "Tmp_" followed by the item id.
#include <QString>

// Never raises: false when no picture file was produced.
bool WriteGoodsPicture(const QString& props, qint32 attachmentId, const QString& itemId);
// Raises HostError when the decompressor fails; the compressed file stays then.
bool DecompressGoodsPicture(const QString& itemId);
