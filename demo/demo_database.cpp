#include "demo/demo_database.h"
#include "host/host_error.h"
#include "sql/text_collation.h"
#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QHash>
#include <QPair>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QUrl>
#include <QUuid>
#include <QVariant>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>
#include <zlib.h>

// The schema is a resource of this static library: an archive member that
// nothing refers to is left out at link time, so it is registered by name.
static void registerSchemaResource()
{
    Q_INIT_RESOURCE(demo_schema);
}

namespace {

// ---------------------------------------------------------------------------
// The warehouse. Everything below is fixed data or derived from it with a
// fixed seed, so two runs give the same rows.

struct DemoItem {
    int id;
    const char* number;
    const char* name;
    const char* model;
    bool barcode;       // FBarcode and a t_Barcode row
    int serialClass;    // FSerialClassID; FIsSnManage follows it
    bool picture;       // a t_Accessory row
};

const DemoItem kItems[] = {
    {1001, "01.001", "蓝牙耳机", "BT-520 黑色", true, 0, true},
    {1002, "01.002", "蓝牙耳机", "BT-520 白色", true, 0, true},
    {1003, "01.003", "手机壳", "iP15 透明", true, 0, true},
    {1004, "01.004", "钢化膜", "6.1寸 高清", true, 0, true},
    {1005, "01.005", "数据线", "USB-C 1米", true, 0, true},
    {1006, "01.006", "充电头", "20W 快充", true, 0, true},
    {1007, "01.007", "移动电源", "10000mAh", true, 0, true},
    {1008, "02.001", "保温杯", "500ml 不锈钢", true, 0, true},
    {1009, "02.002", "陶瓷马克杯", "350ml 白", true, 0, true},
    {1010, "02.003", "玻璃水杯", "400ml 双层", true, 0, true},
    {1011, "02.004", "筷子套装", "10双 红木", false, 0, true},
    {1012, "02.005", "抹布", "5片装", false, 0, true},
    {1013, "02.006", "收纳盒", "大号 灰色", true, 0, true},
    {1014, "03.001", "洗发水", "750ml 去屑", true, 0, true},
    {1015, "03.002", "沐浴露", "1L 清香", true, 0, true},
    {1016, "03.003", "牙膏", "120g 薄荷", true, 0, true},
    {1017, "03.004", "牙刷", "软毛 4支装", true, 0, true},
    {1018, "03.005", "洗衣液", "2kg 薰衣草", true, 0, true},
    {1019, "03.006", "纸巾", "3层 10包", false, 0, true},
    {1020, "04.001", "纯棉T恤", "L 白色", true, 0, true},
    {1021, "04.002", "纯棉T恤", "XL 黑色", true, 0, true},
    {1022, "04.003", "运动袜", "5双装 均码", true, 0, true},
    {1023, "04.004", "棒球帽", "可调 藏青", false, 0, false},
    {1024, "05.001", "坚果礼盒", "1.2kg", true, 0, true},
    {1025, "05.002", "绿茶", "250g 明前", true, 0, true},
    {1026, "05.003", "挂耳咖啡", "10袋装", true, 0, true},
    {1027, "05.004", "红枣", "500g 新疆", false, 0, true},
    {1028, "06.001", "中性笔", "0.5mm 黑 12支", true, 0, true},
    {1029, "06.002", "笔记本", "A5 横线", true, 0, true},
    {1030, "06.003", "便利贴", "76x76 黄", false, 0, false},
    {1031, "07.001", "智能手表", "W1 42mm", true, 1, true},
    {1032, "07.002", "平板电脑", "P10 64G", false, 1, true},
    {1033, "07.003", "婴儿奶粉", "3段 800g", true, 1, true},
    {1034, "07.004", "电动牙刷", "S3 声波", false, 1, true},
    {1035, "07.005", "无线路由器", "AX3000", true, 1, true},
    {1036, "07.006", "蓝牙音箱", "M2 便携", false, 2, true},
    {1037, "07.007", "机械键盘", "K87 青轴", true, 1, true},
    {1038, "07.008", "无线鼠标", "G3 静音", true, 1, true},
    {1039, "08.001", "雨伞", "三折 自动", true, 0, true},
    {1040, "08.002", "拖鞋", "42码 灰", true, 0, false},
};

// An item id that order lines use but t_ICItem does not know.
constexpr int kUnknownItemId = 1099;

struct DemoLine {
    int itemId;
    double quantity;
    int stockId = 2;    // 电商仓
    int placeId = 0;
    const char* batch = "";
};

struct DemoOrder {
    int fid;
    const char* uniqueCode;
    const char* logisticsOrder;
    const char* logisticsComp;
    int webshopId;
    int orderStatus;
    QVariant pickingStatus;   // null: never touched by a station
    int pickingGoodMan;
    std::vector<DemoLine> lines;
};

QVariant I(int v) { return QVariant(v); }

const QVariant kNull;

std::vector<DemoOrder> demoOrders()
{
    return {
        {1, "10001", "SF10001", "顺丰速运", 1, 6, I(0), 0, {{1001, 1}, {1008, 1}, {1014, 2}}},
        {2, "10002", "773000000002", "申通快递", 2, 6, I(0), 0, {{1005, 3}, {1016, 1}}},
        {3, "10003", "SF10003", "顺丰速运", 1, 6, I(0), 0, {{1003, 1}}},
        {4, "10004", "SF10004", "顺丰速运", 1, 6, I(0), 0, {{1020, 1}}},
        {5, "10005", "SF10005", "顺丰速运", 2, 6, I(0), 0, {{1021, 1}, {1029, 1}}},
        {6, "10006", "SF10006", "顺丰速运", 1, 6, I(1), 201, {{1009, 1}}},
        {7, "10007", "SF10007", "顺丰速运", 1, 3, I(0), 0, {{1013, 1}}},
        {8, "10008", "SF10008", "顺丰速运", 1, 6, I(0), 0, {{1010, 1}, {1024, 1}, {1025, 2}}},
        {9, "10009", "SF10009", "顺丰速运", 2, 6, I(0), 0, {{1010, 1}, {1006, 1}, {1006, 2}}},
        {10, "10010", "SF10010", "顺丰速运", 99, 6, I(0), 0, {{kUnknownItemId, 1}, {1017, 1}}},
        {11, "10011", "SF10011", "顺丰速运", 1, 6, I(0), 0, {{1011, 2}, {1012, 1}, {1019, 1}}},
        {12, "10012", "SF10012", "顺丰速运", 1, 6, I(0), 0,
         {{1007, 1}, {1027, 1}, {1038, 1, 2, 5, "G2405"}, {1032, 1, 2, 2, "P2404"}}},
        {13, "10013", "YT10013", "圆通速递", 3, 6, I(0), 0, {{1028, 2}, {1029, 1}, {1039, 1}}},
        {14, "10014", "SF10014", "顺丰速运", 1, 6, kNull, 0, {{1021, 1}, {1022, 1}}},
        {15, "10015", "JD10015", "京东物流", 2, 6, I(0), 0,
         {{1001, 1}, {1002, 1}, {1003, 1}, {1004, 1}, {1005, 1}, {1006, 1},
          {1007, 1}, {1008, 1}, {1009, 1}, {1014, 1}, {1015, 1}, {1016, 1}}},
        {16, "10016", "SF10016", "顺丰速运", 1, 7, I(1), 202, {{1018, 1}}},
        {17, "10017", "ZT10017", "中通快递", 1, 6, I(0), 0, {{1040, 1}, {1026, 3}}},
        {18, "10018", "SF10018", "顺丰速运", 1, 6, I(0), 0, {{1002, 1}, {1015, 1}, {1018, 1}}},
        {19, "10019", "SF10019", "顺丰速运", 1, 6, I(0), 0, {{1004, 2}}},
        {20, "10020", "YD10020", "韵达快递", 3, 6, I(0), 0, {{1023, 1}, {1039, 1}}},
        {21, "10021", "SN10021", "顺丰速运", 1, 6, I(0), 0,
         {{1031, 2, 2, 1, "W2405"}, {1032, 1, 2, 2, "P2404"}}},
        {22, "10022", "SN10022", "顺丰速运", 1, 6, I(0), 0, {{1035, 3, 2, 4, ""}}},
        {23, "10023", "SN10023", "顺丰速运", 1, 6, I(0), 0, {{1033, 2, 2, 3, "M2403"}}},
        {24, "10024", "SN10024", "顺丰速运", 1, 6, I(0), 0,
         {{1038, 1, 2, 5, "G2405"}, {1034, 1, 2, 1, "T2401"}, {1034, 1, 2, 2, "T2402"}}},
        {25, "10025", "SN10025", "顺丰速运", 2, 6, I(0), 0, {{1037, 2, 2, 5, "K2405"}}},
        {26, "10026", "SN10026", "顺丰速运", 2, 6, I(0), 0,
         {{1036, 1, 2, 5, "S2405"}, {1038, 1, 2, 5, "G2405"}}},
        {27, "TB10027", "YT10027", "圆通速递", 3, 6, I(0), 0, {{1016, 1}}},
        {28, "10028", "SF10028", "顺丰速运", 3, 6, I(0), 0, {{1024, 1}}},
        {29, "10029", "SF10029", "顺丰速运", 1, 6, I(0), 0, {{1022, 10}}},
        {30, "10030", "SF10030", "顺丰速运", 3, 6, I(0), 0, {{1010, 1}, {1005, 1}}},
    };
}

// Serial numbers and where they stand. Every serial has its ICSerial_F1 row.
struct DemoSerial {
    const char* serial;
    int itemId;
    int serialClass;
    int stockId;
    int placeId;
    const char* batch;
    int kfPeriod;
    const char* kfDate;
    int tranType;       // -1: opening balance
    int valid;
    int billRob;        // the stock bill's FRob; 0 = no stock bill (opening balance)
    int outStockId = 0;
    int outPlaceId = 0;
};

const DemoSerial kSerials[] = {
    // watches of order 10021: in stock from a purchase
    {"W1-0001", 1031, 1, 2, 1, "W2405", 0, "", 1, 1, 1},
    {"W1-0002", 1031, 1, 2, 1, "W2405", 0, "", 1, 1, 1},
    {"W1-0003", 1031, 1, 2, 1, "W2405", 0, "", 1, 1, 1},
    {"W1-0004", 1031, 1, 2, 1, "W2406", 0, "", 1, 1, 1},   // other batch
    // tablets: opening balance, and one inside a transfer not yet valid
    {"PAD-0001", 1032, 1, 2, 2, "P2404", 0, "", -1, 1, 0},
    {"PAD-0002", 1032, 1, 2, 2, "P2404", 0, "", -1, 1, 0},
    {"PAD-0003", 1032, 1, 2, 2, "P2404", 0, "", 41, 0, 1, 1, 3},
    // milk powder with shelf life and production date
    {"MF-0001", 1033, 1, 2, 3, "M2403", 720, "2024-03-01", 1, 1, 1},
    {"MF-0002", 1033, 1, 2, 3, "M2403", 720, "2024-03-01", 1, 1, 1},
    {"MF-0003", 1033, 1, 2, 3, "M2403", 540, "2024-03-01", 1, 1, 1},
    {"MF-0004", 1033, 1, 2, 3, "M2403", 720, "2024-04-15", 1, 1, 1},
    // electric toothbrushes: the order holds two lines of different batch and place
    {"ET-0001", 1034, 1, 2, 1, "T2401", 0, "", 10, 1, 1},
    {"ET-0002", 1034, 1, 2, 2, "T2402", 0, "", 10, 1, 1},
    {"ET-0003", 1034, 1, 2, 3, "T2403", 0, "", 10, 1, 1},
    // routers: each branch of the serial query
    {"RT-0001", 1035, 1, 2, 4, "", 0, "", -1, 1, 0},
    {"RT-0002", 1035, 1, 2, 4, "", 0, "", 41, 0, 1, 1, 3},
    {"RT-0003", 1035, 1, 2, 4, "", 0, "", 1, 1, 1},
    {"RT-0004", 1035, 1, 2, 4, "", 0, "", -1, 0, 0},
    // speaker of serial class 2: never found by the station
    {"SPK-0001", 1036, 2, 2, 5, "S2405", 0, "", 1, 1, 1},
    // keyboards: one per row of the stock-bill status table
    {"KB01-B0", 1037, 1, 2, 5, "K2405", 0, "", 1, 0, 1},
    {"KB02-B1", 1037, 1, 2, 5, "K2405", 0, "", 2, 1, 1},
    {"KB05-R0", 1037, 1, 2, 5, "K2405", 0, "", 5, 0, -1},
    {"KB10-R1", 1037, 1, 2, 5, "K2405", 0, "", 10, 1, -1},
    {"KB40-B1", 1037, 1, 2, 5, "K2405", 0, "", 40, 1, 1},
    {"KB21-R0", 1037, 1, 2, 5, "K2405", 0, "", 21, 0, -1},
    {"KB24-R1", 1037, 1, 2, 5, "K2405", 0, "", 24, 1, -1},
    {"KB28-B0", 1037, 1, 2, 5, "K2405", 0, "", 28, 0, 1},
    {"KB29-B1", 1037, 1, 2, 5, "K2405", 0, "", 29, 1, 1},
    {"KB43-B1", 1037, 1, 2, 5, "K2405", 0, "", 43, 1, 1},
    {"KB41-B1", 1037, 1, 2, 5, "K2405", 0, "", 41, 1, 1, 1, 3},
    {"KB41-R0", 1037, 1, 2, 5, "K2405", 0, "", 41, 0, -1, 1, 3},
    // mice, shelf life 0
    {"MS-0001", 1038, 1, 2, 5, "G2405", 0, "", 1, 1, 1},
    {"MS-0002", 1038, 1, 2, 5, "G2405", 0, "", 1, 1, 1},
    {"MS-0003", 1038, 1, 2, 5, "G2405", 0, "", 1, 1, 1},
};

constexpr int kSupplierId = 301;
constexpr int kCustomerId = 401;

// ---------------------------------------------------------------------------

QString checkDigitEan13(const QString& twelve)
{
    int sum = 0;
    for (int i = 0; i < 12; ++i)
        sum += (twelve.at(i).digitValue()) * (i % 2 ? 3 : 1);
    return twelve + QString::number((10 - sum % 10) % 10);
}

QString itemBarcode(int itemId)
{
    return checkDigitEan13(QStringLiteral("69310000%1").arg(itemId, 4, 10, QLatin1Char('0')));
}

QString benchBarcode(int index)
{
    return checkDigitEan13(QStringLiteral("69399%1").arg(index, 7, 10, QLatin1Char('0')));
}

// 3x5 glyphs for the digits and '.', one row per 3 bits, drawn as blocks so
// the tiles need no font and come out the same on every machine.
const uint16_t kGlyphs[11] = {
    0b111101101101111, 0b010110010010111, 0b111001111100111, 0b111001111001111,
    0b101101111001001, 0b111100111001111, 0b111100111101111, 0b111001001001001,
    0b111101111101111, 0b111101111001111, 0b000000000000010,
};

void drawBlockText(QPainter& p, const QString& text, int x, int y, int cell, const QColor& color)
{
    for (const QChar ch : text) {
        const int g = ch == QLatin1Char('.') ? 10 : ch.digitValue();
        if (g < 0)
            continue;
        for (int row = 0; row < 5; ++row) {
            for (int col = 0; col < 3; ++col) {
                if (kGlyphs[g] & (1 << (14 - row * 3 - col)))
                    p.fillRect(x + col * cell, y + row * cell, cell, cell, color);
            }
        }
        x += 4 * cell;
    }
}

QByteArray drawTile(const QString& number, quint32 seed)
{
    QImage image(160, 160, QImage::Format_RGB32);
    const QColor back = QColor::fromHsv(int(seed % 360), 110 + int(seed / 360 % 80), 200);
    image.fill(back);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, false);
    p.fillRect(16, 16, 128, 84, back.lighter(135));
    p.setPen(Qt::NoPen);
    p.setBrush(back.darker(150));
    // a shape per goods family, so tiles differ at a glance
    switch (seed % 3) {
    case 0: p.drawEllipse(50, 28, 60, 60); break;
    case 1: p.drawRect(45, 30, 70, 56); break;
    default: p.drawPolygon(QPolygon({QPoint(80, 26), QPoint(118, 88), QPoint(42, 88)})); break;
    }
    const int cell = 5;
    const int width = int(number.size()) * 4 * cell - cell;
    drawBlockText(p, number, (160 - width) / 2, 116, cell, Qt::black);
    p.end();

    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}

