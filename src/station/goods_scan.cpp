// The goods and serial scan: Enter in TxtItemID. The code is matched to one
// open line of the order on the station, the active view counts it unit by
// unit, and every outcome gets a message, a voice prompt and a verdict.
#include "station/frm_pickig_goods.h"
#include "host/record_keys.h"
#include "ui_frm_pickig_goods.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "orderdata/order_goods.h"
#include "orderdata/serial_lookup.h"
#include "session/language.h"
#include "station/active_view.h"
#include "station/gs1_scan.h"
#include "station/scan_line_edit.h"
#include "station/scan_quantity.h"
#include "station/serial_lists.h"
#include <QCheckBox>
#include <QLabel>
#include <exception>

namespace {

const QString kVoiceFindGoods = QStringLiteral("\\voice\\findGoods.wav");
const QString kVoiceScanSerial = QStringLiteral("\\voice\\scanSerial.wav");
const QString kVoiceRepeatScan = QStringLiteral("\\voice\\repeatScan.wav");
const QString kVoiceDifKFPeriod = QStringLiteral("\\voice\\DifKFPeriod.wav");
const QString kVoiceError = QStringLiteral("\\voice\\Error.wav");
const QString kVoiceExcess = QStringLiteral("\\voice\\Excess.wav");

QString text(const GoodsRecord& record, const QString& key)
{
    return record.GetValue(key, QString()).toString();
}

double number(const GoodsRecord& record, const QString& key)
{
    return record.GetValue(key, 0).toDouble();
}

bool hasOpenQuantity(const GoodsRecord& line)
{
    return number(line, RecordKeys::GoodsPickCnt) < number(line, RecordKeys::GoodsOrderCnt);
}

void addToPickCnt(GoodsRecord& line, int delta)
{
    const int picked = line.GetValue(RecordKeys::GoodsPickCnt, 0).toInt() + delta;
    line.SetValue(RecordKeys::GoodsPickCnt, QVariant::fromValue<qint16>(qint16(picked)));
}

void appendToList(GoodsRecord& line, const QString& key, const QString& value)
{
    line.SetValue(key, text(line, key) + QLatin1Char(',') + value);
}

} // namespace

class frmPickigGoods::GoodsScan {
public:
    explicit GoodsScan(frmPickigGoods& form) : f(form) {}
    void run();
    // The quantity in TxtNum was no whole number of pieces; nothing was counted.
    bool quantityRefused() const { return m_quantityRefused; }

private:
    // A code that is no goods of the order may be the next order: when the
    // header query knows it, the order scan takes it over.
    bool takeAsOrderCode();
    // A GS1 code: refused when it does not read; its count is the quantity.
    bool readGs1();
    bool takeGs1Count();
    bool lookUp();
    // A serial scanned from a GS1 label must be the labelled goods, of the
    // labelled batch and expiry.
    bool serialFitsLabel();
    bool chooseBarCodeLine();
    bool chooseSerialLine();
    bool shelfLifeFits(GoodsRecord& line);

    frmPickigGoods& f;
    QString m_code;
    GoodsRecord m_found = GoodsRecord::none();
    qint32 m_itemId = 0;
    bool m_serialMode = false;   // ui->chkHaveSerial: the code is a serial number
    bool m_serialScan = false;   // ... and the serial was found
    qint32 m_quantity = 1;
    bool m_quantityRefused = false;
    Gs1Scan m_gs1;   // what a GS1 code asks; Plain for every other code
    GoodsRecord m_line = GoodsRecord::none();   // the chosen order line
};

bool frmPickigGoods::GoodsScan::takeAsOrderCode()
{
    if (!f.OrderHeaderQuery(m_code))
        return false;
    f.ui->TxtID->setText(m_code);
    f.TxtID_Enter();
    return true;
}

