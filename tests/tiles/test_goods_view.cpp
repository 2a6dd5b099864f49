// The goods tile and the enlarged tile as a person sees them: geometry,
// captions, marks, pictures and clicks.
#include "host/host_error.h"
#include "host/platform.h"
#include "tiles/goods_big_view.h"
#include "tiles/goods_view.h"
#include "tiles_fixture.h"
#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QLabel>
#include <QTest>
#include <QUrl>

using namespace TilesTest;

namespace {

// Stands in for the desktop's browser.
class UrlCatcher : public QObject {
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls << url; }
};

QRect pixelsOfTile(const QRect& twips)
{
    const int b = GoodsView::TileBleed;
    const int left = TwipsToPixels(twips.x() + b);
    const int top = TwipsToPixels(twips.y() + b);
    return QRect(left, top, TwipsToPixels(twips.right() + 1 + b) - left, TwipsToPixels(twips.bottom() + 1 + b) - top);
}

QString labelText(const QWidget& w, const char* name)
{
    const auto* label = w.findChild<QLabel*>(QString::fromLatin1(name));
    return label ? label->text() : QStringLiteral("<missing>");
}

} // namespace

TEST(GoodsViewTile, ChildrenCaptionsAndMarks)
{
    TileEnvironment env;
    GoodsView tile;
    for (const char* name : {"PicBack", "lblOrderCnt", "lblCheckedCnt", "imgOK", "imgAlter", "imgMain", "lblGoodsName"})
        EXPECT_NE(tile.findChild<QWidget*>(QString::fromLatin1(name)), nullptr) << name;

    // A new tile shows no marks.
    EXPECT_FALSE(tile.OKShow());
    EXPECT_FALSE(tile.WarningShow());
    tile.SetOKVisible(true);
    EXPECT_TRUE(tile.OKShow());
    tile.setWarningShow(true);
    EXPECT_TRUE(tile.findChild<QWidget*>("imgAlter")->isVisibleTo(&tile));
    tile.setOKShow(false);
    EXPECT_FALSE(tile.findChild<QWidget*>("imgOK")->isVisibleTo(&tile));

    tile.setGoodsName(QStringLiteral("保温杯 500ml"));
    EXPECT_EQ(labelText(tile, "lblGoodsName"), QStringLiteral("保温杯 500ml"));
    EXPECT_EQ(tile.GoodsName(), QStringLiteral("保温杯 500ml"));
    // Counts are shown as they are, negatives included.
    tile.setGoodsCheckedCnt(-1);
    tile.setGoodsOrderCnt(12);
    EXPECT_EQ(labelText(tile, "lblCheckedCnt"), QStringLiteral("-1"));
    EXPECT_EQ(labelText(tile, "lblOrderCnt"), QStringLiteral("12"));

    // The checked count is green when complete and red when over.
    auto colour = [&] { return tile.findChild<QLabel*>("lblCheckedCnt")->palette().color(QPalette::WindowText); };
    const QColor shortColour = colour();
    tile.setGoodsCheckedCnt(12);
    EXPECT_EQ(colour(), QColor(0, 0x80, 0));
    tile.setGoodsCheckedCnt(13);
    EXPECT_EQ(colour(), QColor(0xff, 0, 0));
    tile.setGoodsCheckedCnt(3);
    EXPECT_EQ(colour(), shortColour);
}

