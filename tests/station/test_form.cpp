// The station form as a worker meets it: creation, options kept per user,
// the close question, the entry fields' focus rules and the picker.
#include "grid/goods_text_view.h"
#include "station/station_fixture.h"
#include "tiles/goods_list_view.h"
#include <QCheckBox>
#include <QLabel>
#include <QClipboard>
#include <QSignalSpy>

namespace {

class ScriptedPicker : public IEmployeePicker {
public:
    struct Calls {
        QStringList texts;
        QList<EmployeePickResult> results;
    };
    explicit ScriptedPicker(std::shared_ptr<Calls> calls) : m_calls(std::move(calls)) {}
    EmployeePickResult Pick(QWidget*, const QString&, const QString& text) override
    {
        m_calls->texts << text;
        return m_calls->results.isEmpty() ? EmployeePickResult() : m_calls->results.takeFirst();
    }

private:
    std::shared_ptr<Calls> m_calls;
};

EmployeePickResult picked(bool ok, bool detail, const QString& name, int itemId)
{
    EmployeePickResult r;
    r.ReturnOK = ok;
    r.ReturnObject.Detail = detail;
    r.ReturnObject.Name = name;
    r.ReturnObject.Itemid = itemId;
    return r;
}

class PrefixLoader : public IResLoader {
public:
    void setResDirectory(const QString&) override {}
    void setResFileBaseName(const QString&) override {}
    void setLanguageID(const QString&) override {}
    QString LoadString(const QString& key) override { return QStringLiteral("T:") + key; }
};

} // namespace

