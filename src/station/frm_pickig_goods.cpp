// The station form: its controls, their look, and the small helpers that
// every handler file of the form shares.
#include "station/frm_pickig_goods.h"
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
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QResizeEvent>
#include <QTimer>
#include <QVBoxLayout>

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

QLabel* makeLabel(QWidget* parent, const QString& name, const QString& text = QString())
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

ScanLineEdit* makeScanField(QWidget* parent, const QString& name)
{
    auto* field = new ScanLineEdit(parent);
    field->setObjectName(name);
    return field;
}

void setPointSize(QWidget* widget, qreal points, bool bold = false)
{
    QFont font = widget->font();
    font.setPointSizeF(points);
    font.setBold(bold);
    widget->setFont(font);
}

} // namespace

frmPickigGoods::frmPickigGoods(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmPickigGoods"));
    setWindowTitle(QStringLiteral("拣货校验"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    setWindowFlag(Qt::WindowMinimizeButtonHint, true);
    buildControls();
    applyLook();
    connectHandlers();

    // Creation: the lists, the state, the labels, the picker.
    SessionOrderLog = RecordList();
    m_ArgList = RecordList();
    SessionOrderKeys = GoodsRecord();
    m_ArgRecord = GoodsRecord();
    CurrentOrderCode = QString();
    m_PickedNum = m_MissingNum = m_ExcessNum = m_ErrorNum = 0;
    lblMessage->setText(QString());
    lblPickedNum->setText(QStringLiteral("0/"));
    lblOrderNum->setText(QStringLiteral("0"));
    lblProgress->resize(0, lblProgress->height());
    TxtNum->setText(QStringLiteral("1"));
    lblPickInfo->setText(QString());
    ImgSuccess->hide();
    try {
        // The session may have changed since the component was last used.
        ParsePropsString(GetPropsString());
    } catch (const HostError& e) {
        ReportError(e.number(), e.description(), this);
    } catch (const std::exception& e) {
        ReportError(0, QString::fromLocal8Bit(e.what()), this);
    }
    LoadEmployee();

    // Load: fonts, options, company settings.
    SetFrmFont(this);
    LoadOptions();
}

frmPickigGoods::~frmPickigGoods() = default;

void frmPickigGoods::buildControls()
{
    resize(1360, 860);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(10, 8, 10, 8);
    outer->setSpacing(8);

    // Header band: who picks, which order, which goods, how many.
    fraMain = new QFrame(this);
    fraMain->setObjectName(QStringLiteral("fraMain"));
    auto* header = new QGridLayout(fraMain);
    header->setContentsMargins(12, 8, 12, 8);
    header->setHorizontalSpacing(10);
    header->setVerticalSpacing(6);
    LblEmployee = makeLabel(fraMain, QStringLiteral("LblEmployee"), QStringLiteral("拣货人"));
    TxtEmployee = makeScanField(fraMain, QStringLiteral("TxtEmployee"));
    TxtEmployee->setToolTip(QStringLiteral("双击或按 F7 选择拣货人"));
    LblID = makeLabel(fraMain, QStringLiteral("LblID"), QStringLiteral("物流单号/唯一码"));
    TxtID = makeScanField(fraMain, QStringLiteral("TxtID"));
    LblItemID = makeLabel(fraMain, QStringLiteral("LblItemID"), QStringLiteral("商品条码/序列号"));
    TxtItemID = makeScanField(fraMain, QStringLiteral("TxtItemID"));
    lblNum = makeLabel(fraMain, QStringLiteral("lblNum"), QStringLiteral("数量"));
    TxtNum = makeScanField(fraMain, QStringLiteral("TxtNum"));
    txtWebshop = new QLineEdit(fraMain);
    txtWebshop->setObjectName(QStringLiteral("txtWebshop"));
    txtWebshop->setReadOnly(true);
    txtWebshop->setFocusPolicy(Qt::NoFocus);
    txtWebshop->setPlaceholderText(QStringLiteral("网店"));
    chkBarCode = new QCheckBox(QStringLiteral("只校验有条码的商品"), fraMain);
    chkBarCode->setObjectName(QStringLiteral("chkBarCode"));
    chkHaveSerial = new QCheckBox(QStringLiteral("扫描序列号"), fraMain);
    chkHaveSerial->setObjectName(QStringLiteral("chkHaveSerial"));
    chkShowText = new QCheckBox(QStringLiteral("列表显示"), fraMain);
    chkShowText->setObjectName(QStringLiteral("chkShowText"));
    CmdBtnRePick = new QPushButton(QStringLiteral("重新拣货"), fraMain);
    CmdBtnRePick->setObjectName(QStringLiteral("CmdBtnRePick"));
    CmdBtnRePick->setAutoDefault(false);
    CmdBtnRePick->setFocusPolicy(Qt::NoFocus);

    header->addWidget(LblID, 0, 0);
    header->addWidget(TxtID, 0, 1);
    header->addWidget(LblItemID, 0, 2);
    header->addWidget(TxtItemID, 0, 3);
    header->addWidget(lblNum, 0, 4);
    header->addWidget(TxtNum, 0, 5);
    header->addWidget(LblEmployee, 1, 0);
    header->addWidget(TxtEmployee, 1, 1);
    auto* options = new QHBoxLayout;
    options->setSpacing(18);
    options->addWidget(txtWebshop, 2);
    options->addWidget(chkBarCode);
    options->addWidget(chkHaveSerial);
    options->addWidget(chkShowText);
    options->addStretch(1);
    options->addWidget(CmdBtnRePick);
    header->addLayout(options, 1, 2, 1, 4);
    header->setColumnStretch(1, 5);
    header->setColumnStretch(3, 5);
    header->setColumnStretch(5, 1);
    outer->addWidget(fraMain);

    // Count band: order total, picked/total, progress, verdict and message.
    PicBack = new QFrame(this);
    PicBack->setObjectName(QStringLiteral("PicBack"));
    auto* counts = new QGridLayout(PicBack);
    counts->setContentsMargins(14, 6, 14, 8);
    counts->setHorizontalSpacing(16);
    counts->setVerticalSpacing(2);
    Label1 = makeLabel(PicBack, QStringLiteral("Label1"), QStringLiteral("订单数量"));
    lblOrderNum = makeLabel(PicBack, QStringLiteral("lblOrderNum"));
    auto* pickedCaption = makeLabel(PicBack, QStringLiteral("lblPickedCaption"), QStringLiteral("已拣/合计"));
    lblPickedNum = makeLabel(PicBack, QStringLiteral("lblPickedNum"));
    LblProgressbar = makeLabel(PicBack, QStringLiteral("LblProgressbar"));
    LblProgressbar->setMinimumHeight(30);
    LblProgressbar->setMaximumHeight(30);
    lblProgress = makeLabel(LblProgressbar, QStringLiteral("lblProgress"));
    lblProgress->setGeometry(0, 0, 0, 30);
    lblPickInfo = makeLabel(PicBack, QStringLiteral("lblPickInfo"));
    lblMessage = makeLabel(PicBack, QStringLiteral("lblMessage"));
    lblMessage->setWordWrap(true);
    for (QLabel* label : {Label1, pickedCaption})
        label->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    lblOrderNum->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    lblPickedNum->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    lblOrderNum->setMinimumWidth(150);
    lblPickedNum->setMinimumWidth(240);
    counts->addWidget(Label1, 0, 0);
    counts->addWidget(pickedCaption, 0, 1);
    counts->addWidget(lblOrderNum, 1, 0, 2, 1);
    counts->addWidget(lblPickedNum, 1, 1, 2, 1);
    counts->addWidget(lblPickInfo, 0, 2);
    counts->addWidget(lblMessage, 1, 2);
    counts->addWidget(LblProgressbar, 2, 2);
    counts->setColumnStretch(2, 1);
    outer->addWidget(PicBack);

    // Work area: the goods (tiles or grid) take the room; the goods in hand
    // and the log sit beside them.
    auto* work = new QHBoxLayout;
    work->setSpacing(8);
    PiclistBack = new QFrame(this);
    PiclistBack->setObjectName(QStringLiteral("PiclistBack"));
    auto* viewArea = new QGridLayout(PiclistBack);
    viewArea->setContentsMargins(2, 2, 2, 2);
    GoodsListView = new ::GoodsListView(PiclistBack);
    GoodsListView->setObjectName(QStringLiteral("GoodsListView"));
    GoodsTextView = new ::GoodsTextView(PiclistBack);
    GoodsTextView->setObjectName(QStringLiteral("GoodsTextView"));
    viewArea->addWidget(GoodsListView, 0, 0);
    viewArea->addWidget(GoodsTextView, 0, 0);
    GoodsTextView->hide();
    ImgSuccess = makeLabel(PiclistBack, QStringLiteral("ImgSuccess"));
    ImgSuccess->setAttribute(Qt::WA_TransparentForMouseEvents);
    ImgSuccess->setPixmap(drawPassStamp(devicePixelRatioF()));
    ImgSuccess->setFixedSize(StampWidth, StampHeight);
    ImgSuccess->setToolTip(QStringLiteral("通过"));
    // The goods take three quarters of the width, the side column the rest.
    work->addWidget(PiclistBack, 3);

    auto* side = new QVBoxLayout;
    side->setSpacing(8);
    GoodsBigView = new ::GoodsBigView(this);
    GoodsBigView->setObjectName(QStringLiteral("GoodsBigView"));
    GoodsBigView->setMinimumWidth(TwipsToPixels(::GoodsBigView::MinimumWidth));
    LogList1 = new ::LogList(this);
    LogList1->setObjectName(QStringLiteral("LogList1"));
    // The log keeps its page of seven rows; the goods in hand take the rest.
    side->addWidget(GoodsBigView, 3);
    side->addWidget(LogList1, 2);
    work->addLayout(side, 1);
    outer->addLayout(work, 1);

    // The default goods picture, kept for the views.
    ImgDefault = makeLabel(this, QStringLiteral("ImgDefault"));
    ImgDefault->setPixmap(QPixmap(ComponentPath(QStringLiteral("\\images\\default.jpg"))));
    ImgDefault->hide();

    Timer_AutoClear = new QTimer(this);
    Timer_AutoClear->setObjectName(QStringLiteral("Timer_AutoClear"));

    // TxtEmployee first in the tab order.
    setTabOrder(TxtEmployee, TxtID);
    setTabOrder(TxtID, TxtItemID);
    setTabOrder(TxtItemID, TxtNum);
    setTabOrder(TxtNum, chkBarCode);
    setTabOrder(chkBarCode, chkHaveSerial);
    setTabOrder(chkHaveSerial, chkShowText);

    LblProgressbar->installEventFilter(this);
    PiclistBack->installEventFilter(this);
}

void frmPickigGoods::applyLook()
{
    setPointSize(this, 11);
    for (ScanLineEdit* field : {TxtID, TxtItemID})
        setPointSize(field, 20, true);
    setPointSize(TxtNum, 20, true);
    setPointSize(TxtEmployee, 13);
    setPointSize(txtWebshop, 13);
    for (QLabel* label : {LblID, LblItemID, lblNum, LblEmployee})
        setPointSize(label, 13);
    TxtID->setMinimumHeight(48);
    TxtItemID->setMinimumHeight(48);
    TxtNum->setMinimumHeight(48);
    TxtNum->setMaximumWidth(110);
    TxtNum->setAlignment(Qt::AlignCenter);
    setPointSize(Label1, 12);
    setPointSize(findChild<QLabel*>(QStringLiteral("lblPickedCaption")), 12);
    setPointSize(lblOrderNum, 44, true);
    setPointSize(lblPickedNum, 44, true);
    setPointSize(lblPickInfo, 22, true);
    setPointSize(lblMessage, 18, true);

    fraMain->setStyleSheet(QStringLiteral(
        "#fraMain { background: #eef2f7; border: 1px solid #c5cfdb; border-radius: 6px; }"
        "ScanLineEdit { background: #ffffff; border: 2px solid #8fa3bb; border-radius: 4px; padding: 2px 6px; }"
        "ScanLineEdit:focus { border: 3px solid #1f6fd1; background: #fffde8; }"
        "#txtWebshop { background: #f7f7f7; border: 1px solid #c5cfdb; color: #1c3d6e; }"
        "#CmdBtnRePick { padding: 6px 18px; }"));
    PicBack->setStyleSheet(QStringLiteral(
        "#PicBack { background: #fbfbfb; border: 1px solid #d5d9de; border-radius: 6px; }"
        "#Label1, #lblPickedCaption { color: #5a6775; }"
        "#lblOrderNum { color: #1b2a3a; }"
        "#lblPickedNum { color: #1f6fd1; }"
        "#lblPickInfo { color: #d00000; }"
        "#lblMessage { color: #d00000; }"
        "#LblProgressbar { background: #e4e8ec; border: 1px solid #9aa7b4; border-radius: 4px; }"
        "#lblProgress { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #5fd37a, stop:1 #1e9e45);"
        " border-radius: 4px; }"));
    PiclistBack->setStyleSheet(QStringLiteral("#PiclistBack { border: 1px solid #d5d9de; border-radius: 6px; }"));
}

void frmPickigGoods::connectHandlers()
{
    connect(TxtID, &ScanLineEdit::enterPressed, this, &frmPickigGoods::TxtID_Enter);
    connect(TxtItemID, &ScanLineEdit::enterPressed, this, &frmPickigGoods::TxtItemID_Enter);
    connect(TxtNum, &ScanLineEdit::enterPressed, this, &frmPickigGoods::TxtNum_Enter);
    // A scan of refused characters only is no scan: the code standing in the
    // field is not taken again, only the end-of-scan reset runs.
    connect(TxtID, &ScanLineEdit::refusedScanEntered, this, [this] { FocusAndSelect(TxtID); });
    for (ScanLineEdit* field : {TxtItemID, TxtNum}) {
        connect(field, &ScanLineEdit::refusedScanEntered, this, [this] {
            TxtNum->setText(QStringLiteral("1"));
            FocusAndSelect(TxtItemID);
        });
    }
    connect(TxtNum, &QLineEdit::textChanged, this, [this] { TxtNum_Change(); });
    connect(CmdBtnRePick, &QPushButton::clicked, this, [this] { CmdBtnRePick_Click(); });
    connect(chkHaveSerial, &QCheckBox::clicked, this, [this] { chkHaveSerial_Click(); });
    connect(chkShowText, &QCheckBox::clicked, this, [this] { chkShowText_Click(); });
    connect(LogList1, &::LogList::FilterChanged, this, &frmPickigGoods::LogList1_FilterChanged);

    // Focus and click rules of the entry fields.
    for (ScanLineEdit* field : {TxtID, TxtItemID, TxtNum}) {
        connect(field, &ScanLineEdit::focusEntered, this, [field] { field->selectAll(); });
        connect(field, &ScanLineEdit::clicked, field, &QLineEdit::clear);
    }
    // The field shows the order on the station whenever the worker is elsewhere.
    connect(TxtID, &ScanLineEdit::focusLeft, this, [this] { TxtID->setText(CurrentOrderCode); });
    connect(TxtEmployee, &ScanLineEdit::doubleClicked, this, &frmPickigGoods::TxtEmployee_PickEmployee);
    connect(TxtEmployee, &ScanLineEdit::functionKeyPressed, this, [this](int key) {
        if (key == Qt::Key_F7)
            TxtEmployee_PickEmployee();
    });

    // The goods in hand follow the selection of either view, and show the
    // count that the scan just made (the views select before they count).
    auto showInHand = [this](const GoodsRecord& line) {
        m_bigViewLine = line;
        GoodsBigView->showGoodsLine(line);
    };
    connect(GoodsListView, &::GoodsListView::GoodsSelected, this, showInHand);
    connect(GoodsTextView, &::GoodsTextView::GoodsSelected, this, showInHand);
    auto recount = [this] {
        if (!m_bigViewLine.isNone() && HasGoodsLines())
            GoodsBigView->showGoodsLine(m_bigViewLine);
    };
    connect(TxtItemID, &ScanLineEdit::enterPressed, this, recount);
    connect(TxtNum, &ScanLineEdit::enterPressed, this, recount);
}

int frmPickigGoods::ShowMessageBox(const QString& prompt, int buttons, const QString& title)
{
    // The title is the box's name, not a message: it is shown as given.
    auto box = CreateServerObjectAs<IMessageBox>(ProgIds::MessageBox);
    return box->Show(this, prompt, buttons, title);
}

void frmPickigGoods::ResetPickState()
{
    TxtItemID->setText(QString());
    m_PickedNum = m_MissingNum = m_ExcessNum = m_ErrorNum = 0;
    TxtNum->setText(QStringLiteral("1"));
    lblPickInfo->setText(QString());
    ImgSuccess->hide();
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
    lblMessage->setText(chineseText.isEmpty() ? QString() : LoadString(chineseText));
}

void frmPickigGoods::UpdateProgress()
{
    const qint32 total = lblOrderNum->text().toInt();
    lblPickedNum->setText(QString::number(m_PickedNum) + QStringLiteral("/") + QString::number(total));
    setProgressWidth();
}

void frmPickigGoods::setProgressWidth()
{
    const qint32 total = lblOrderNum->text().toInt();
    int width = 0;
    if (total > 0 && m_PickedNum > 0)
        width = int(qBound(qint64(0), qint64(LblProgressbar->width()) * m_PickedNum / total, qint64(LblProgressbar->width())));
    lblProgress->setGeometry(0, 0, width, LblProgressbar->height());
}

bool frmPickigGoods::IsGridView() const
{
    return chkShowText->checkState() == Qt::Checked;
}

void frmPickigGoods::FocusAndSelect(QLineEdit* field)
{
    field->setFocus(Qt::OtherFocusReason);
    field->setSelection(0, int(field->text().size()));
}

void frmPickigGoods::placeGridView()
{
    // The stamp sits in the top right corner of the goods area.
    const int x = qMax(0, PiclistBack->width() - ImgSuccess->width() - 24);
    ImgSuccess->move(x, 16);
    ImgSuccess->raise();
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
        TxtID->setFocus(Qt::OtherFocusReason);
    }
}

bool frmPickigGoods::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize) {
        if (watched == LblProgressbar)
            setProgressWidth();
        else if (watched == PiclistBack)
            placeGridView();
    }
    return QDialog::eventFilter(watched, event);
}

void frmPickigGoods::reject()
{
    // Escape does not close the station: only the window's close does, with its question.
}
