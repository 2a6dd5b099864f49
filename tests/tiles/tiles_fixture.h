#pragma once
// Shared pieces of the tile tests: a component folder of its own with a
// default picture, picture files, goods lines, and orders of the test's rows.
#include "grid/order_fixture.h"
#include "host/goods_record.h"
#include "support/host_doubles.h"
#include "support/qt_print.h"
#include <QColor>
#include <QPixmap>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <vector>

// Readable values in failure messages.
inline void PrintTo(const QStringList& l, std::ostream* os) { *os << l.join(QStringLiteral(" | ")).toStdString(); }
inline void PrintTo(const QColor& c, std::ostream* os) { *os << c.name().toStdString(); }

namespace TilesTest {

// A JPEG of a light field with a disc of `colour`: pictures are told apart by their centre pixel.
bool writePicture(const QString& path, const QColor& colour, int width = 300, int height = 300);
bool shows(const QPixmap& pixmap, const QColor& colour);

// One goods line as the order set holds it.
GoodsRecord goodsLine(const QVariant& goodsId, const QVariant& entryId, const QString& name, int ordered,
                      const QString& picture = QString());

// Owns a component folder with a mid-grey images/default.jpg and registers the
// host doubles; everything is put back when it goes.
class TileEnvironment {
public:
    TileEnvironment();
    ~TileEnvironment();
    QString path(const QString& name) const { return m_dir.path() + QLatin1Char('/') + name; }

    // Loads the module-wide order set through the real order-goods query; each
    // line's picture is Tmp_<item> in the picture folder.
    void loadOrderSet(const std::vector<OrderRow>& rows);

private:
    QTemporaryDir m_dir;
    std::shared_ptr<RowsGetData> m_data = std::make_shared<RowsGetData>();
    std::shared_ptr<HostRecorder> m_boxes = std::make_shared<HostRecorder>();
};

} // namespace TilesTest
