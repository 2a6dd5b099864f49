#pragma once
// The picking station: one modal window on which the worker scans an order,
// then its goods, and sees at once whether the picked goods match the order.
// The handlers live in files by concern: form_lifecycle.cpp, order_scan.cpp,
// goods_scan.cpp, quantity_entry.cpp, completion.cpp, re_pick.cpp.
#include "host/goods_record.h"
#include "host/record_list.h"
#include <QDialog>
#include <QString>
#include <QVariant>
#include <optional>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class ScanLineEdit;
class GoodsListView;
class GoodsBigView;
class GoodsTextView;
class LogList;

class frmPickigGoods : public QDialog {
    Q_OBJECT
    friend class ReplayDriver;

public:
    explicit frmPickigGoods(QWidget* parent = nullptr);
    ~frmPickigGoods() override;

    // --- controls, named as the station names them ---
    ScanLineEdit* TxtEmployee = nullptr;
    QLabel* LblEmployee = nullptr;
    ScanLineEdit* TxtID = nullptr;
    QLabel* LblID = nullptr;
    ScanLineEdit* TxtItemID = nullptr;
    QLabel* LblItemID = nullptr;
    ScanLineEdit* TxtNum = nullptr;
    QLabel* lblNum = nullptr;
    QLineEdit* txtWebshop = nullptr;
    QCheckBox* chkBarCode = nullptr;
    QCheckBox* chkHaveSerial = nullptr;
    QCheckBox* chkShowText = nullptr;
    QPushButton* CmdBtnRePick = nullptr;
    // The member names hide the class names inside the form: qualify the types.
    ::GoodsListView* GoodsListView = nullptr;
    ::GoodsBigView* GoodsBigView = nullptr;
    ::GoodsTextView* GoodsTextView = nullptr;
    ::LogList* LogList1 = nullptr;
    QLabel* lblOrderNum = nullptr;
    QLabel* lblPickedNum = nullptr;
    QLabel* lblProgress = nullptr;       // the bar itself, a child of LblProgressbar
    QLabel* LblProgressbar = nullptr;    // the frame: full width
    QLabel* lblPickInfo = nullptr;
    QLabel* lblMessage = nullptr;
    QLabel* ImgSuccess = nullptr;
    QLabel* ImgDefault = nullptr;
    QTimer* Timer_AutoClear = nullptr;   // placed on the form, nothing attached
    QFrame* fraMain = nullptr;
    QFrame* PicBack = nullptr;
    QFrame* PiclistBack = nullptr;       // holds the tile or the grid view
    QLabel* Label1 = nullptr;

    // --- public form methods ---
    void GetGoodsNum(const QString& code, qint32& total);
    int ShowMessageBox(const QString& prompt, int buttons, const QString& title);
    void ResetPickState();

    // --- form state, shared by the form's handler files ---
    QString CurrentOrderCode;
    qint32 m_PickedNum = 0, m_MissingNum = 0, m_ExcessNum = 0, m_ErrorNum = 0;
    bool m_RestoredFromLog = false;
    // On for an order restored from the session log: its missing count then
    // follows every counted unit, as its log line is already there.
    bool m_RecomputeMissing = false;
    bool m_DeliverOnPick = false, m_CreateStockBill = false;
    RecordList SessionOrderLog;          // LogEntry records
    GoodsRecord SessionOrderKeys;        // codes checked since the station opened
    RecordList m_ArgList;
    GoodsRecord m_ArgRecord;
    // The last order code the order scan took (re-pick falls back to it after "+").
    QString m_LastOrderCode;
    // The picker's employee item id (the Tag of TxtEmployee).
    QVariant m_EmployeeTag;

    // --- helpers of the form ---
    void PlayVoice(const QString& fileName);          // "\\voice\\Error.wav", async
    void SetMessage(const QString& chineseText);      // lblMessage := LoadString(text); "" clears
    void WriteVerdict(int kind);                      // 0 excess, 1 missing, 2 wrong goods, 3 passed
    void UpdateProgress();                            // lblPickedNum picked "/" total, lblProgress width
    std::optional<GoodsRecord> OrderHeaderQuery(const QString& code);
    // False when the save failed; the worker has been told.
    bool SavePickingStatus(const QString& code, bool done);
    void LoadOrder(const QString& code);
    void TxtID_Enter();
    bool IsGridView() const;
    void FocusAndSelect(QLineEdit* field);

    // --- goods scan, quantity, completion and re-pick ---
    void TxtItemID_Enter();
    // The goods scan with its end-of-scan reset; true when the quantity in
    // TxtNum was refused and nothing was counted.
    bool scanGoodsCode();
    void TxtNum_Change();
    void TxtNum_Enter();
    void OrderPassed(bool playSuccessPrompt = true);   // the goods scan plays the prompt only for the last unit
    void StoreSerialRows();
    void UpdateDelivery(const QString& code);
    void CmdBtnRePick_Click();

    // --- lifecycle and option handlers ---
    // The picker of the session user from t_User/t_Emp.
    void LoadEmployee();
    // The user's three options and the two company settings.
    void LoadOptions();
    void SaveOptions();
    void chkHaveSerial_Click();
    void chkShowText_Click();
    void TxtEmployee_PickEmployee();                  // double click or F7
    void LogList1_FilterChanged();
    // The close question: true when the close may go ahead.
    bool QueryUnload();
    // Closes without the question (replay end); the options are still saved.
    void closeWithoutAsking();
    // The pass check of an order: picked reached the total shown.
    bool CurrentOrderPassed(qint32 total) const;
    // Logs the verdict of the order on the station before it is left; true
    // when that order has passed, or when no order is on the station.
    bool LogLeavingVerdict();
    // Puts an order checked earlier in this session back on the station.
    void RestoreOrder(const GoodsRecord& entry);
    // The refusal of a frozen, refunded or verified order.
    void RefuseOrder();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void reject() override;

private:
    void buildControls();
    void applyLook();
    void connectHandlers();
    void placeGridView();
    void unload();
    void setProgressWidth();
    // The verdict entry of an order in SessionOrderLog (made when missing).
    GoodsRecord sessionEntry(const QString& code);
    // Writes a composed verdict into the order's entry and refills the log pane.
    void logVerdict(const QString& code, const QString& text, bool success);
    // The active view's picked counts, keyed by line.
    GoodsRecord activeViewCounts() const;
    // Loads an order and answers its total.
    qint32 loadOrderTotal(const QString& code);
    void showActiveViewGoods();

    bool m_unloaded = false;
    bool m_skipCloseQuestion = false;
    bool m_shownOnce = false;
    GoodsRecord m_bigViewLine;   // the line the enlarged tile shows
};
