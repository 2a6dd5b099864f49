#include "tiles_fixture.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "tiles/tile_pictures.h"
#include <QDir>
#include <QPainter>

namespace TilesTest {

namespace {

// Attachment 0 is asked for each line all the same; it has no bytes.
class NoAttachments : public IAccessoryView {
public:
    QByteArray GetID(const QString&, int) override { return QByteArray(); }
};

} // namespace

bool writePicture(const QString& path, const QColor& colour, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour.lighter(150));
    QPainter p(&image);
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    const int r = qMin(width, height) / 3;
    p.drawEllipse(QPoint(width / 2, height / 2), r, r);
    p.end();
    return image.save(path, "JPG", 92);
}

bool shows(const QPixmap& pixmap, const QColor& colour)
{
    const QImage image = pixmap.toImage();
    if (image.isNull())
        return false;
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

TileEnvironment::TileEnvironment()
{
    EXPECT_TRUE(m_dir.isValid());
    QDir(m_dir.path()).mkpath(QStringLiteral("images"));
    QImage grey(240, 240, QImage::Format_RGB32);
    grey.fill(QColor(0x80, 0x80, 0x80));
    EXPECT_TRUE(grey.save(path(QStringLiteral("images/default.jpg")), "JPG", 95));
    SetComponentFolder(m_dir.path());
    TilePictures::clearCache();
    SetPropsHostObject([] { return QStringLiteral("UserID=16394;ConnectString={Provider=SQLite;Data Source=none}"); });
    m_data->picId = 0;
    RegisterServerObject(ProgIds::GetData, [d = m_data] { return d; });
    RegisterServerObject(ProgIds::AccessoryView, [] { return std::make_shared<NoAttachments>(); });
    recordMessageBoxes(m_boxes);
}

TileEnvironment::~TileEnvironment()
{
    ResetSessionState();
    ResetHostSession();
    RestoreBuiltInServerObjects();
    SetComponentFolder(QString());
    TilePictures::clearCache();
}

void TileEnvironment::loadOrderSet(const std::vector<OrderRow>& rows)
{
    m_data->rows = rows;
    LoadOrderGoods(QStringLiteral("12345"));
    m_data->rows.clear();
}

} // namespace TilesTest
