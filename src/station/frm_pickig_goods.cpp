// The station form: its controls from the .ui file, what code adds to their
// look, and the small helpers that every handler file of the form shares.
#include "station/frm_pickig_goods.h"
#include "host/session_journal.h"
#include "ui_frm_pickig_goods.h"
#include "station/active_view.h"
#include "grid/goods_text_view.h"
#include "host/error_reporter.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "orderdata/order_goods.h"
#include "log/log_list.h"
#include "session/host_session.h"
#include "session/language.h"
#include "station/scan_line_edit.h"
#include "tiles/goods_big_view.h"
#include "tiles/goods_list_view.h"
#include <QCheckBox>
#include <QEvent>
#include <QFile>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QResizeEvent>
#include <QTimer>

namespace {

constexpr int StampWidth = 260;
constexpr int StampHeight = 150;

// The pass stamp: a tilted green seal with "通过", drawn once.
QPixmap drawPassStamp(qreal ratio)
{
    QPixmap pixmap(QSize(StampWidth, StampHeight) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.translate(StampWidth / 2.0, StampHeight / 2.0);
    p.rotate(-8);
    const QRectF outer(-118, -58, 236, 116);
    const QColor green(0, 150, 60);
    QColor wash = green;
    wash.setAlpha(28);
    p.setBrush(wash);
    p.setPen(QPen(green, 7));
    p.drawRoundedRect(outer, 18, 18);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(green, 2.5));
    p.drawRoundedRect(outer.adjusted(11, 11, -11, -11), 11, 11);
    QFont font(QStringLiteral("WenQuanYi Micro Hei"));
    font.setPixelSize(64);
    font.setBold(true);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 10);
    p.setFont(font);
    p.setPen(green);
    p.drawText(outer.adjusted(10, 0, 0, 0), Qt::AlignCenter, QStringLiteral("通过"));
    return pixmap;
}