// A gzip stream, as the attachment store keeps files (header time 0).
QByteArray gzipBytes(const QByteArray& data)
{
    z_stream zs{};
    if (deflateInit2(&zs, Z_BEST_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw HostError(HostErrors::FileError, QStringLiteral("Cannot start the gzip compressor."));
    QByteArray out(int(deflateBound(&zs, uLong(data.size()))) + 32, Qt::Uninitialized);
    zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
    zs.avail_in = uInt(data.size());
    zs.next_out = reinterpret_cast<Bytef*>(out.data());
    zs.avail_out = uInt(out.size());
    const int rc = deflate(&zs, Z_FINISH);
    const auto written = zs.total_out;
    deflateEnd(&zs);
    if (rc != Z_STREAM_END)
        throw HostError(HostErrors::FileError, QStringLiteral("Cannot compress a picture."));
    out.resize(int(written));
    return out;
}

QString schemaText()
{
    QFile file(DemoSchemaPath());
    if (!file.open(QIODevice::ReadOnly))
        throw HostError(HostErrors::FileError,
                        QStringLiteral("Cannot read the demo schema %1.").arg(DemoSchemaPath()));
    return QString::fromUtf8(file.readAll());
}

// The statements of the schema file: comments dropped, split at ';'.
QStringList schemaStatements(const QString& text)
{
    QString clean;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        const int comment = line.indexOf(QLatin1String("--"));
        clean += (comment >= 0 ? line.left(comment) : line) + QLatin1Char('\n');
    }
    QStringList statements;
    for (const QString& piece : clean.split(QLatin1Char(';'))) {
        if (!piece.trimmed().isEmpty())
            statements << piece.trimmed();
    }
    return statements;
}

// An open connection to one file for the generator's own use, removed again
// when it goes out of scope.
class DemoConnection {
public:
    DemoConnection(const QString& file, bool create)
        : m_name(QStringLiteral("rnw_demo_") + QUuid::createUuid().toString(QUuid::WithoutBraces))
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        if (create) {
            db.setDatabaseName(file);
        } else {
            // never create a missing file behind the caller's back
            db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI"));
            db.setDatabaseName(QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded) + QStringLiteral("?mode=rw"));
        }
        if (!db.open())
            throw HostError(HostErrors::Database,
                            QStringLiteral("Cannot open %1: %2").arg(file, db.lastError().text()));
        RegisterTextCollation(db);
    }
    ~DemoConnection()
    {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    DemoConnection(const DemoConnection&) = delete;
    DemoConnection& operator=(const DemoConnection&) = delete;

    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }

    void exec(const QString& sql)
    {
        QSqlQuery q(db());
        if (!q.exec(sql))
            throw HostError(HostErrors::Database, q.lastError().text() + QStringLiteral(" in: ") + sql.left(120));
    }