void frmPickigGoods::GoodsScan::run()
{
    m_code = f.ui->TxtItemID->text().trimmed();
    if (m_code.isEmpty())
        return;
    if (!readGs1())
        return;

    if (f.ui->TxtID->text().trimmed().isEmpty() || !HasGoodsLines()) {
        // A GS1 code is never an order's code.
        if (m_gs1.kind == Gs1Scan::Kind::Read || !takeAsOrderCode()) {
            f.PlayVoice(kVoiceFindGoods);
            f.SetMessage(QStringLiteral("找不到物流单号/唯一码/商品条码/序列号"));
        }
        return;
    }

    // Read before the line is touched, so a bad quantity leaves nothing to undo.
    const std::optional<qint32> quantity = ScanQuantity(f.ui->TxtNum->text());
    if (!quantity) {
        f.SetMessage(QStringLiteral("商品数量只能为数值！"));
        m_quantityRefused = true;
        return;
    }
    m_quantity = *quantity;
    if (!takeGs1Count())
        return;

    if (!lookUp())
        return;
    if (m_serialMode ? !chooseSerialLine() : !chooseBarCodeLine())
        return;

    f.SetMessage(QString());
    const QString entry = text(m_found, RecordKeys::FEntryID);
    const qint32 index = FindGoodsLineIndex(m_itemId, entry);
    if (index == -2) {
        // A GS1 code is never an order's code.
        if (m_gs1.kind == Gs1Scan::Kind::Read || !takeAsOrderCode()) {
            f.PlayVoice(kVoiceFindGoods);
            f.ui->lblPickInfo->clear();
            f.SetMessage(QStringLiteral("找不到相应的发货单或商品"));
        }
        return;
    }
    if (index < 0) {
        f.PlayVoice(kVoiceError);
        f.m_state.countWrongGoods(m_quantity);
        f.WriteVerdict(2);
        return;
    }

    ActiveView view = f.activeView();
    const ActiveView::Line line{index, m_itemId, entry.toInt()};
    if (m_quantity >= 2) {
        if (m_serialScan) {
            // Nothing is counted, so the line keeps the open quantity it had.
            if (!m_line.isNone())
                addToPickCnt(m_line, -1);
            f.ShowMessageBox(LoadString(QStringLiteral("亲，序列号扫描不支持手动批量扫描!")), 48, VeltoTitle);
            return;
        }
        // A typed quantity replaces what the line had counted so far.
        f.m_state.takeBackExcess(view.excessCnt(line));
        f.WriteVerdict(0);
        f.m_state.takeBackPicked(view.pickedCnt(line));
        f.UpdateProgress();
        view.clearCheckedCnt(line);
    }

    if (m_serialScan && !m_line.isNone() && !shelfLifeFits(m_line))
        return;

    const qint32 total = f.shownTotal();
    int status = 0;
    view.select(line);
    for (qint32 k = 1; k <= m_quantity; ++k) {
        const bool lastUnit = k == m_quantity;
        view.countOne(line);
        status = view.status(line);
        if (status < 2) {
            const bool complete = f.m_state.countUnit(total);
            f.UpdateProgress();
            f.ui->lblPickInfo->clear();
            if (f.m_state.recomputeMissing())
                f.WriteVerdict(1);
            if (complete)
                f.OrderPassed(lastUnit);
        } else {
            // One prompt for the whole quantity, not one per piece.
            if (lastUnit)
                f.PlayVoice(kVoiceExcess);
            f.m_state.countExcessUnit();
            f.WriteVerdict(0);
        }
    }
    if (status == 1 || status == 2)
        view.refresh(line);
}

bool frmPickigGoods::GoodsScan::readGs1()
{
    m_gs1 = ReadGs1Scan(m_code);
    if (m_gs1.kind == Gs1Scan::Kind::Refused) {
        f.PlayVoice(kVoiceFindGoods);
        f.ui->lblPickInfo->clear();
        f.SetMessage(m_gs1.refusal);
        return false;
    }
    return true;
}

bool frmPickigGoods::GoodsScan::takeGs1Count()
{
    if (m_gs1.kind == Gs1Scan::Kind::Read && m_gs1.count) {
        // The label's count stands for the quantity typed in TxtNum.
        const std::optional<qint32> count = ScanQuantity(*m_gs1.count);
        if (!count) {
            f.SetMessage(QStringLiteral("商品数量只能为数值！"));
            m_quantityRefused = true;
            return false;
        }
        m_quantity = *count;
    }
    return true;
}

bool frmPickigGoods::GoodsScan::lookUp()
{
    const bool gs1 = m_gs1.kind == Gs1Scan::Kind::Read;
    m_serialMode = f.ui->chkHaveSerial->isChecked();
    if (m_serialMode) {
        // A label without a serial number finds no serial.
        m_found = !gs1 ? FindSerialNumber(m_code) : m_gs1.serial ? FindSerialNumber(*m_gs1.serial) : GoodsRecord();
        if (!text(m_found, RecordKeys::FItemID).isEmpty()) {
            if (gs1 && !serialFitsLabel())
                return false;
            m_itemId = m_found.GetValue(RecordKeys::FItemID).toInt();
            m_serialScan = true;
        }
        return true;
    }
    m_found = !gs1 ? FindWebOrderGoodsByBarCode(m_code) : m_gs1.gtin ? FindWebOrderGoodsByGtin(*m_gs1.gtin) : GoodsRecord();
    if (!text(m_found, RecordKeys::FItemID).isEmpty()) {
        if (m_found.GetValue(RecordKeys::FSerialClassID, 0).toInt() != 0) {
            f.PlayVoice(kVoiceScanSerial);
            f.SetMessage(QStringLiteral("亲,请扫描序列号"));
            return false;
        }
        m_itemId = m_found.GetValue(RecordKeys::FItemID).toInt();
    }
    return true;
}

