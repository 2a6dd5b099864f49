// The built-in employee picker the station opens with F7: the search behind
// it and the dialog as a worker uses it.
#include "middletier/employee_list.h"
#include "station/station_fixture.h"
#include <QDialog>
#include <QTableWidget>
#include <QTimer>

namespace {

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

TEST_F(StationFormTest, TheEmployeePickerFiltersAndReturnsTheChosenEmployee)
{
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

    // Opened by F7 with the field's text: down twice from the first match, then
    // Enter, takes the third employee.
    frmPickigGoods* form = openStation();
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
    QTest::keyClick(controls(form).TxtEmployee, Qt::Key_F7);
    EXPECT_EQ(seen, QStringLiteral("选择职员|张伟|4"));
    EXPECT_EQ(controls(form).TxtEmployee->text(), QStringLiteral("王芳"));
    EXPECT_EQ(controls(form).TxtEmployee->property("Tag").toInt(), 203);

    // Cancelled: nothing chosen.
    whenModalShows([](QWidget* modal) { static_cast<QDialog*>(modal)->reject(); });
    const EmployeePickResult result = CreateServerObjectAs<IEmployeePicker>(ProgIds::EmployeePicker)->Pick(nullptr, props, QString());
    EXPECT_FALSE(result.ReturnOK || result.ReturnObject.Detail);
}