private:
    QString m_name;
};

// One prepared insert, reused for every row of a table.
class Inserter {
public:
    Inserter(const QSqlDatabase& db, const QString& table, const QStringList& columns)
        : m_query(db)
    {
        QStringList marks;
        for (int i = 0; i < columns.size(); ++i)
            marks << QStringLiteral("?");
        m_sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                    .arg(table, columns.join(QLatin1Char(',')), marks.join(QLatin1Char(',')));
        if (!m_query.prepare(m_sql))
            throw HostError(HostErrors::Database, m_query.lastError().text() + QStringLiteral(" in: ") + m_sql);
    }
    void row(const QVariantList& values)
    {
        for (int i = 0; i < values.size(); ++i)
            m_query.bindValue(i, values[i]);
        if (!m_query.exec())
            throw HostError(HostErrors::Database, m_query.lastError().text() + QStringLiteral(" in: ") + m_sql);
    }

private:
    QSqlQuery m_query;
    QString m_sql;
};

QVariant text(const char* s) { return QString::fromUtf8(s); }

class DemoFiller {
public:
    explicit DemoFiller(const QSqlDatabase& db) : m_db(db) {}

    void fill(int largeOrderLines)
    {
        places();
        partners();
        people();
        settings();
        webshops();
        items();
        orders();
        serials();
        if (largeOrderLines > 0)
            benchOrder(largeOrderLines);
    }

private:
    void places()
    {
        Inserter stock(m_db, QStringLiteral("t_Stock"), {"FItemID", "FNumber", "FName"});
        stock.row({1, "01", text("成品仓")});
        stock.row({2, "02", text("电商仓")});
        stock.row({3, "03", text("退货仓")});
        Inserter place(m_db, QStringLiteral("t_StockPlace"), {"FSPID", "FNumber", "FName"});
        place.row({1, "A01", text("A区-01货架")});
        place.row({2, "A02", text("A区-02货架")});
        place.row({3, "B01", text("B区-01货架")});
        place.row({4, "B02", text("B区-02货架")});
        place.row({5, "C01", text("C区-01货架")});
        Inserter aux(m_db, QStringLiteral("t_AuxItem"), {"FItemID", "FNumber", "FName"});
        aux.row({1, "01", text("标准版")});
    }