TEST_F(StationFormTest, CreationShowsThePickerAndAnEmptyStation)
{
    frmPickigGoods* form = openStation();
    for (const char* name : {"TxtEmployee", "LblEmployee", "TxtID", "LblID", "TxtItemID", "LblItemID", "TxtNum",
                             "lblNum", "txtWebshop", "chkBarCode", "chkHaveSerial", "chkShowText", "CmdBtnRePick",
                             "GoodsListView", "GoodsBigView", "GoodsTextView", "LogList1", "lblOrderNum",
                             "lblPickedNum", "lblProgress", "LblProgressbar", "lblPickInfo", "lblMessage", "ImgSuccess",
                             "ImgDefault", "Timer_AutoClear", "fraMain", "PicBack", "PiclistBack", "Label1"})
        EXPECT_NE(form->findChild<QObject*>(QLatin1String(name)), nullptr) << name;
    EXPECT_EQ(controls(form).TxtEmployee->text(), QStringLiteral("张伟"));
    EXPECT_EQ(controls(form).TxtEmployee->property("Tag").toInt(), 201);
    EXPECT_EQ(controls(form).lblPickedNum->text(), QStringLiteral("0/"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("0"));
    EXPECT_EQ(controls(form).TxtNum->text(), QStringLiteral("1"));
    EXPECT_EQ(controls(form).lblProgress->width(), 0);
    EXPECT_TRUE(controls(form).lblMessage->text().isEmpty());
    EXPECT_FALSE(controls(form).ImgSuccess->isVisible());
    EXPECT_TRUE(form->pickingState().CurrentOrderCode().isEmpty());
    EXPECT_TRUE(controls(form).TxtID->hasFocus());
    EXPECT_TRUE(form->deliverOnPick());
    EXPECT_TRUE(form->createStockBill());
    // TxtEmployee comes first when tabbing round the form, then the order.
    controls(form).TxtEmployee->setFocus(Qt::OtherFocusReason);
    QTest::keyClick(controls(form).TxtEmployee, Qt::Key_Tab);
    EXPECT_TRUE(controls(form).TxtID->hasFocus());
    QTest::keyClick(controls(form).TxtID, Qt::Key_Backtab);
    EXPECT_TRUE(controls(form).TxtEmployee->hasFocus());
    EXPECT_TRUE(closeStation());

    // A user without an employee, and a company that creates no stock bill.
    SetDemoSystemProfile(m_db, QStringLiteral("CreateStockBillType"), QStringLiteral("0"));
    SetDemoSystemProfile(m_db, QStringLiteral("DeliveryWhenWeightedOrPick"), QStringLiteral("2"));
    publishUser(4);
    form = openStation();
    EXPECT_TRUE(controls(form).TxtEmployee->text().isEmpty());
    EXPECT_EQ(controls(form).TxtEmployee->property("Tag").toString(), QString());
    EXPECT_FALSE(form->createStockBill());
    EXPECT_FALSE(form->deliverOnPick());
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();
}

TEST_F(StationFormTest, OptionsSurviveARestartPerUser)
{
    frmPickigGoods* form = openStation();
    EXPECT_TRUE(controls(form).chkBarCode->isChecked());
    EXPECT_FALSE(controls(form).chkHaveSerial->isChecked());
    EXPECT_FALSE(controls(form).chkShowText->isChecked());
    EXPECT_FALSE(controls(form).GoodsListView->isHidden());
    EXPECT_TRUE(controls(form).GoodsTextView->isHidden());

    controls(form).chkBarCode->setChecked(false);
    controls(form).chkHaveSerial->setChecked(true);
    QTest::mouseClick(controls(form).chkShowText, Qt::LeftButton, {}, QPoint(8, controls(form).chkShowText->height() / 2));
    EXPECT_TRUE(form->IsGridView());
    EXPECT_TRUE(controls(form).GoodsListView->isHidden());
    EXPECT_FALSE(controls(form).GoodsTextView->isHidden());
    ASSERT_TRUE(closeStation());
    EXPECT_TRUE(m_rec->boxes.isEmpty());
    EXPECT_EQ(dbValue(QStringLiteral("SELECT FValue FROM t_UserProfile WHERE FUserID = 1 AND FKey = 'PickGoods_chkBarCode' "
                                     "AND FName = 'chkBarCode'")).toString(),
              QStringLiteral("0"));
    EXPECT_EQ(dbValue(QStringLiteral("SELECT FValue FROM t_UserProfile WHERE FUserID = 1 AND FKey = 'PickGoods_chkShowText' "
                                     "AND FName = 'chkShowText'")).toString(),
              QStringLiteral("1"));

    form = openStation();
    EXPECT_FALSE(controls(form).chkBarCode->isChecked());
    EXPECT_TRUE(controls(form).chkHaveSerial->isChecked());
    EXPECT_TRUE(controls(form).chkShowText->isChecked());
    EXPECT_TRUE(controls(form).GoodsListView->isHidden());
    EXPECT_FALSE(controls(form).GoodsTextView->isHidden());
    ASSERT_TRUE(closeStation());

    // Another user has options of their own.
    publishUser(2);
    form = openStation();
    EXPECT_TRUE(controls(form).chkBarCode->isChecked());
    EXPECT_FALSE(controls(form).chkHaveSerial->isChecked());
    EXPECT_FALSE(controls(form).chkShowText->isChecked());
    ASSERT_TRUE(closeStation());

    // And back: the first user's options, changed again, come back changed.
    publishUser(1);
    form = openStation();
    controls(form).chkBarCode->setChecked(true);
    controls(form).chkHaveSerial->setChecked(false);
    QTest::mouseClick(controls(form).chkShowText, Qt::LeftButton, {}, QPoint(8, controls(form).chkShowText->height() / 2));
    ASSERT_TRUE(closeStation());
    form = openStation();
    EXPECT_TRUE(controls(form).chkBarCode->isChecked());
    EXPECT_FALSE(controls(form).chkHaveSerial->isChecked());
    EXPECT_FALSE(controls(form).chkShowText->isChecked());
    EXPECT_FALSE(controls(form).GoodsListView->isHidden());
}

TEST_F(StationFormTest, AStoredZeroUnchecksAnOptionAnythingElseChecksIt)
{
    struct Case {
        const char* stored;
        bool checked;               // chkBarCode and chkHaveSerial
        Qt::CheckState showText;    // chkShowText takes the stored number as its value
    };
    const Case cases[] = {
        {"0", false, Qt::Unchecked},     {"1", true, Qt::Checked},          {"1.0", true, Qt::Checked},
        {"yes", true, Qt::Unchecked},    {"2", true, Qt::PartiallyChecked}, {"-1", true, Qt::Unchecked},
        {" 0 ", false, Qt::Unchecked},   {"0.0", false, Qt::Unchecked},
    };
    for (const Case& c : cases) {
        const QString stored = QString::fromLatin1(c.stored);
        dbExec(QStringLiteral("DELETE FROM t_UserProfile WHERE FUserID = 1"));
        const QString insert = QStringLiteral("INSERT INTO t_UserProfile (FUserID, FCategory, FKey, FName, FValue) "
                                              "VALUES (1, 'EC', ?, ?, ?)");
        dbExec(insert, {QStringLiteral("PickGoods_chkBarCode"), QStringLiteral("chkBarCode"), stored});
        dbExec(insert, {QStringLiteral("PickGoods_chkShowText"), QStringLiteral("chkHaveSerial"), stored});
        dbExec(insert, {QStringLiteral("PickGoods_chkShowText"), QStringLiteral("chkShowText"), stored});
        frmPickigGoods* form = openStation();
        EXPECT_EQ(controls(form).chkBarCode->isChecked(), c.checked) << c.stored;
        EXPECT_EQ(controls(form).chkHaveSerial->isChecked(), c.checked) << c.stored;
        EXPECT_EQ(controls(form).chkShowText->checkState(), c.showText) << c.stored;
        EXPECT_TRUE(m_rec->boxes.isEmpty()) << c.stored << ": " << boxTexts().join('|').toStdString();
        ASSERT_TRUE(closeStation());
    }
}

TEST_F(StationFormTest, ClosingAnUnfinishedOrderAsksAndYesGoesOnChecking)
{
    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    ASSERT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("4"));
    scanGoods(form, 1001);
    ASSERT_EQ(form->pickingState().pickedNum(), 1);

    m_rec->answers.enqueue(MsgBox::Yes);
    EXPECT_FALSE(closeStation());
    ASSERT_EQ(m_rec->boxes.size(), 1);
    const ShownBox question = m_rec->boxes.first();
    EXPECT_EQ(question.text, LoadResKey(QStringLiteral("irAmUS")) + QStringLiteral("10001未通过，是否继续校验?"));
    EXPECT_EQ(question.flags, 36);
    EXPECT_EQ(question.title, QStringLiteral("Velto提示"));
    // Yes: the same order comes back from the session log, counts and all.
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(controls(form).TxtID->text(), QStringLiteral("10001"));
    EXPECT_TRUE(form->pickingState().restoredFromLog());
    EXPECT_EQ(form->pickingState().pickedNum(), 1);
    EXPECT_EQ(controls(form).lblPickedNum->text(), QStringLiteral("1/4"));
    EXPECT_EQ(form->pickingState().missingNum(), 3);

    // No: the station closes, and the order's verdict is in the session log.
    m_rec->answers.enqueue(MsgBox::No);
    EXPECT_TRUE(closeStation());
    EXPECT_EQ(m_rec->boxes.size(), 2);
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(form->pickingState().SessionOrderLog().isNone());
    EXPECT_TRUE(form->pickingState().argumentList().isNone());
}

