#pragma once
// The picking station: one modal window on which the worker scans an order,
// then its goods, and sees at once whether the picked goods match the order.
// The controls come from frm_pickig_goods.ui, each named as the station names
// it; the handlers live in files by concern: form_lifecycle.cpp,
// order_scan.cpp, goods_scan.cpp, quantity_entry.cpp, completion.cpp,
// re_pick.cpp. What the station knows of the order is a PickingState.
#include "host/goods_record.h"
#include "host/record_list.h"
#include "station/picking_state.h"
#include <QDialog>
#include <QString>
#include <QVariant>
#include <memory>
#include <optional>

class QLineEdit;
class QTimer;
class ActiveView;
class ISessionJournal;
struct JournalState;
namespace Ui { class frmPickigGoods; }

class frmPickigGoods : public QDialog {
    Q_OBJECT

public:
    explicit frmPickigGoods(QWidget* parent = nullptr);
    ~frmPickigGoods() override;

    // --- Public form methods ---
    // The order's total goods quantity under the current options.
    void GetGoodsNum(const QString& code, qint32& total);
    int ShowMessageBox(const QString& prompt, int buttons, const QString& title);
    void ResetPickState();

    // --- What the station shows, for the launcher, the replay and the tests ---
    const PickingState& pickingState() const { return m_state; }
    // The grid is the active view (chkShowText checked), else the tiles.
    bool IsGridView() const;
    // The two company settings read at open.
    bool deliverOnPick() const { return m_DeliverOnPick; }
    bool createStockBill() const { return m_CreateStockBill; }
    // Closes without the question (replay end); the options are still saved.
    void closeWithoutAsking();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void reject() override;

private:
    class GoodsScan;

    // --- Look and wiring ---
    void applyLook();
    void connectHandlers();
    void placeGridView();
    void setProgressWidth();
    ActiveView activeView() const;

    // --- Helpers every handler file shares ---
    void PlayVoice(const QString& fileName);          // "\\voice\\Error.wav", async
    void SetMessage(const QString& chineseText);      // lblMessage := LoadString(text); "" clears
    void WriteVerdict(int kind);                      // 0 excess, 1 missing, 2 wrong goods, 3 passed
    void UpdateProgress();                            // lblPickedNum picked "/" total, lblProgress width
    qint32 shownTotal() const;                        // the number in lblOrderNum
    void FocusAndSelect(QLineEdit* field);
    std::optional<GoodsRecord> OrderHeaderQuery(const QString& code);
    // False when the save failed; the worker has been told.
    bool SavePickingStatus(const QString& code, bool done);

    // --- Order scan ---
    void TxtID_Enter();
    void LoadOrder(const QString& code);
    // Loads an order and answers its total.
    qint32 loadOrderTotal(const QString& code);
    void showActiveViewGoods();
    // Puts an order checked earlier in this session back on the station.
    void RestoreOrder(const GoodsRecord& entry);
    // The refusal of a frozen, refunded or verified order.
    void RefuseOrder();
    // Logs the verdict of the order on the station before it is left; true
    // when that order has passed, or when no order is on the station.
    bool LogLeavingVerdict();
    // Writes a composed verdict into the order's entry and refills the log pane.
    void logVerdict(const QString& code, const VerdictText& verdict);
    void reloadLogPane();

    // --- Goods scan, quantity, completion and re-pick ---
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

    // --- Lifecycle and option handlers ---
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
    void unload();

    // --- The session's journal (session_recovery.cpp) ---
    // Opens it at start, offering first to take up a session that died.
    void openJournal();
    // Writes what changed; every handler ends with it (JournalCommit).
    void commitJournal();
    // A clean close: the journal goes.
    void closeJournal();
    JournalState journalState() const;
    bool worthRestoring(const JournalState& saved) const;
    void restoreFromJournal(const JournalState& saved);
    // Writes the journal when a handler ends, whichever way it ends.
    struct JournalCommit {
        frmPickigGoods& form;
        ~JournalCommit() { form.commitJournal(); }
    };

    std::unique_ptr<Ui::frmPickigGoods> ui;
    QTimer* Timer_AutoClear = nullptr;   // placed on the form, nothing attached
    PickingState m_state;
    bool m_DeliverOnPick = false, m_CreateStockBill = false;
    bool m_unloaded = false;
    bool m_skipCloseQuestion = false;
    bool m_shownOnce = false;
    GoodsRecord m_bigViewLine;   // the line the enlarged tile shows
    std::shared_ptr<ISessionJournal> m_journal;
    bool m_journalFailed = false;   // told once until a commit succeeds again
};