    void partners()
    {
        Inserter supplier(m_db, QStringLiteral("t_Supplier"), {"FItemID", "FNumber", "FName"});
        supplier.row({kSupplierId, "S001", text("深圳华强电子有限公司")});
        supplier.row({302, "S002", text("广州白云日化有限公司")});
        Inserter org(m_db, QStringLiteral("t_Organization"), {"FItemID", "FNumber", "FName"});
        org.row({kCustomerId, "C001", text("杭州云仓电子商务有限公司")});
    }

    void people()
    {
        Inserter emp(m_db, QStringLiteral("t_Emp"), {"FItemID", "FNumber", "FShortNumber", "FName"});
        emp.row({201, "E001", "zw", text("张伟")});
        emp.row({202, "E002", "ln", text("李娜")});
        emp.row({203, "E003", "wf", text("王芳")});
        emp.row({204, "E004", "ly", text("刘洋")});
        Inserter user(m_db, QStringLiteral("t_User"), {"FUserID", "FName", "FEmpID"});
        user.row({1, "administrator", 201});
        user.row({2, text("李娜"), 202});
        user.row({3, text("王芳"), 203});
        user.row({4, "guest", kNull});
    }

    void settings()
    {
        Inserter profile(m_db, QStringLiteral("t_SystemProfile"), {"FCategory", "FKey", "FValue", "FDesc"});
        profile.row({"EC", "DeliveryWhenWeightedOrPick", "1", text("拣货或称重后自动发货")});
        profile.row({"EC", "CreateStockBillType", "1", text("发货时生成出库单")});
        profile.row({"EC", "AutoPrintExpress", "0", text("自动打印快递单")});
        profile.row({"IC", "UseSerialNumber", "1", text("启用序列号管理")});
    }