TEST_F(StationFormTest, ClosingAsksNothingWithoutAnOrderOrAfterAPass)
{
    frmPickigGoods* form = openStation();
    EXPECT_TRUE(closeStation());

    // After a refusal the station holds "+", no order.
    form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10003"));
    ASSERT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("+"));
    EXPECT_TRUE(closeStation());

    // A code that is no order.
    form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("99999"));
    ASSERT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("99999"));
    EXPECT_TRUE(closeStation());

    // A passed order.
    form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10003"));
    scanInto(controls(form).TxtID, QStringLiteral("10019"));
    ASSERT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("2"));
    scanGoods(form, 1004);
    scanGoods(form, 1004);
    ASSERT_TRUE(controls(form).ImgSuccess->isVisible());
    EXPECT_TRUE(closeStation());
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();

    // The same order one short does ask (its pass above is taken back on the server).
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPIckingGoodsStatus = 0 WHERE FUniqueCode = '10019'"));
    form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10019"));
    scanGoods(form, 1004);
    ASSERT_EQ(form->pickingState().pickedNum(), 1);
    m_rec->answers.enqueue(MsgBox::No);
    EXPECT_TRUE(closeStation());
    EXPECT_EQ(m_rec->boxes.size(), 1);
}

TEST_F(StationFormTest, EntryFieldsSelectOnFocusEmptyOnClickAndTxtIdShowsTheOrder)
{
    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    ASSERT_TRUE(controls(form).TxtItemID->hasFocus());

    // Tabbing into a field selects all of it.
    controls(form).TxtNum->setText(QStringLiteral("12"));
    controls(form).TxtNum->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(controls(form).TxtNum->selectedText(), QStringLiteral("12"));
    controls(form).TxtID->setFocus(Qt::BacktabFocusReason);
    EXPECT_EQ(controls(form).TxtID->selectedText(), QStringLiteral("10001"));

    // A click into TxtID empties it; leaving it without a scan shows the order again.
    QTest::mouseClick(controls(form).TxtID, Qt::LeftButton);
    EXPECT_TRUE(controls(form).TxtID->text().isEmpty());
    QTest::keyClicks(controls(form).TxtID, QStringLiteral("777"));
    EXPECT_EQ(controls(form).TxtID->text(), QStringLiteral("777"));
    QTest::keyClick(controls(form).TxtID, Qt::Key_Tab);
    EXPECT_FALSE(controls(form).TxtID->hasFocus());
    EXPECT_EQ(controls(form).TxtID->text(), QStringLiteral("10001"));

    // The goods and quantity fields empty on a click too.
    controls(form).TxtItemID->setText(QStringLiteral("6931000010017"));
    QTest::mouseClick(controls(form).TxtItemID, Qt::LeftButton);
    EXPECT_TRUE(controls(form).TxtItemID->text().isEmpty());
    controls(form).TxtNum->setText(QStringLiteral("3"));
    QTest::mouseClick(controls(form).TxtNum, Qt::LeftButton);
    EXPECT_TRUE(controls(form).TxtNum->text().isEmpty());

    // A message box taking the window's focus is no leaving of the field.
    controls(form).TxtID->setFocus(Qt::OtherFocusReason);
    controls(form).TxtID->setText(QStringLiteral("typed"));
    QFocusEvent windowLeft(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(controls(form).TxtID, &windowLeft);
    EXPECT_EQ(controls(form).TxtID->text(), QStringLiteral("typed"));
}

TEST_F(StationFormTest, F7AndDoubleClickOpenTheSamePicker)
{
    auto calls = std::make_shared<ScriptedPicker::Calls>();
    RegisterServerObject(ProgIds::EmployeePicker, [calls] { return std::make_shared<ScriptedPicker>(calls); });
    frmPickigGoods* form = openStation();

    calls->results << picked(true, true, QStringLiteral("李娜"), 202);
    QTest::keyClick(controls(form).TxtEmployee, Qt::Key_F7);
    ASSERT_EQ(calls->texts, QStringList{QStringLiteral("张伟")});
    EXPECT_EQ(controls(form).TxtEmployee->text(), QStringLiteral("李娜"));
    EXPECT_EQ(controls(form).TxtEmployee->property("Tag").toInt(), 202);

    calls->results << picked(true, true, QStringLiteral("王芳"), 203);
    QTest::mouseDClick(controls(form).TxtEmployee, Qt::LeftButton);
    ASSERT_EQ(calls->texts.size(), 2);
    EXPECT_EQ(calls->texts.last(), QStringLiteral("李娜"));
    EXPECT_EQ(controls(form).TxtEmployee->text(), QStringLiteral("王芳"));
    EXPECT_EQ(controls(form).TxtEmployee->property("Tag").toInt(), 203);

    // A cancelled pick, or a pick of no single employee, changes nothing.
    calls->results << picked(false, true, QStringLiteral("刘洋"), 204) << picked(true, false, QStringLiteral("刘洋"), 204);
    QTest::keyClick(controls(form).TxtEmployee, Qt::Key_F7);
    QTest::mouseDClick(controls(form).TxtEmployee, Qt::LeftButton);
    EXPECT_EQ(calls->texts.size(), 4);
    EXPECT_EQ(controls(form).TxtEmployee->text(), QStringLiteral("王芳"));
    EXPECT_EQ(controls(form).TxtEmployee->property("Tag").toInt(), 203);

    // Other function keys, and F7 elsewhere, open nothing.
    QTest::keyClick(controls(form).TxtEmployee, Qt::Key_F8);
    QTest::keyClick(controls(form).TxtID, Qt::Key_F7);
    EXPECT_EQ(calls->texts.size(), 4);

    // The picker chosen is the one a passed order is saved with; a re-pick
    // takes both back on the server.
    scanInto(controls(form).TxtID, QStringLiteral("SF10001"));
    for (int item : {1001, 1008, 1014, 1014})
        scanGoods(form, item);
    ASSERT_TRUE(controls(form).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/203"));
    QTest::mouseClick(controls(form).CmdBtnRePick, Qt::LeftButton);
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("0/0"));
}

TEST_F(StationFormTest, MessageBoxesKeepTheirTitleInEveryLanguage)
{
    SetHostLanguageCode(QStringLiteral("en"));
    ResetLanguageCache();
    RegisterServerObject(ProgIds::ResLoader, [] { return std::make_shared<PrefixLoader>(); });
    frmPickigGoods* form = openStation();
    m_rec->boxes.clear();

    m_rec->answers.enqueue(MsgBox::No);
    EXPECT_EQ(form->ShowMessageBox(QStringLiteral("p"), 36, QStringLiteral("Velto提示")), MsgBox::No);
    EXPECT_EQ(form->ShowMessageBox(QStringLiteral("q"), 4, QStringLiteral("Other")), MsgBox::Yes);
    EXPECT_EQ(form->ShowMessageBox(QStringLiteral("r"), 64, QStringLiteral("Velto提示")), MsgBox::Ok);
    ASSERT_EQ(m_rec->boxes.size(), 3);
    EXPECT_EQ(m_rec->boxes[0].title, QStringLiteral("Velto提示"));
    EXPECT_EQ(m_rec->boxes[0].text, QStringLiteral("p"));
    EXPECT_EQ(m_rec->boxes[1].title, QStringLiteral("Other"));
    EXPECT_EQ(m_rec->boxes[2].flags, 64);

    // Messages to the worker do pass through the lookup.
    scanInto(controls(form).TxtID, QStringLiteral("10006"));
    EXPECT_EQ(controls(form).lblMessage->text(), QStringLiteral("T:此单已校验通过"));
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    EXPECT_TRUE(controls(form).lblMessage->text().isEmpty());
}

TEST(ScanLineEdit, ScanOfRefusedCharactersOnlyIsNoScan)
{
    ScanLineEdit field;
    QSignalSpy enter(&field, &ScanLineEdit::enterPressed);
    QSignalSpy refused(&field, &ScanLineEdit::refusedScanEntered);
    QTest::keyClicks(&field, QStringLiteral("6931000010147"));
    QTest::keyClick(&field, Qt::Key_Return);
    ASSERT_EQ(enter.count(), 1);
    field.selectAll();

    // Typed: every key refused, the last code still selected.
    QTest::keyClicks(&field, QStringLiteral("''"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(field.text(), QStringLiteral("6931000010147"));
    EXPECT_EQ(enter.count(), 1);
    EXPECT_EQ(refused.count(), 1);

    // Pasted at the end: nothing kept, nothing changed.
    field.end(false);
    QApplication::clipboard()->setText(QStringLiteral("\u2019\u2019"));
    field.paste();
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(enter.count(), 1);
    EXPECT_EQ(refused.count(), 2);

    // A plain Enter, and a scan with a character kept, are scans.
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClicks(&field, QStringLiteral("'7"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(enter.count(), 3);
    EXPECT_EQ(refused.count(), 2);
    EXPECT_EQ(field.text(), QStringLiteral("69310000101477"));

    // The same code once more, a refused character in it, typed or pasted: a scan.
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("69310000101477'"));
    QTest::keyClick(&field, Qt::Key_Return);
    field.selectAll();
    QApplication::clipboard()->setText(QStringLiteral("69310000101477\u2019"));
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(enter.count(), 5);
    EXPECT_EQ(refused.count(), 2);
}

TEST(ScanLineEdit, QuotesAndControlCharactersNeverReachTheField)
{
    ScanLineEdit field;
    QSignalSpy enter(&field, &ScanLineEdit::enterPressed);
    QSignalSpy changed(&field, &QLineEdit::textChanged);

    QTest::keyClicks(&field, QStringLiteral("ab'c"));
    EXPECT_EQ(field.text(), QStringLiteral("abc"));
    EXPECT_EQ(changed.count(), 3);   // the quote key is swallowed whole
    for (char16_t lookAlike : {u'\u2018', u'\u2019', u'\u201B', u'\u2032', u'\u02BC', u'\uFF07'}) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(QChar(lookAlike)));
        QApplication::sendEvent(&field, &key);
    }
    EXPECT_EQ(field.text(), QStringLiteral("abc"));

    // Paste, drop and program paths all go through the same filter.
    field.insert(QStringLiteral("x'y\u2019z"));
    EXPECT_EQ(field.text(), QStringLiteral("abcxyz"));
    field.setText(QStringLiteral("1\t2\r\n3\u00004'5\u200B6"));
    EXPECT_EQ(field.text(), QStringLiteral("123456"));
    field.setText(QStringLiteral("'''"));
    EXPECT_TRUE(field.text().isEmpty());
    // GS, between the fields of a GS1 code, stays as its visible sign, typed or set.
    field.setText(QStringLiteral("]C11012\u001D21A"));
    EXPECT_EQ(field.text(), QStringLiteral("]C11012\u241D21A"));
    field.clear();
    QKeyEvent gs(QEvent::KeyPress, Qt::Key_BracketRight, Qt::ControlModifier, QString(QChar(0x1D)));
    QApplication::sendEvent(&field, &gs);
    EXPECT_EQ(field.text(), QString(QChar(0x241D)));
    // Chinese and ordinary punctuation stay.
    field.setText(QStringLiteral("订单-01 \"A\""));
    EXPECT_EQ(field.text(), QStringLiteral("订单-01 \"A\""));

    // The cursor stays where the typing left it.
    field.setText(QStringLiteral("12"));
    field.setCursorPosition(1);
    field.insert(QStringLiteral("'x'"));
    EXPECT_EQ(field.text(), QStringLiteral("1x2"));
    EXPECT_EQ(field.cursorPosition(), 2);

    // Enter is a signal, not text; editing keys still edit.
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClick(&field, Qt::Key_Enter);
    EXPECT_EQ(enter.count(), 2);
    EXPECT_EQ(field.text(), QStringLiteral("1x2"));
    field.end(false);
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.text(), QStringLiteral("1x"));
}