bool frmPickigGoods::GoodsScan::serialFitsLabel()
{
    const QString item = text(m_found, RecordKeys::FItemID);
    const bool goodsFit = !m_gs1.gtin || text(FindWebOrderGoodsByGtin(*m_gs1.gtin), RecordKeys::FItemID) == item;
    const bool batchFits = !m_gs1.batch || *m_gs1.batch == text(m_found, RecordKeys::FBatchNo);
    if (!goodsFit || !batchFits) {
        f.PlayVoice(kVoiceFindGoods);
        f.SetMessage(QStringLiteral("该商品的批次、仓库、仓位信息与订单分录上的不一致"));
        return false;
    }
    if (m_gs1.expiry && !Gs1ExpiryFits(*m_gs1.expiry, m_found)) {
        f.PlayVoice(kVoiceDifKFPeriod);
        f.SetMessage(QStringLiteral("同一分录不允许扫描不同保质期的商品"));
        return false;
    }
    return true;
}

bool frmPickigGoods::GoodsScan::chooseBarCodeLine()
{
    const RecordList lines = GetGoodsLineSet();
    for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i) {
        GoodsRecord line = lines.Item(i);
        if (SameIdText(line.GetValue(RecordKeys::GoodsID, QString()), m_itemId) && hasOpenQuantity(line)) {
            m_found.SetValue(RecordKeys::FEntryID, line.GetValue(RecordKeys::FEntryID));
            addToPickCnt(line, 1);
            m_line = line;
            break;
        }
    }
    return true;   // no open line: the index search below answers it
}

bool frmPickigGoods::GoodsScan::chooseSerialLine()
{
    const RecordList lines = GetGoodsLineSet();
    const QString item = QString::number(m_itemId);
    // The server finds serials without regard to case; the serial as stored
    // is the one the line keeps, so a rescan in other case is still a repeat.
    QString serial = text(m_found, RecordKeys::FSerialNum);
    if (serial.isEmpty())
        serial = m_gs1.serial.value_or(m_code);
    for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i) {
        GoodsRecord line = lines.Item(i);
        if (text(line, RecordKeys::GoodsID) != item || !hasOpenQuantity(line))
            continue;
        if (SerialListContains(text(line, RecordKeys::FSeriNum), serial)) {
            f.PlayVoice(kVoiceRepeatScan);
            f.SetMessage(QStringLiteral("该商品的序列号重复扫描"));
            return false;
        }
        if (text(m_found, RecordKeys::FStockID) == text(line, RecordKeys::FStockID)
            && text(m_found, RecordKeys::FBatchNo) == text(line, RecordKeys::FBatchNo)
            && text(m_found, QStringLiteral("FStockPlace")) == text(line, RecordKeys::FSPID)) {
            m_found.SetValue(RecordKeys::FEntryID, line.GetValue(RecordKeys::FEntryID));
            addToPickCnt(line, 1);
            m_line = line;
            m_found.SetValue(RecordKeys::FSerialNum, serial);
            return true;
        }
        // A serial may fit a later line of the same goods, so an earlier line
        // that does not fit is passed over in silence; only when the last line
        // of the order does not fit either is the worker told.
        if (i == lines.UpperBound()) {
            f.PlayVoice(kVoiceFindGoods);
            f.SetMessage(QStringLiteral("该商品的批次、仓库、仓位信息与订单分录上的不一致"));
            return false;
        }
    }
    return true;
}

bool frmPickigGoods::GoodsScan::shelfLifeFits(GoodsRecord& line)
{
    const QString period = text(m_found, RecordKeys::FKFPeriod);
    const QString date = text(m_found, RecordKeys::FKFDate);
    const QString linePeriods = text(line, RecordKeys::FKFPeriod);
    const QString lineDates = text(line, RecordKeys::FKFDate);
    if ((!linePeriods.isEmpty() && ListDiffersFrom(linePeriods, period))
        || (!lineDates.isEmpty() && ListDiffersFrom(lineDates, date))) {
        f.PlayVoice(kVoiceDifKFPeriod);
        f.SetMessage(QStringLiteral("同一分录不允许扫描不同保质期的商品"));
        addToPickCnt(line, -1);
        return false;
    }
    appendToList(line, RecordKeys::FSeriNum, text(m_found, RecordKeys::FSerialNum));
    appendToList(line, RecordKeys::FSerialID, text(m_found, RecordKeys::FSerialID));
    appendToList(line, RecordKeys::FKFPeriod, period);
    appendToList(line, RecordKeys::FKFDate, date);
    return true;
}

void frmPickigGoods::TxtItemID_Enter()
{
    scanGoodsCode();
}

bool frmPickigGoods::scanGoodsCode()
{
    const JournalCommit commit{*this};
    bool quantityRefused = false;
    ReportingErrors(this, [&] {
        GoodsScan scan(*this);
        scan.run();
        quantityRefused = scan.quantityRefused();
    });
    // Every path, errors included, leaves the station ready for the next scan.
    ui->TxtNum->setText(QStringLiteral("1"));
    FocusAndSelect(ui->TxtItemID);
    return quantityRefused;
}