    void webshops()
    {
        Inserter shop(m_db, QStringLiteral("IC_WebshopToStorage"), {"FWebshopID", "FWebshopName", "FStockID"});
        shop.row({1, text("天猫旗舰店"), 2});
        shop.row({2, text("京东自营店"), 2});
        shop.row({3, text("拼多多专营店"), 2});
        Inserter map(m_db, QStringLiteral("IC_GoodsToMateriel"),
                     {"FID", "FWebshopID", "FGoodsCode", "FMaterielCode", "FIsPriceChange"});
        // 玻璃水杯 is a price-change product in the Tmall shop only
        map.row({1, 1, "TM-GLASS-400", "02.003", 1});
        map.row({2, 3, "PDD-GLASS-400", "02.003", 0});
        map.row({3, 1, "TM-EAR-520B", "01.001", 0});
        map.row({4, 2, "JD-CUP-500", "02.001", 0});
        // the slippers are a price-change gift, and no other order holds them
        map.row({5, 1, "TM-SLIPPER-42", "08.002", 1});
    }

    void items()
    {
        Inserter item(m_db, QStringLiteral("t_ICItem"),
                      {"FItemID", "FNumber", "FName", "FModel", "FBarcode", "FSerialClassID", "FIsSnManage", "FUnitName"});
        Inserter barcode(m_db, QStringLiteral("t_Barcode"), {"FID", "FItemID", "FBarCode"});
        for (const DemoItem& it : kItems) {
            const QString code = it.barcode ? itemBarcode(it.id) : QString();
            // the cap has a NULL barcode, the others without one hold ''
            const QVariant itemBarcodeValue = it.id == 1023 ? kNull : QVariant(code);
            item.row({it.id, it.number, text(it.name), text(it.model), itemBarcodeValue,
                      it.serialClass, it.serialClass ? 1 : 0, text(it.serialClass ? "台" : "个")});
            if (it.barcode)
                barcode.row({++m_barcodeId, it.id, code});
            if (it.picture)
                addPicture(it.id, QString::fromLatin1(it.number));
        }
        // a second, alphanumeric barcode on the inner pack of the cable
        barcode.row({++m_barcodeId, 1005, "DX-USBC-1M"});
    }

