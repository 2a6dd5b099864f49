// The station form as a worker meets it: creation and the entry fields, options
// kept per user, the close question, and the employee picker F7 opens.
#include "middletier/employee_list.h"
#include "station/station_fixture.h"
#include <QDialog>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTimer>

namespace {

// Answers each pick with the next scripted result, and keeps the texts it was opened with.
class ScriptedPicker : public IEmployeePicker {
public:
    QStringList texts;
    QList<EmployeePickResult> results;
    EmployeePickResult Pick(QWidget*, const QString&, const QString& text) override
    {
        texts << text;
        return results.isEmpty() ? EmployeePickResult() : results.takeFirst();
    }
};

// Hands the next modal window to `act` once it shows (polled for five seconds at most).
void whenModalShows(std::function<void(QWidget*)> act)
{
    auto* timer = new QTimer(qApp);
    auto tries = std::make_shared<int>(0);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act, tries] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal || ++*tries > 500) {
            timer->stop();
            timer->deleteLater();
        }
        if (modal)
            act(modal);
    });
    timer->start(10);
}

} // namespace

TEST_F(StationFormTest, TheStationOpensEmptyWithThePickerAndItsFieldsFollowTheWorker)
{
    frmPickigGoods* form = openStation();
    StationControls c = controls(form);
    EXPECT_EQ(c.TxtEmployee->text(), QStringLiteral("张伟"));
    EXPECT_EQ(c.TxtEmployee->property("Tag").toInt(), 201);
    EXPECT_EQ(c.lblPickedNum->text(), QStringLiteral("0/"));
    EXPECT_EQ(c.lblOrderNum->text(), QStringLiteral("0"));
    EXPECT_EQ(c.TxtNum->text(), QStringLiteral("1"));
    EXPECT_FALSE(c.ImgSuccess->isVisible());
    EXPECT_TRUE(c.TxtID->hasFocus());
    // TxtEmployee comes first when tabbing round the form, then the order.
    QTest::keyClick(c.TxtID, Qt::Key_Backtab);
    EXPECT_TRUE(c.TxtEmployee->hasFocus());
    QTest::keyClick(c.TxtEmployee, Qt::Key_Tab);
    EXPECT_TRUE(c.TxtID->hasFocus());
    EXPECT_TRUE(closeStation());

    // A user without an employee.
    publishUser(4);
    c = controls(openStation());
    EXPECT_TRUE(c.TxtEmployee->text().isEmpty());
    EXPECT_EQ(c.TxtEmployee->property("Tag").toString(), QString());
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();

    scanInto(c.TxtID, QStringLiteral("10001"));
    ASSERT_TRUE(c.TxtItemID->hasFocus());

    // Tabbing into a field selects all of it.
    c.TxtNum->setText(QStringLiteral("12"));
    c.TxtNum->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(c.TxtNum->selectedText(), QStringLiteral("12"));

    // A click into TxtID empties it; leaving it without a scan shows the order again.
    QTest::mouseClick(c.TxtID, Qt::LeftButton);
    EXPECT_TRUE(c.TxtID->text().isEmpty());
    QTest::keyClicks(c.TxtID, QStringLiteral("777"));
    QTest::keyClick(c.TxtID, Qt::Key_Tab);
    EXPECT_FALSE(c.TxtID->hasFocus());
    EXPECT_EQ(c.TxtID->text(), QStringLiteral("10001"));

    // The goods and quantity fields empty on a click too.
    c.TxtItemID->setText(QStringLiteral("6931000010017"));
    QTest::mouseClick(c.TxtItemID, Qt::LeftButton);
    EXPECT_TRUE(c.TxtItemID->text().isEmpty());
    c.TxtNum->setText(QStringLiteral("3"));
    QTest::mouseClick(c.TxtNum, Qt::LeftButton);
    EXPECT_TRUE(c.TxtNum->text().isEmpty());

    // A message box taking the window's focus is no leaving of the field.
    c.TxtID->setFocus(Qt::OtherFocusReason);
    c.TxtID->setText(QStringLiteral("typed"));
    QFocusEvent windowLeft(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(c.TxtID, &windowLeft);
    EXPECT_EQ(c.TxtID->text(), QStringLiteral("typed"));
}

TEST_F(StationFormTest, OptionsAreKeptPerUserAndReadAsTheyWereStored)
{
    const auto options = [this] {
        const StationControls c = controls(m_form);
        return QString::number(c.chkBarCode->isChecked()) + QString::number(c.chkHaveSerial->isChecked())
            + QString::number(c.chkShowText->isChecked()) + (c.GoodsListView->isHidden() ? "grid" : "tiles");
    };
    frmPickigGoods* form = openStation();
    EXPECT_EQ(options(), QStringLiteral("100tiles"));
    controls(form).chkBarCode->setChecked(false);
    controls(form).chkHaveSerial->setChecked(true);
    QTest::mouseClick(controls(form).chkShowText, Qt::LeftButton, {}, QPoint(8, controls(form).chkShowText->height() / 2));
    ASSERT_TRUE(closeStation());
    EXPECT_EQ(dbValue(QStringLiteral("SELECT group_concat(FName || '=' || FValue) FROM (SELECT * FROM t_UserProfile "
                                     "WHERE FUserID = 1 AND FKey LIKE 'PickGoods_%' ORDER BY FName)")).toString(),
              QStringLiteral("chkBarCode=0,chkHaveSerial=1,chkShowText=1"));
    openStation();
    EXPECT_EQ(options(), QStringLiteral("011grid"));
    ASSERT_TRUE(closeStation());

    // Another user has options of their own.
    publishUser(2);
    openStation();
    EXPECT_EQ(options(), QStringLiteral("100tiles"));
    ASSERT_TRUE(closeStation());

    // A stored zero unchecks chkBarCode and chkHaveSerial, anything else checks them;
    // chkShowText takes the stored number as its value.
    const struct {
        const char* stored;
        bool checked;
        Qt::CheckState showText;
    } cases[] = {
        {"0", false, Qt::Unchecked},     {"1", true, Qt::Checked},          {"1.0", true, Qt::Checked},
        {"yes", true, Qt::Unchecked},    {"2", true, Qt::PartiallyChecked}, {"-1", true, Qt::Unchecked},
        {" 0 ", false, Qt::Unchecked},   {"0.0", false, Qt::Unchecked},
    };
    const QString insert = QStringLiteral("INSERT INTO t_UserProfile (FUserID, FCategory, FKey, FName, FValue) "
                                          "VALUES (2, 'EC', ?, ?, ?)");
    for (const auto& c : cases) {
        const QString stored = QString::fromLatin1(c.stored);
        dbExec(QStringLiteral("DELETE FROM t_UserProfile WHERE FUserID = 2"));
        dbExec(insert, {QStringLiteral("PickGoods_chkBarCode"), QStringLiteral("chkBarCode"), stored});
        dbExec(insert, {QStringLiteral("PickGoods_chkShowText"), QStringLiteral("chkHaveSerial"), stored});
        dbExec(insert, {QStringLiteral("PickGoods_chkShowText"), QStringLiteral("chkShowText"), stored});
        frmPickigGoods* form = openStation();
        EXPECT_EQ(controls(form).chkBarCode->isChecked(), c.checked) << c.stored;
        EXPECT_EQ(controls(form).chkHaveSerial->isChecked(), c.checked) << c.stored;
        EXPECT_EQ(controls(form).chkShowText->checkState(), c.showText) << c.stored;
        ASSERT_TRUE(closeStation());
    }
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();
}

TEST_F(StationFormTest, ClosingAsksOnlyWhileAnOrderIsUnfinishedAndYesGoesOnChecking)
{
    // Nothing scanned, a refusal ("+"), a code that is no order, a passed order: no question.
    for (const QStringList& codes : {QStringList{}, QStringList{"10003"}, QStringList{"99999"}, QStringList{"10019"}}) {
        frmPickigGoods* form = openStation();
        for (const QString& code : codes)
            scanInto(controls(form).TxtID, code);
        if (codes == QStringList{"10019"}) {
            scanGoods(form, 1004);
            scanGoods(form, 1004);
            ASSERT_TRUE(controls(form).ImgSuccess->isVisible());
        }
        EXPECT_TRUE(closeStation()) << codes.join(' ').toStdString();
    }
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();

    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    scanGoods(form, 1001);
    m_rec->answers.enqueue(MsgBox::Yes);
    EXPECT_FALSE(closeStation());
    EXPECT_EQ(boxTexts(), QStringList{LoadResKey(QStringLiteral("irAmUS")) + QStringLiteral("10001未通过，是否继续校验?")});
    EXPECT_EQ(m_rec->boxes.value(0).flags, 36);   // Yes and No, a question
    // Yes: the same order comes back from the session log, counts and all.
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(controls(form).TxtID->text(), QStringLiteral("10001"));
    EXPECT_TRUE(form->pickingState().restoredFromLog());
    EXPECT_EQ(controls(form).lblPickedNum->text(), QStringLiteral("1/4"));
    EXPECT_EQ(form->pickingState().missingNum(), 3);

    // No: the station closes and lets go of its session log.
    m_rec->answers.enqueue(MsgBox::No);
    EXPECT_TRUE(closeStation());
    EXPECT_EQ(m_rec->boxes.size(), 2);
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(form->pickingState().SessionOrderLog().isNone());
}

TEST_F(StationFormTest, F7OrADoubleClickPicksTheEmployeeAPassIsSavedWith)
{
    // The search behind the built-in picker.
    const QString props = DemoPropsString(m_db, 1);
    auto names = [&](const QString& text) {
        QStringList found;
        for (const EmployeeRow& row : FindEmployees(props, text))
            found << row.number + QLatin1Char(':') + row.name;
        return found;
    };
    EXPECT_EQ(names(QString()).size(), 4);
    EXPECT_EQ(names(QStringLiteral("李")), QStringList{QStringLiteral("E002:李娜")});
    EXPECT_EQ(names(QStringLiteral(" e003 ")), QStringList{QStringLiteral("E003:王芳")});
    // Wildcards and quotes are text to look for, never SQL.
    for (const QString& text : {QStringLiteral("%"), QStringLiteral("E00_"), QStringLiteral("' OR 1=1 --")})
        EXPECT_TRUE(names(text).isEmpty()) << text.toStdString();

    // The built-in dialog, opened by F7 with the field's text: down twice from the
    // first match, then Enter, takes the third employee.
    frmPickigGoods* form = openStation();
    const StationControls c = controls(form);
    RestoreBuiltInServerObjects(ProgIds::EmployeePicker);
    QString seen;
    whenModalShows([&](QWidget* modal) {
        auto* filter = modal->findChild<QLineEdit*>(QStringLiteral("txtFilter"));
        auto* table = modal->findChild<QTableWidget*>(QStringLiteral("grdEmployees"));
        if (!filter || !table) {
            modal->close();
            return;
        }
        seen = modal->windowTitle() + QLatin1Char('|') + filter->text();
        filter->setText(QStringLiteral("E00"));
        seen += QLatin1Char('|') + QString::number(table->rowCount());
        QTest::keyClick(filter, Qt::Key_Down);
        QTest::keyClick(filter, Qt::Key_Down);
        QTest::keyClick(filter, Qt::Key_Return);
    });
    QTest::keyClick(c.TxtEmployee, Qt::Key_F7);
    EXPECT_EQ(seen, QStringLiteral("选择职员|张伟|4"));
    EXPECT_EQ(c.TxtEmployee->text(), QStringLiteral("王芳"));
    EXPECT_EQ(c.TxtEmployee->property("Tag").toInt(), 203);
    // Cancelled: nothing chosen.
    whenModalShows([](QWidget* modal) { static_cast<QDialog*>(modal)->reject(); });
    const EmployeePickResult result = CreateServerObjectAs<IEmployeePicker>(ProgIds::EmployeePicker)->Pick(nullptr, props, QString());
    EXPECT_FALSE(result.ReturnOK || result.ReturnObject.Detail);

    // A double click opens the same picker; a cancelled pick, or a pick of no
    // single employee, changes nothing.
    auto calls = std::make_shared<ScriptedPicker>();
    RegisterServerObject(ProgIds::EmployeePicker, [calls] { return calls; });
    calls->results << EmployeePickResult{true, {true, QStringLiteral("李娜"), 202}}
                   << EmployeePickResult{false, {true, QStringLiteral("刘洋"), 204}}
                   << EmployeePickResult{true, {false, QStringLiteral("刘洋"), 204}};
    QTest::mouseDClick(c.TxtEmployee, Qt::LeftButton);
    EXPECT_EQ(c.TxtEmployee->text(), QStringLiteral("李娜"));
    QTest::keyClick(c.TxtEmployee, Qt::Key_F7);
    QTest::mouseDClick(c.TxtEmployee, Qt::LeftButton);
    EXPECT_EQ(calls->texts, (QStringList{QStringLiteral("王芳"), QStringLiteral("李娜"), QStringLiteral("李娜")}));
    EXPECT_EQ(c.TxtEmployee->text(), QStringLiteral("李娜"));
    EXPECT_EQ(c.TxtEmployee->property("Tag").toInt(), 202);
    // Other function keys, and F7 elsewhere, open nothing.
    QTest::keyClick(c.TxtEmployee, Qt::Key_F8);
    QTest::keyClick(c.TxtID, Qt::Key_F7);
    EXPECT_EQ(calls->texts.size(), 3);

    // The picker chosen is the one a passed order is saved with; a re-pick takes both back.
    scanInto(c.TxtID, QStringLiteral("SF10001"));
    for (int item : {1001, 1008, 1014, 1014})
        scanGoods(form, item);
    ASSERT_TRUE(c.ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/202"));
    QTest::mouseClick(c.CmdBtnRePick, Qt::LeftButton);
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("0/0"));
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

    // A plain Enter, and a scan with a character kept, are scans.
    field.end(false);
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClicks(&field, QStringLiteral("'7"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(enter.count(), 3);
    EXPECT_EQ(refused.count(), 1);
    EXPECT_EQ(field.text(), QStringLiteral("69310000101477"));
}