TEST(GoodsViewTile, SelectionGeometry)
{
    TileEnvironment env;
    GoodsView tile;
    auto* back = tile.findChild<QWidget*>("PicBack");
    auto* main = tile.findChild<QWidget*>("imgMain");

    tile.SetSelected(false);   // never selected: the normal geometry
    EXPECT_EQ(tile.picBackGeometry(), QRect(60, 60, 2380, 2380));
    EXPECT_EQ(tile.imgMainGeometry(), QRect(0, 0, 2380, 2380));
    EXPECT_EQ(main->geometry(), pixelsOfTile(QRect(0, 0, 2380, 2380)));

    tile.SetSelected(true);
    tile.SetSelected(true);
    EXPECT_EQ(tile.picBackGeometry(), QRect(-60, -60, 2460, 2460));
    EXPECT_EQ(tile.imgMainGeometry(), QRect(-30, -30, 2430, 2430));
    EXPECT_EQ(back->geometry(), pixelsOfTile(QRect(-60, -60, 2460, 2460)));
    EXPECT_EQ(main->geometry(), pixelsOfTile(QRect(-30, -30, 2430, 2430)));

    tile.SetSelected(false);
    EXPECT_EQ(back->geometry(), pixelsOfTile(QRect(60, 60, 2380, 2380)));
    EXPECT_EQ(main->geometry(), pixelsOfTile(QRect(0, 0, 2380, 2380)));

    // The widget starts where the selected frame does, so the frame is not cut off.
    tile.moveTileTo(2560, 0);
    EXPECT_EQ(tile.pos(), QPoint(TwipsToPixels(2500), TwipsToPixels(-60)));
    EXPECT_EQ(tile.tilePosition(), QPoint(2560, 0));
}

TEST(GoodsViewTile, PictureRules)
{
    TileEnvironment env;
    const QString red = env.path("red.jpg");
    const QString blue = env.path("blue.jpg");
    const QString junk = env.path("junk.jpg");
    ASSERT_TRUE(writePicture(red, Qt::red));
    ASSERT_TRUE(writePicture(blue, Qt::blue, 400, 200));
    QFile f(junk);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("this is not a picture");
    f.close();

    GoodsView tile;
    EXPECT_EQ(tile.GoodsPicture(), QString());
    tile.setGoodsPicture(red);
    EXPECT_EQ(tile.GoodsPicture(), red);
    EXPECT_TRUE(shows(tile.shownPicture(), Qt::red));

    // Empty path and missing file: picture and path stay.
    tile.setGoodsPicture(QString());
    tile.setGoodsPicture(env.path("nowhere.jpg"));
    tile.setGoodsPicture(env.folder());   // a folder is not a file
    EXPECT_EQ(tile.GoodsPicture(), red);
    EXPECT_TRUE(shows(tile.shownPicture(), Qt::red));

    // Not a picture: the default picture, and its path is what reads back.
    tile.setGoodsPicture(junk);
    EXPECT_EQ(tile.GoodsPicture(), env.defaultPicture());
    EXPECT_TRUE(shows(tile.shownPicture(), QColor(0x80, 0x80, 0x80)));

    // Wide pictures keep their shape inside the square.
    tile.setGoodsPicture(blue);
    const QPixmap shown = tile.shownPicture();
    EXPECT_EQ(tile.GoodsPicture(), blue);
    EXPECT_GT(shown.width(), shown.height());
    EXPECT_LE(shown.deviceIndependentSize().width(), TwipsToPixels(2380) + 1);

    // A picture file written again shows what it holds now (every order load
    // writes the pictures again); the same bytes again need no new decode.
    const QString item = env.path("Tmp_1001");
    ASSERT_TRUE(QFile::copy(red, item));
    tile.setGoodsPicture(item);
    const qint64 decoded = tile.shownPicture().cacheKey();
    ASSERT_TRUE(QFile::remove(item) && QFile::copy(red, item));
    tile.setGoodsPicture(item);
    EXPECT_EQ(tile.shownPicture().cacheKey(), decoded);
    ASSERT_TRUE(QFile::remove(item) && QFile::copy(blue, item));
    tile.setGoodsPicture(item);
    EXPECT_TRUE(shows(tile.shownPicture(), Qt::blue));
    ASSERT_TRUE(QFile::remove(item) && QFile::copy(red, item));
    tile.setGoodsPicture(item);
    EXPECT_TRUE(shows(tile.shownPicture(), Qt::red));

    // Without a default picture a bad file leaves everything as it was.
    ASSERT_TRUE(QFile::remove(env.defaultPicture()));
    tile.setGoodsPicture(junk);
    EXPECT_EQ(tile.GoodsPicture(), item);
    EXPECT_TRUE(shows(tile.shownPicture(), Qt::red));
}