    void addPicture(int itemId, const QString& number)
    {
        if (!m_accessory)
            m_accessory = std::make_unique<Inserter>(m_db, QStringLiteral("t_Accessory"),
                                                     QStringList{"FID", "FItemID", "FFileName", "FData"});
        const quint32 seed = quint32(m_random());
        m_accessory->row({++m_accessoryId, itemId, number + QStringLiteral(".png"),
                          gzipBytes(drawTile(number, seed))});
    }

    void orders()
    {
        Inserter order(m_db, QStringLiteral("IC_Web2ERPOrders"),
                       {"FID", "FUniqueCode", "FLogisticsOrder", "FLogisticsComp", "FWebshopID", "FOrderStatus",
                        "FBuyerName", "FOrderDate", "FPIckingGoodsStatus", "FPickingGoodMan", "FDeliveryStatus"});
        const char* const buyers[] = {"陈晨", "林小雨", "周杰", "吴敏", "郑浩", "孙丽"};
        for (const DemoOrder& o : demoOrders()) {
            const QString date = QStringLiteral("2024-05-%1 10:%2:00")
                                     .arg(1 + o.fid % 28, 2, 10, QLatin1Char('0'))
                                     .arg(o.fid % 60, 2, 10, QLatin1Char('0'));
            order.row({o.fid, text(o.uniqueCode), text(o.logisticsOrder), text(o.logisticsComp), o.webshopId,
                       o.orderStatus, text(buyers[o.fid % 6]), date, o.pickingStatus, o.pickingGoodMan,
                       o.orderStatus == 7 ? 1 : 0});
            for (const DemoLine& l : o.lines)
                addLine(o.fid, l);
        }
        Inserter ex(m_db, QStringLiteral("IC_Web2ERPOrdersEx"), {"FID", "FIsLock"});
        ex.row({3, 1});
        ex.row({19, 0});
        Inserter bills(m_db, QStringLiteral("IC_Web2ERPReturnBills"), {"FBillID", "FID", "FStatus"});
        bills.row({1, 4, 1});    // refund applied for
        bills.row({7, 5, 2});    // newer bill: the refund was closed
        bills.row({3, 5, 1});    // older bill, superseded
        bills.row({5, 28, 0});   // a bill that is no refund
    }

