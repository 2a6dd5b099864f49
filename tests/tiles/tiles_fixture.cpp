#include "tiles_fixture.h"
#include "host/platform.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "tiles/tile_pictures.h"
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPixmap>

namespace TilesTest {

bool writePicture(const QString& path, const QColor& colour, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour.lighter(150));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    const int r = qMin(width, height) / 3;
    p.drawEllipse(QPoint(width / 2, height / 2), r, r);
    p.end();
    return image.save(path, "JPG", 92);
}

QImage defaultPictureImage()
{
    QImage image(240, 240, QImage::Format_RGB32);
    image.fill(QColor(0x80, 0x80, 0x80));
    return image;
}

bool shows(const QPixmap& pixmap, const QColor& colour)
{
    if (pixmap.isNull())
        return false;
    const QImage image = pixmap.toImage();
    const QColor centre = image.pixelColor(image.width() / 2, image.height() / 2);
    // JPEG and scaling move a colour by a few steps at most.
    return qAbs(centre.red() - colour.red()) < 24 && qAbs(centre.green() - colour.green()) < 24
        && qAbs(centre.blue() - colour.blue()) < 24;
}

GoodsRecord goodsLine(const QVariant& goodsId, const QVariant& entryId, const QString& name, int ordered,
                      const QString& picture)
{
    GoodsRecord line;
    line.Add(QStringLiteral("FEntryID"), entryId);
    line.Add(QStringLiteral("GoodsID"), goodsId);
    line.Add(QStringLiteral("GoodsName"), name);
    line.Add(QStringLiteral("GoodsOrderCnt"), ordered);
    line.Add(QStringLiteral("GoodsPickCnt"), QVariant::fromValue<qint16>(0));
    line.Add(QStringLiteral("GoodsCheckedCnt"), QVariant::fromValue<qint16>(0));
    line.Add(QStringLiteral("GoodsPicture"), picture);
    return line;
}

RecordsetPtr FakeGetData::ExecuteSQL(const QString&, const QString& sql)
{
    if (answer)
        return answer(sql);
    return std::make_shared<Recordset>();
}

QByteArray FakeAccessory::GetID(const QString&, int attachmentId)
{
    return attachmentId > 0 ? QByteArray("packed picture") : QByteArray();
}

void FakeZip::DeCompress(const QString& source, const QString& target)
{
    if (!QFile::exists(source))
        throw HostError(HostErrors::FileError, QStringLiteral("File not found: %1").arg(source));
    QFile::remove(target);
    const QString picture = pictureFor ? pictureFor(target) : QString();
    if (picture.isEmpty() || !QFile::copy(picture, target))
        throw HostError(HostErrors::FileError, QStringLiteral("Cannot decompress %1").arg(source));
}

TileEnvironment::TileEnvironment()
{
    EXPECT_TRUE(m_dir.isValid());
    QDir(m_dir.path()).mkpath(QStringLiteral("images"));
    EXPECT_TRUE(defaultPictureImage().save(defaultPicture(), "JPG", 95));
    SetComponentFolder(m_dir.path());
    TilePictures::clearCache();
    SetPropsHostObject([] { return QStringLiteral("UserID=16394;ConnectString={Provider=SQLite;Data Source=none}"); });
    auto data = getData;
    auto z = zip;
    RegisterServerObject(ProgIds::GetData, [data] { return data; });
    RegisterServerObject(ProgIds::AccessoryView, [] { return std::make_shared<FakeAccessory>(); });
    RegisterServerObject(ProgIds::Zip, [z] { return z; });
    recordMessageBoxes(boxes);
}

TileEnvironment::~TileEnvironment()
{
    ResetSessionState();
    ResetHostSession();
    RestoreBuiltInServerObjects();
    SetComponentFolder(QString());
    TilePictures::clearCache();
}

QString TileEnvironment::path(const QString& name) const { return m_dir.path() + QLatin1Char('/') + name; }
QString TileEnvironment::defaultPicture() const { return path(QStringLiteral("images/default.jpg")); }

void TileEnvironment::loadOrderSet(const std::vector<Row>& rows)
{
    const QStringList columns = {
        QStringLiteral("FEntryID"), QStringLiteral("FBatchNo"), QStringLiteral("FSPID"),
        QStringLiteral("FStockID"), QStringLiteral("FItemID"), QStringLiteral("FModel"),
        QStringLiteral("FItemName"), QStringLiteral("FBarCode"), QStringLiteral("FSerialClassID"),
        QStringLiteral("FPicID"), QStringLiteral("FWebshopName"), QStringLiteral("FQuantity")};
    std::vector<std::vector<QVariant>> table;
    for (const Row& r : rows) {
        table.push_back({r.entryId, QString(), 0, 0, r.itemId, QString(), r.name, QString(), 0, 0,
                         QStringLiteral("Shop"), r.quantity});
    }
    auto previous = getData->answer;
    getData->answer = [columns, table](const QString&) { return std::make_shared<Recordset>(columns, table); };
    LoadOrderGoods(QStringLiteral("12345"));
    getData->answer = previous;
}

} // namespace TilesTest
