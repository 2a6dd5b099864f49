// What the worker sees from a step away: big numbers, the goods taking the
// room, the stamp on the goods. `make screens` takes the pictures for a look by eye.
#include "grid/goods_text_view.h"
#include "log/log_list.h"
#include "station/station_fixture.h"
#include "tiles/goods_big_view.h"
#include "tiles/goods_list_view.h"
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>

namespace {

QRect boxIn(const QWidget* widget, const QWidget* form)
{
    return QRect(widget->mapTo(form, QPoint(0, 0)), widget->size());
}

// The share of an image's pixels close to a colour.
double shareOf(const QImage& image, const QColor& colour)
{
    int near = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (qAbs(c.red() - colour.red()) + qAbs(c.green() - colour.green()) + qAbs(c.blue() - colour.blue()) < 60)
                ++near;
        }
    return double(near) / double(image.width() * image.height());
}

} // namespace

TEST_F(StationFormTest, TheStationReadsAtAGlance)
{
    frmPickigGoods* form = openStation();
    form->resize(1366, 860);
    QApplication::processEvents();
    // Two orders before: one passed, one left short; the log shows both.
    scanInto(controls(form).TxtID, QStringLiteral("10018"));
    for (const char* barcode : {"6931000010024", "6931000010154", "6931000010185"})
        scanInto(controls(form).TxtItemID, QString::fromLatin1(barcode));
    ASSERT_TRUE(controls(form).ImgSuccess->isVisible());
    scanInto(controls(form).TxtID, QStringLiteral("10002"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010161"));
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    const QStringList logged = controls(form).LogList1->visibleRowTexts();
    ASSERT_EQ(logged.size(), 2) << logged.join('|').toStdString();
    EXPECT_TRUE(logged[0].startsWith(QStringLiteral("10002异常"))) << logged[0].toStdString();
    EXPECT_TRUE(logged[1].startsWith(QStringLiteral("10018通过"))) << logged[1].toStdString();
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010017"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010147"));
    ASSERT_EQ(controls(form).lblPickedNum->text(), QStringLiteral("2/4"));
    // The goods in hand show the count the scan just made.
    EXPECT_EQ(controls(form).GoodsBigView->GoodsID(), QStringLiteral("1014"));
    EXPECT_EQ(controls(form).GoodsBigView->GoodsCheckedCnt(), 1);

    // Numbers for a step away, the goods area the largest part of the window.
    EXPECT_GE(controls(form).lblOrderNum->font().pointSizeF(), 40.0);
    EXPECT_GE(controls(form).lblPickedNum->font().pointSizeF(), 40.0);
    EXPECT_GE(controls(form).TxtID->font().pointSizeF(), 18.0);
    const QRect goods = boxIn(controls(form).PiclistBack, form);
    EXPECT_GT(goods.width() * goods.height(), form->width() * form->height() / 3);
    EXPECT_FALSE(goods.intersects(boxIn(controls(form).LogList1, form)));
    EXPECT_FALSE(goods.intersects(boxIn(controls(form).GoodsBigView, form)));
    EXPECT_FALSE(boxIn(controls(form).fraMain, form).intersects(goods));
    // The bar is half full at 2 of 4, inside its frame.
    EXPECT_NEAR(controls(form).lblProgress->width(), controls(form).LblProgressbar->width() / 2, 2);
    EXPECT_EQ(controls(form).lblProgress->parentWidget(), controls(form).LblProgressbar.get());

    const QImage tiles = form->grab().toImage();
    ASSERT_FALSE(tiles.isNull());

    // The rest of the order: passed, the stamp on the goods.
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010086"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010147"));
    ASSERT_TRUE(controls(form).ImgSuccess->isVisible());
    const QRect stamp = boxIn(controls(form).ImgSuccess, form);
    EXPECT_TRUE(goods.contains(stamp));
    EXPECT_GE(stamp.width(), 200);
    const QImage stampImage = controls(form).ImgSuccess->grab().toImage();
    EXPECT_GT(shareOf(stampImage, QColor(0, 150, 60)), 0.05);   // green ink, not a blank label

    // The grid view of the same order.
    QTest::mouseClick(controls(form).chkShowText, Qt::LeftButton, {}, QPoint(8, controls(form).chkShowText->height() / 2));
    ASSERT_TRUE(form->IsGridView());
    QApplication::processEvents();
    // The grid fills the goods area as the tiles did.
    EXPECT_GE(controls(form).GoodsTextView->width(), controls(form).PiclistBack->width() - 12);
    EXPECT_GE(controls(form).GoodsTextView->height(), controls(form).PiclistBack->height() - 12);
    EXPECT_NE(form->grab().toImage(), tiles);

    // A problem shows in red.
    scanInto(controls(form).TxtID, QStringLiteral("10006"));
    const QColor red = controls(form).lblMessage->palette().color(QPalette::WindowText);
    EXPECT_GT(red.red(), 180);
    EXPECT_LT(red.green(), 60);
}