    void addLine(int fid, const DemoLine& l)
    {
        if (!m_entry)
            m_entry = std::make_unique<Inserter>(m_db, QStringLiteral("IC_Web2ERPOrdersEntry"),
                                                 QStringList{"FEntryID", "FID", "FItemID", "FQuantity", "FPrice",
                                                             "FStockID", "FSPID", "FBatchNo"});
        const double price = 9.9 + double(l.itemId % 37) * 3.0;
        m_entry->row({++m_entryId, fid, l.itemId, l.quantity, price, l.stockId, l.placeId, text(l.batch)});
    }

    void serials()
    {
        Inserter serial(m_db, QStringLiteral("ICSerial"),
                        {"FSerialID", "FSerialClassID", "FSerialNum", "FItemID", "FAuxPropID", "FStockID",
                         "FStockPlace", "FOutStockID", "FOutStockPlace", "FBatchNo", "FKFPeriod", "FKFDate",
                         "FTranTypeID", "FValid", "FInterID", "FSNListID"});
        Inserter f1(m_db, QStringLiteral("ICSerial_F1"), {"FSerialClassID", "FSerialID", "F_S001"});
        Inserter bill(m_db, QStringLiteral("ICStockBill"), {"FInterID", "FBillNo", "FTranType", "FRob", "FSupplyID", "FDate"});
        Inserter initial(m_db, QStringLiteral("IcInvInitial"), {"FID", "FSNListID", "FItemID", "FStockID", "FQty"});

        // one stock bill per transaction type and red/blue flag
        QHash<QPair<int, int>, int> bills;
        int serialId = 0;
        int snList = 9000;
        for (const DemoSerial& s : kSerials) {
            int interId = 0;
            int listId = 0;
            if (s.billRob != 0) {
                const QPair<int, int> key(s.tranType, s.billRob);
                if (!bills.contains(key)) {
                    interId = 5001 + int(bills.size());
                    const bool inbound = QList<int>{1, 2, 5, 10, 40}.contains(s.tranType);
                    const QString billNo = QStringLiteral("%1%2").arg(s.billRob == 1 ? "BL" : "RD").arg(interId);
                    bill.row({interId, billNo, s.tranType, s.billRob, inbound ? kSupplierId : kCustomerId,
                              QStringLiteral("2024-04-%1").arg(1 + interId % 28, 2, 10, QLatin1Char('0'))});
                    bills.insert(key, interId);
                }
                interId = bills.value(key);
            } else {
                listId = ++snList;
                initial.row({listId - 9000, listId, s.itemId, s.stockId, 1});
            }
            ++serialId;
            serial.row({serialId, s.serialClass, text(s.serial), s.itemId, 0, s.stockId, s.placeId, s.outStockId,
                        s.outPlaceId, text(s.batch), s.kfPeriod, text(s.kfDate), s.tranType, s.valid, interId, listId});
            f1.row({s.serialClass, serialId, text(s.kfPeriod ? "效期管理" : "")});
        }
    }