TEST(GoodsViewTile, ClicksOpenThePageAndRaiseEvents)
{
    TileEnvironment env;
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &catcher, "open");
    GoodsView tile;
    tile.setGoodsID(QStringLiteral("4711"));
    QStringList events;
    QObject::connect(&tile, &GoodsView::GoodsNameClick, [&](const QString& id) {
        events << QStringLiteral("name:") + id + QStringLiteral(" urls:") + QString::number(catcher.urls.size());
    });
    QObject::connect(&tile, &GoodsView::GoodsImageClick, [&](const QString& id) { events << QStringLiteral("image:") + id; });

    // No URL: only the event.
    QTest::mouseClick(tile.findChild<QWidget*>("lblGoodsName"), Qt::LeftButton);
    EXPECT_EQ(events, QStringList({"name:4711 urls:0"}));
    EXPECT_TRUE(catcher.urls.isEmpty());

    // A URL is opened first, then the event is raised.
    tile.setGoodsURL(QStringLiteral("https://shop.example/item/4711"));
    QTest::mouseClick(tile.findChild<QWidget*>("lblGoodsName"), Qt::LeftButton);
    ASSERT_EQ(catcher.urls.size(), 1);
    EXPECT_EQ(catcher.urls[0], QUrl(QStringLiteral("https://shop.example/item/4711")));
    EXPECT_EQ(events.last(), QStringLiteral("name:4711 urls:1"));

    // The picture only raises its event.
    QTest::mouseClick(tile.findChild<QWidget*>("imgMain"), Qt::LeftButton);
    EXPECT_EQ(events.last(), QStringLiteral("image:4711"));
    EXPECT_EQ(catcher.urls.size(), 1);
    // The right button is no click.
    QTest::mouseClick(tile.findChild<QWidget*>("imgMain"), Qt::RightButton);
    EXPECT_EQ(events.size(), 3);
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
}

TEST(GoodsBigViewTile, WidthSelectionAndPictures)
{
    TileEnvironment env;
    const QString red = env.path("red.jpg");
    ASSERT_TRUE(writePicture(red, Qt::red));
    GoodsBigView big;

    // Never narrower than 4000 twips.
    big.resize(TwipsToPixels(3000), big.height());
    EXPECT_GE(PixelsToTwips(big.width()), GoodsBigView::MinimumWidth);

    // At the design size the picture is the 2400 square; selection insets it by 30.
    EXPECT_EQ(big.imgMainGeometry(), QRect(0, 0, 2400, 2400));
    big.SetSelected(true);
    big.SetSelected(true);
    EXPECT_EQ(big.imgMainGeometry(), QRect(30, 30, 2340, 2340));
    big.SetSelected(false);
    EXPECT_EQ(big.imgMainGeometry(), QRect(0, 0, 2400, 2400));

    // Larger control: the picture grows, the name spans the width less 60.
    big.resize(TwipsToPixels(9000), TwipsToPixels(6000));
    const QRect grown = big.imgMainGeometry();
    EXPECT_GT(grown.width(), 2400);
    EXPECT_GT(grown.height(), 2400);
    EXPECT_LE(grown.bottom() + 1 + 120, big.nameGeometry().top());
    EXPECT_NEAR(big.nameGeometry().width(), PixelsToTwips(big.width()) - 60, 1);
    big.SetSelected(true);
    EXPECT_EQ(big.imgMainGeometry(), grown.adjusted(30, 30, -30, -30));

    // A file and a pixmap replace each other; the counts stay.
    big.setGoodsOrderCnt(4);
    big.setGoodsCheckedCnt(2);
    big.setGoodsPicture(red);
    EXPECT_TRUE(shows(big.shownPicture(), Qt::red));
    QPixmap green(120, 120);
    green.fill(Qt::green);
    big.SetPicture(green);
    EXPECT_TRUE(shows(big.shownPicture(), Qt::green));
    big.setGoodsPicture(QString());   // nothing happens
    EXPECT_TRUE(shows(big.shownPicture(), Qt::green));
    big.setGoodsPicture(red);
    EXPECT_TRUE(shows(big.shownPicture(), Qt::red));
    EXPECT_EQ(big.GoodsOrderCnt(), 4);
    EXPECT_EQ(big.GoodsCheckedCnt(), 2);
    EXPECT_EQ(labelText(big, "lblCheckedCnt"), QStringLiteral("2"));

    // A goods line fills it, and a line without a loadable picture shows the default.
    GoodsRecord line = goodsLine(9, 1, QStringLiteral("蓝牙耳机"), 3, env.path("missing.jpg"));
    line.SetValue("GoodsCheckedCnt", 3);
    big.showGoodsLine(line);
    EXPECT_EQ(big.GoodsID(), QStringLiteral("9"));
    EXPECT_EQ(big.GoodsName(), QStringLiteral("蓝牙耳机"));
    EXPECT_EQ(labelText(big, "lblOrderCnt"), QStringLiteral("3"));
    EXPECT_TRUE(shows(big.shownPicture(), QColor(0x80, 0x80, 0x80)));
}