TEST_F(StationFormTest, TheLogPaneShowsAWholePageOfSevenRows)
{
    // Ten orders logged, newest first in the pane; the oldest is "10001".
    RecordList log;
    for (int i = 1; i <= 10; ++i) {
        GoodsRecord entry;
        entry.Add(QStringLiteral("ID"), QString::number(10000 + i));
        entry.Add(QStringLiteral("log"), QStringLiteral("%1异常, , 缺少1件, 误拣0件").arg(10000 + i));
        entry.Add(QStringLiteral("bSuccess"), false);
        log.Add(entry);
    }
    const int rowPx = TwipsToPixels(LogListModel::RowHeightTwips);
    // The form's own size first, then larger windows.
    for (const QSize size : {QSize(), QSize(1600, 1000), QSize(1920, 1080)}) {
        frmPickigGoods* form = openStation();
        if (size.isValid())
            form->resize(size);
        QApplication::processEvents();
        const QString at = QStringLiteral("%1x%2").arg(form->width()).arg(form->height());
        LogList* pane = controls(form).LogList1;
        pane->LoadLogList(log);
        QApplication::processEvents();

        const QFrame* area = pane->findChild<QFrame*>(QStringLiteral("PicBack"));
        ASSERT_NE(area, nullptr);
        EXPECT_GE(area->contentsRect().height(), LogListModel::PageRows * rowPx) << at.toStdString();

        // Down as far as it goes: the last page holds the seven oldest entries, each row whole.
        auto* down = pane->findChild<QToolButton*>(QStringLiteral("ImgDown"));
        for (int k = 0; k < 5; ++k)
            QTest::mouseClick(down, Qt::LeftButton);
        EXPECT_EQ(pane->topIndex(), 3) << at.toStdString();
        const QStringList shown = pane->visibleRowTexts();
        ASSERT_EQ(shown.size(), 7) << at.toStdString();
        EXPECT_TRUE(shown.first().startsWith(QStringLiteral("10007"))) << at.toStdString();
        EXPECT_TRUE(shown.last().startsWith(QStringLiteral("10001"))) << at.toStdString();
        int drawn = 0;
        for (const QLabel* row : area->findChildren<QLabel*>()) {
            if (!row->isVisible())
                continue;
            ++drawn;
            EXPECT_TRUE(area->contentsRect().contains(row->geometry()))
                << at.toStdString() << " " << row->text().toStdString();
        }
        EXPECT_EQ(drawn, 7) << at.toStdString();
        ASSERT_TRUE(closeStation());
    }
}

TEST_F(StationFormTest, ThePickerListsEveryEmployeeByNumberAndTakesTheOneChosen)
{
    frmPickigGoods* form = openStation();
    auto* employee = form->findChild<ScanLineEdit*>(QStringLiteral("TxtEmployee"));
    ASSERT_NE(employee, nullptr);
    struct Seen {
        QString title, filter;
        QStringList rows;
    } seen;
    QTimer::singleShot(0, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        auto* filter = dialog ? dialog->findChild<QLineEdit*>(QStringLiteral("txtFilter")) : nullptr;
        auto* table = dialog ? dialog->findChild<QTableWidget*>(QStringLiteral("grdEmployees")) : nullptr;
        if (!filter || !table) {
            ADD_FAILURE() << "no picker with its filter and list";
            if (dialog)
                dialog->close();
            return;
        }
        seen.title = dialog->windowTitle();
        seen.filter = filter->text();
        // An empty filter lists everyone.
        filter->clear();
        for (int row = 0; row < table->rowCount(); ++row)
            seen.rows << table->item(row, 0)->text() + QLatin1Char(' ') + table->item(row, 1)->text();
        // Down twice from the first row, then Enter: the third employee.
        QTest::keyClick(filter, Qt::Key_Down);
        QTest::keyClick(filter, Qt::Key_Down);
        QTest::keyClick(filter, Qt::Key_Return);
    });
    QTest::keyClick(employee, Qt::Key_F7);
    EXPECT_EQ(seen.title, QStringLiteral("选择职员"));
    EXPECT_EQ(seen.filter, QStringLiteral("张伟"));
    EXPECT_EQ(seen.rows, (QStringList{QStringLiteral("E001 张伟"), QStringLiteral("E002 李娜"), QStringLiteral("E003 王芳"),
                                      QStringLiteral("E004 刘洋")}));
    EXPECT_EQ(employee->text(), QStringLiteral("王芳"));
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();
}