    void benchOrder(int lines)
    {
        const int fid = 900;
        Inserter order(m_db, QStringLiteral("IC_Web2ERPOrders"),
                       {"FID", "FUniqueCode", "FLogisticsOrder", "FLogisticsComp", "FWebshopID", "FOrderStatus",
                        "FBuyerName", "FOrderDate", "FPIckingGoodsStatus", "FPickingGoodMan", "FDeliveryStatus"});
        order.row({fid, BenchUniqueCode(lines), QStringLiteral("BENCH%1").arg(lines), text("顺丰速运"), 1, 6,
                   text("压测"), "2024-05-31 12:00:00", 0, 0, 0});
        Inserter item(m_db, QStringLiteral("t_ICItem"),
                      {"FItemID", "FNumber", "FName", "FModel", "FBarcode", "FSerialClassID", "FIsSnManage", "FUnitName"});
        Inserter barcode(m_db, QStringLiteral("t_Barcode"), {"FID", "FItemID", "FBarCode"});
        for (int i = 1; i <= lines; ++i) {
            const int itemId = 50000 + i;
            const QString number = QStringLiteral("90.%1").arg(i, 5, 10, QLatin1Char('0'));
            item.row({itemId, number, QString::fromUtf8("压测商品") + QString::number(i),
                      QStringLiteral("BM-%1").arg(i), benchBarcode(i), 0, 0, text("个")});
            barcode.row({++m_barcodeId, itemId, benchBarcode(i)});
            addPicture(itemId, number);
            addLine(fid, {itemId, double(1 + m_random() % 3)});
        }
    }

    QSqlDatabase m_db;
    std::mt19937 m_random{20240501u};
    std::unique_ptr<Inserter> m_accessory;
    std::unique_ptr<Inserter> m_entry;
    int m_accessoryId = 0;
    int m_entryId = 0;
    int m_barcodeId = 0;
};

} // namespace

QString BenchUniqueCode(int largeOrderLines)
{
    return QStringLiteral("99%1").arg(largeOrderLines, 6, 10, QLatin1Char('0'));
}

QString DemoSchemaPath()
{
    static const bool registered = (registerSchemaResource(), true);
    Q_UNUSED(registered);
    return QStringLiteral(":/rnw/demo/schema.sql");
}

QStringList SchemaTableNames()
{
    static const QRegularExpression createTable(QStringLiteral("^CREATE\\s+TABLE\\s+(\\w+)"),
                                                QRegularExpression::CaseInsensitiveOption);
    QStringList tables;
    for (const QString& statement : schemaStatements(schemaText())) {
        const QRegularExpressionMatch match = createTable.match(statement);
        if (match.hasMatch())
            tables << match.captured(1);
    }
    return tables;
}

QString DemoPropsString(const QString& dbFile, int userId)
{
    return QStringLiteral("UserID=%1;ConnectString={Provider=SQLite;Data Source=%2};").arg(userId).arg(dbFile);
}

void CreateDemoDatabase(const QString& file, int largeOrderLines)
{
    const QStringList statements = schemaStatements(schemaText());
    if (QFile::exists(file) && !QFile::remove(file))
        throw HostError(HostErrors::FileError, QStringLiteral("Cannot replace %1.").arg(file));
    QFile::remove(file + QStringLiteral("-journal"));

    DemoConnection connection(file, true);
    connection.exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
    connection.exec(QStringLiteral("BEGIN"));
    try {
        for (const QString& statement : statements)
            connection.exec(statement);
        DemoFiller(connection.db()).fill(largeOrderLines);
        connection.exec(QStringLiteral("COMMIT"));
    } catch (...) {
        QSqlQuery(connection.db()).exec(QStringLiteral("ROLLBACK"));
        throw;
    }
}

void SetDemoSystemProfile(const QString& file, const QString& key, const QString& value)
{
    DemoConnection connection(file, false);
    QSqlQuery q(connection.db());
    q.prepare(QStringLiteral("UPDATE t_SystemProfile SET FValue = ? WHERE FCategory = 'EC' AND FKey = ?"));
    q.addBindValue(value);
    q.addBindValue(key);
    if (!q.exec())
        throw HostError(HostErrors::Database, q.lastError().text());
    if (q.numRowsAffected() == 0) {
        QSqlQuery insert(connection.db());
        insert.prepare(QStringLiteral("INSERT INTO t_SystemProfile (FCategory, FKey, FValue) VALUES ('EC', ?, ?)"));
        insert.addBindValue(key);
        insert.addBindValue(value);
        if (!insert.exec())
            throw HostError(HostErrors::Database, insert.lastError().text());
    }
}