TEST(GoodsBigViewTile, ThePictureTakesTheRoomTheNameAndCountsLeave)
{
    TileEnvironment env;
    QPixmap square(400, 400);
    square.fill(Qt::blue);
    // Width and height in twips: the design size, the station's side column
    // at its usual sizes, a wide control.
    const QSize sizes[] = {{4000, 3150}, {4000, 4800}, {4400, 5000}, {5200, 6500}, {9000, 6000}};
    for (const QSize& twips : sizes) {
        GoodsBigView big;
        big.resize(TwipsToPixels(twips.width()), TwipsToPixels(twips.height()));
        big.SetPicture(square);
        big.show();
        QApplication::processEvents();
        const QString at = QStringLiteral("%1x%2").arg(twips.width()).arg(twips.height());

        // Where the picture is drawn: fitted and centred in imgMain.
        const auto* img = big.findChild<QWidget*>(QStringLiteral("imgMain"));
        ASSERT_NE(img, nullptr);
        const QSizeF drawn = big.shownPicture().deviceIndependentSize();
        const QRectF picture(img->x() + (img->width() - drawn.width()) / 2.0,
                             img->y() + (img->height() - drawn.height()) / 2.0, drawn.width(), drawn.height());

        // Below the picture comes the next thing, after a gap of at most 120.
        int below = big.height();
        for (const QLabel* label : big.findChildren<QLabel*>()) {
            const QRect g = label->geometry();
            if (label->isVisibleTo(&big) && g.top() >= picture.bottom() - 1 && g.right() > picture.left()
                && g.left() < picture.right())
                below = qMin(below, g.top());
        }
        EXPECT_LE(below - picture.bottom(), TwipsToPixels(120) + 2) << at.toStdString();
        EXPECT_GE(picture.top(), -0.5) << at.toStdString();
        // The labels keep clear of the picture.
        for (const QLabel* label : big.findChildren<QLabel*>())
            EXPECT_FALSE(label->isVisibleTo(&big) && QRectF(label->geometry()).intersects(picture.adjusted(1, 1, -1, -1)))
                << at.toStdString() << " " << label->objectName().toStdString();
    }
}

TEST(GoodsBigViewTile, Clicks)
{
    TileEnvironment env;
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &catcher, "open");
    GoodsBigView big;
    big.setGoodsID(QStringLiteral("12"));
    big.setGoodsURL(QStringLiteral("https://shop.example/12"));
    QStringList events;
    QObject::connect(&big, &GoodsBigView::GoodsNameClick, [&](const QString& id) { events << "name:" + id; });
    QObject::connect(&big, &GoodsBigView::GoodsImageClick, [&](const QString& id) { events << "image:" + id; });
    QTest::mouseClick(big.findChild<QWidget*>("imgMain"), Qt::LeftButton);
    EXPECT_TRUE(catcher.urls.isEmpty());
    QTest::mouseClick(big.findChild<QWidget*>("lblGoodsName"), Qt::LeftButton);
    EXPECT_EQ(events, QStringList({"image:12", "name:12"}));
    EXPECT_EQ(catcher.urls.size(), 1);

    // A failing handler of the form ends in a message box, not in the event loop.
    QObject::connect(&big, &GoodsBigView::GoodsImageClick, [](const QString&) {
        throw HostError(HostErrors::Database, QStringLiteral("handler failed"));
    });
    QTest::mouseClick(big.findChild<QWidget*>("imgMain"), Qt::LeftButton);
    EXPECT_EQ(env.boxes->texts(), QStringList({"handler failed"}));
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
}

#include "test_goods_view.moc"
