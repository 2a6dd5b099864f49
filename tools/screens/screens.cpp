// Pictures of the station and its panes for a person to look at, written to
// screenshots/ beside the build's bin folder. Run by `make screens`, never by
// ctest: what can be counted is checked in the suites, not here.
#include "grid/goods_text_view.h"
#include "grid/order_fixture.h"
#include "log/log_list.h"
#include "station/station_fixture.h"
#include "tiles/goods_big_view.h"
#include "tiles/tiles_fixture.h"
#include <QDir>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <cstdio>

namespace {

QString screenshotFolder()
{
    const QString folder = QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../screenshots"));
    QDir().mkpath(folder);
    return folder;
}

void save(QWidget* widget, const QString& name)
{
    QApplication::processEvents();
    const QString file = screenshotFolder() + QLatin1Char('/') + name + QStringLiteral(".png");
    EXPECT_TRUE(widget->grab().toImage().save(file)) << file.toStdString();
    std::printf("[ screens ] %s\n", qPrintable(file));
}

GoodsRecord logEntry(const QString& text, bool success)
{
    GoodsRecord e;
    e.Add(QStringLiteral("ID"), text.left(6));
    e.Add(QStringLiteral("log"), text);
    e.Add(QStringLiteral("bSuccess"), success);
    return e;
}

} // namespace

TEST(Screens, LogListOfPassedAndFailedOrders)
{
    recordMessageBoxes();
    useLanguage(QStringLiteral("chs"));
    ResetLanguageCache();
    {
        LogList pane;
        pane.resize(TwipsToPixels(7000), TwipsToPixels(7 * LogListModel::RowHeightTwips) + 40);
        pane.show();
        RecordList log;
        for (const auto& [text, ok] : QList<std::pair<QString, bool>>{
                 {QStringLiteral("SF1001234567通过"), true},
                 {QStringLiteral("SF1001234568异常, 缺少2件"), false},
                 {QStringLiteral("78812345通过"), true},
                 {QStringLiteral("SF1001234570异常, 超出1件, 误拣1件"), false},
                 {QStringLiteral("SF1001234571异常, 误拣3件\r\n第二次扫描异常"), false},
                 {QStringLiteral("SF1001234572通过"), true}})
            log.Add(logEntry(text, ok));
        pane.LoadLogList(log);
        save(&pane, QStringLiteral("log_list"));
    }
    ResetLanguageCache();
    RestoreBuiltInServerObjects();
}

class GridScreens : public OrderFixture {};

TEST_F(GridScreens, APartlyPickedOrder)
{
    load({{11, 1001, "无线蓝牙耳机 入耳式", "6901234567890", "BT-520", 2},
          {12, 1002, "手机壳 透明防摔", "6907777000011", "iPhone 15", 3},
          {13, 1003, "快充数据线 1米", "6905555000123", "Type-C", 1, 2},
          {14, 1004, "充电宝 10000毫安", "6903333000456", "PB-10K", 1, 2},
          {15, 1005, "钢化膜 两片装", "6902222000789", "", 4},
          {16, 1006, "车载支架", "6901111000999", "CH-3", 1}});
    GoodsTextView view;
    view.resize(TwipsToPixels(9200), TwipsToPixels(5200));
    view.show();
    view.LoadPickingGoods();
    for (const auto& [goods, entry] : QList<std::pair<int, int>>{{1001, 11}, {1001, 11}, {1003, 13}, {1003, 13}, {1005, 15}})
        view.PickingGoodsNew(goods, entry);
    view.RefreshGoodsNew(1005, 15);
    save(&view, QStringLiteral("goods_text_view"));
}

// The goods in hand at the design size, the station's side column at its
// usual sizes, and a wide control.
TEST(Screens, TheGoodsInHandAtEachSize)
{
    TilesTest::TileEnvironment env;
    QPixmap square(400, 400);
    square.fill(Qt::blue);
    for (const QSize twips : {QSize(4000, 3150), QSize(4000, 4800), QSize(4400, 5000), QSize(5200, 6500), QSize(9000, 6000)}) {
        GoodsBigView big;
        big.resize(TwipsToPixels(twips.width()), TwipsToPixels(twips.height()));
        big.SetPicture(square);
        big.show();
        big.setGoodsName(QStringLiteral("保温杯 500ml 不锈钢"));
        big.setGoodsOrderCnt(3);
        big.setGoodsCheckedCnt(2);
        save(&big, QStringLiteral("tiles_big_%1x%2").arg(twips.width()).arg(twips.height()));
    }
}

// The station as a worker sees it through one session: tiles, the stamp,
// the grid, a refusal, the log pane at three window sizes, the employee picker.
TEST_F(StationFormTest, Screens)
{
    frmPickigGoods* form = openStation();
    form->resize(1366, 860);
    scanInto(controls(form).TxtID, QStringLiteral("10018"));
    for (const char* barcode : {"6931000010024", "6931000010154", "6931000010185"})
        scanInto(controls(form).TxtItemID, QString::fromLatin1(barcode));
    scanInto(controls(form).TxtID, QStringLiteral("10002"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010161"));
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010017"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010147"));
    save(form, QStringLiteral("station_tiles"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010086"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010147"));
    save(form, QStringLiteral("station_tiles_passed"));
    QTest::mouseClick(controls(form).chkShowText, Qt::LeftButton, {}, QPoint(8, controls(form).chkShowText->height() / 2));
    save(form, QStringLiteral("station_grid"));
    scanInto(controls(form).TxtID, QStringLiteral("10006"));
    save(form, QStringLiteral("station_refused"));
    ASSERT_TRUE(closeStation());

    RecordList log;
    for (int i = 1; i <= 10; ++i)
        log.Add(logEntry(QStringLiteral("%1异常, , 缺少1件, 误拣0件").arg(10000 + i), false));
    for (const QSize size : {QSize(), QSize(1600, 1000), QSize(1920, 1080)}) {
        form = openStation();
        if (size.isValid())
            form->resize(size);
        QApplication::processEvents();
        controls(form).LogList1->LoadLogList(log);
        auto* down = controls(form).LogList1->findChild<QToolButton*>(QStringLiteral("ImgDown"));
        for (int k = 0; k < 5; ++k)
            QTest::mouseClick(down, Qt::LeftButton);
        save(form, QStringLiteral("station_log_page_%1x%2").arg(form->width()).arg(form->height()));
        ASSERT_TRUE(closeStation());
    }

    form = openStation();
    auto* employee = form->findChild<ScanLineEdit*>(QStringLiteral("TxtEmployee"));
    ASSERT_NE(employee, nullptr);
    QTimer::singleShot(0, [] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog) {
            ADD_FAILURE() << "no employee picker";
            return;
        }
        if (auto* filter = dialog->findChild<QLineEdit*>(QStringLiteral("txtFilter")))
            filter->clear();
        save(dialog, QStringLiteral("employee_picker"));
        dialog->close();
    });
    QTest::keyClick(employee, Qt::Key_F7);
}
