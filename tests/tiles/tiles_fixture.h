#pragma once
// Shared pieces of the tile tests: a component folder of its own with a
// default picture, picture files, goods lines, and host doubles for the
// middle tier, the attachments and the decompressor.
#include "host/goods_record.h"
#include "host/object_factory.h"
#include "host/recordset.h"
#include "support/host_doubles.h"
#include "support/qt_print.h"
#include <QColor>
#include <QImage>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <vector>

// Readable values in failure messages.
inline void PrintTo(const QStringList& l, std::ostream* os) { *os << l.join(QStringLiteral(" | ")).toStdString(); }
inline void PrintTo(const QColor& c, std::ostream* os) { *os << c.name().toStdString(); }

namespace TilesTest {

// Writes a JPEG of the given size: a coloured field with a darker disc, so
// that two pictures are told apart by their pixels.
bool writePicture(const QString& path, const QColor& colour, int width = 300, int height = 300);
// The default picture the tests install: mid grey, 240 square.
QImage defaultPictureImage();
// Whether a shown pixmap has the colour of a picture written by writePicture
// (its centre pixel is the disc, a corner pixel the field).
bool shows(const QPixmap& pixmap, const QColor& colour);

// One goods line as the order set holds it.
GoodsRecord goodsLine(const QVariant& goodsId, const QVariant& entryId, const QString& name, int ordered,
                      const QString& picture = QString());

// The middle tier: answers every statement with `answer(sql)`.
class FakeGetData : public IGetData {
public:
    std::function<RecordsetPtr(const QString& sql)> answer;
    RecordsetPtr ExecuteSQL(const QString& p, const QString& sql) override;
    std::optional<GoodsRecord> CheckReturnBills(const GoodsRecord&) override { return std::nullopt; }
};

// Attachments: any id above 0 has some bytes; the decompressor copies the
// picture made for that item into the target.
class FakeAccessory : public IAccessoryView {
public:
    QByteArray GetID(const QString&, int attachmentId) override;
};
class FakeZip : public IZip {
public:
    std::function<QString(const QString& target)> pictureFor;   // the file to copy
    void DeCompress(const QString& source, const QString& target) override;
};

// Owns a component folder with images/default.jpg and registers the doubles;
// everything is put back when it goes.
class TileEnvironment {
public:
    TileEnvironment();
    ~TileEnvironment();
    QString path(const QString& name) const;
    QString defaultPicture() const;

    std::shared_ptr<FakeGetData> getData = std::make_shared<FakeGetData>();
    std::shared_ptr<FakeZip> zip = std::make_shared<FakeZip>();
    std::shared_ptr<HostRecorder> boxes = std::make_shared<HostRecorder>();

    // Loads the module-wide order set through the real order-goods query,
    // with these lines as the rows of the middle tier.
    struct Row {
        int itemId;
        int entryId;
        QString name;
        int quantity;
    };
    void loadOrderSet(const std::vector<Row>& rows);

private:
    QTemporaryDir m_dir;
};

} // namespace TilesTest