// The look of the frames and fields, kept beside the form as a style sheet.
QString stationLook()
{
    QFile file(QStringLiteral(":/rnw/station/frm_pickig_goods.qss"));
    return file.open(QIODevice::ReadOnly | QIODevice::Text) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

frmPickigGoods::frmPickigGoods(QWidget* parent) : QDialog(parent), ui(std::make_unique<Ui::frmPickigGoods>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    setWindowFlag(Qt::WindowMinimizeButtonHint, true);
    Timer_AutoClear = new QTimer(this);
    Timer_AutoClear->setObjectName(QStringLiteral("Timer_AutoClear"));
    applyLook();
    connectHandlers();

    // Creation: the lists and the state are new with m_state; the labels, the picker.
    ui->lblMessage->setText(QString());
    ui->lblPickedNum->setText(QStringLiteral("0/"));
    ui->lblOrderNum->setText(QStringLiteral("0"));
    ui->lblProgress->resize(0, ui->lblProgress->height());
    ui->TxtNum->setText(QStringLiteral("1"));
    ui->lblPickInfo->setText(QString());
    ui->ImgSuccess->hide();
    ReportingErrors(this, [&] {
        // The session may have changed since the component was last used.
        ParsePropsString(GetPropsString());
    });
    LoadEmployee();

    // Load: fonts, options, company settings.
    SetFrmFont(this);
    LoadOptions();
    // A session that died is offered back before the worker scans.
    openJournal();
}

frmPickigGoods::~frmPickigGoods() = default;

void frmPickigGoods::applyLook()
{
    setStyleSheet(stationLook());
    // The pass stamp lies on the goods, clicks pass through it to the tiles.
    ui->ImgSuccess->setAttribute(Qt::WA_TransparentForMouseEvents);
    ui->ImgSuccess->setPixmap(drawPassStamp(devicePixelRatioF()));
    ui->ImgSuccess->setFixedSize(StampWidth, StampHeight);
    ui->ImgSuccess->raise();
    // The enlarged tile is as wide as the system sizes it, in twips.
    ui->GoodsBigView->setMinimumWidth(TwipsToPixels(::GoodsBigView::MinimumWidth));
    // The default goods picture, kept for the views.
    ui->ImgDefault->setPixmap(QPixmap(ComponentPath(QStringLiteral("\\images\\default.jpg"))));

    ui->LblProgressbar->installEventFilter(this);
    ui->PiclistBack->installEventFilter(this);
}

void frmPickigGoods::connectHandlers()
{
    connect(ui->TxtID, &ScanLineEdit::enterPressed, this, &frmPickigGoods::TxtID_Enter);
    connect(ui->TxtItemID, &ScanLineEdit::enterPressed, this, &frmPickigGoods::TxtItemID_Enter);
    connect(ui->TxtNum, &ScanLineEdit::enterPressed, this, &frmPickigGoods::TxtNum_Enter);
    // A scan of refused characters only is no scan: the code standing in the
    // field is not taken again, only the end-of-scan reset runs.
    connect(ui->TxtID, &ScanLineEdit::refusedScanEntered, this, [this] { FocusAndSelect(ui->TxtID); });
    for (ScanLineEdit* field : {ui->TxtItemID, ui->TxtNum}) {
        connect(field, &ScanLineEdit::refusedScanEntered, this, [this] {
            ui->TxtNum->setText(QStringLiteral("1"));
            FocusAndSelect(ui->TxtItemID);
        });
    }
    connect(ui->TxtNum, &QLineEdit::textChanged, this, [this] { TxtNum_Change(); });
    connect(ui->CmdBtnRePick, &QPushButton::clicked, this, [this] { CmdBtnRePick_Click(); });
    connect(ui->chkHaveSerial, &QCheckBox::clicked, this, [this] { chkHaveSerial_Click(); });
    connect(ui->chkShowText, &QCheckBox::clicked, this, [this] { chkShowText_Click(); });
    connect(ui->LogList1, &::LogList::FilterChanged, this, &frmPickigGoods::LogList1_FilterChanged);

    // Focus and click rules of the entry fields.
    for (ScanLineEdit* field : {ui->TxtID, ui->TxtItemID, ui->TxtNum}) {
        connect(field, &ScanLineEdit::focusEntered, this, [field] { field->selectAll(); });
        connect(field, &ScanLineEdit::clicked, field, &QLineEdit::clear);
    }
    // The field shows the order on the station whenever the worker is elsewhere.
    connect(ui->TxtID, &ScanLineEdit::focusLeft, this, [this] { ui->TxtID->setText(m_state.CurrentOrderCode()); });
    connect(ui->TxtEmployee, &ScanLineEdit::doubleClicked, this, &frmPickigGoods::TxtEmployee_PickEmployee);
    connect(ui->TxtEmployee, &ScanLineEdit::functionKeyPressed, this, [this](int key) {
        if (key == Qt::Key_F7)
            TxtEmployee_PickEmployee();
    });

    // The goods in hand follow the selection of either view, and show the
    // count that the scan just made (the views select before they count).
    auto showInHand = [this](const GoodsRecord& line) {
        m_bigViewLine = line;
        ui->GoodsBigView->showGoodsLine(line);
    };
    connect(ui->GoodsListView, &::GoodsListView::GoodsSelected, this, showInHand);
    connect(ui->GoodsTextView, &::GoodsTextView::GoodsSelected, this, showInHand);
    auto recount = [this] {
        if (!m_bigViewLine.isNone() && HasGoodsLines())
            ui->GoodsBigView->showGoodsLine(m_bigViewLine);
    };
    connect(ui->TxtItemID, &ScanLineEdit::enterPressed, this, recount);
    connect(ui->TxtNum, &ScanLineEdit::enterPressed, this, recount);
}

int frmPickigGoods::ShowMessageBox(const QString& prompt, int buttons, const QString& title)
{
    // The title is the box's name, not a message: it is shown as given.
    auto box = CreateServerObjectAs<IMessageBox>(ProgIds::MessageBox);
    return box->Show(this, prompt, buttons, title);
}

void frmPickigGoods::ResetPickState()
{
    ui->TxtItemID->setText(QString());
    m_state.clearCounters();
    ui->TxtNum->setText(QStringLiteral("1"));
    ui->lblPickInfo->setText(QString());
    ui->ImgSuccess->hide();
}

void frmPickigGoods::PlayVoice(const QString& fileName)
{
    try {
        CreateServerObjectAs<ISound>(ProgIds::Sound)->Play(fileName);
    } catch (...) {
        // A station without sound still checks orders.
    }
}

void frmPickigGoods::SetMessage(const QString& chineseText)
{
    ui->lblMessage->setText(chineseText.isEmpty() ? QString() : LoadString(chineseText));
}

qint32 frmPickigGoods::shownTotal() const
{
    return ui->lblOrderNum->text().toInt();
}

void frmPickigGoods::UpdateProgress()
{
    ui->lblPickedNum->setText(QString::number(m_state.pickedNum()) + QStringLiteral("/") + QString::number(shownTotal()));
    setProgressWidth();
}

void frmPickigGoods::setProgressWidth()
{
    const qint32 total = shownTotal();
    const qint32 picked = m_state.pickedNum();
    const int frame = ui->LblProgressbar->width();
    int width = 0;
    if (total > 0 && picked > 0)
        width = int(qBound(qint64(0), qint64(frame) * picked / total, qint64(frame)));
    ui->lblProgress->setGeometry(0, 0, width, ui->LblProgressbar->height());
}

bool frmPickigGoods::IsGridView() const
{
    return ui->chkShowText->checkState() == Qt::Checked;
}

ActiveView frmPickigGoods::activeView() const
{
    return ActiveView(*ui->GoodsListView, *ui->GoodsTextView, IsGridView());
}

void frmPickigGoods::FocusAndSelect(QLineEdit* field)
{
    field->setFocus(Qt::OtherFocusReason);
    field->setSelection(0, int(field->text().size()));
}

void frmPickigGoods::placeGridView()
{
    // The stamp sits in the top right corner of the goods area.
    const int x = qMax(0, ui->PiclistBack->width() - ui->ImgSuccess->width() - 24);
    ui->ImgSuccess->move(x, 16);
    ui->ImgSuccess->raise();
}

void frmPickigGoods::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    placeGridView();
}

void frmPickigGoods::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!m_shownOnce) {
        m_shownOnce = true;
        // The station waits for an order.
        ui->TxtID->setFocus(Qt::OtherFocusReason);
    }
}

bool frmPickigGoods::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize) {
        if (watched == ui->LblProgressbar)
            setProgressWidth();
        else if (watched == ui->PiclistBack)
            placeGridView();
    }
    return QDialog::eventFilter(watched, event);
}

void frmPickigGoods::reject()
{
    // Escape does not close the station: only the window's close does, with its question.
}
