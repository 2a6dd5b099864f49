// RnBaseList.EmployeePicker: the host's base-list picker for employees. A
// modal list of t_Emp (number, name) filtered by what the worker types; Enter
// or a double click takes the employee in the current row. The dialog's
// layout is employee_picker.ui.
#include "host/employee_picker.h"
#include "ui_employee_picker.h"
#include "host/object_factory.h"
#include "host/sql_engine.h"
#include <QDialog>
#include <QKeyEvent>
#include <memory>

namespace {

// LIKE pattern of a text, its own wildcards taken literally.
QString containsPattern(const QString& text)
{
    QString escaped;
    for (QChar c : text.trimmed()) {
        if (c == QLatin1Char('\\') || c == QLatin1Char('%') || c == QLatin1Char('_') || c == QLatin1Char('['))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    return QLatin1Char('%') + escaped + QLatin1Char('%');
}

} // namespace

QList<EmployeeRow> FindEmployees(const QString& props, const QString& text)
{
    const QString pattern = containsPattern(text);
    RecordsetPtr rs = SqlEngine::forProps(props)->executeBound(
        QStringLiteral("SELECT FItemID, FNumber, FName FROM t_Emp "
                       "WHERE FNumber LIKE ? ESCAPE '\\' OR FName LIKE ? ESCAPE '\\' ORDER BY FNumber"),
        {pattern, pattern});
    QList<EmployeeRow> rows;
    for (; !rs->isEOF(); rs->MoveNext())
        rows.append({rs->Fields(QStringLiteral("FItemID")), rs->Fields(QStringLiteral("FNumber")).toString(),
                     rs->Fields(QStringLiteral("FName")).toString()});
    return rows;
}

namespace {

class EmployeeDialog : public QDialog {
public:
    EmployeeDialog(QWidget* parent, QString props, const QString& text)
        : QDialog(parent), ui(std::make_unique<Ui::EmployeePicker>()), m_props(std::move(props))
    {
        ui->setupUi(this);
        ui->txtFilter->setText(text);
        connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
        connect(ui->grdEmployees, &QTableWidget::cellDoubleClicked, this, &QDialog::accept);
        connect(ui->txtFilter, &QLineEdit::textChanged, this, &EmployeeDialog::requery);
        ui->txtFilter->installEventFilter(this);
        requery();
    }

    bool hasChoice() const { return ui->grdEmployees->currentRow() >= 0; }
    QString chosenName() const { return ui->grdEmployees->item(ui->grdEmployees->currentRow(), 1)->text(); }
    QVariant chosenItemId() const { return ui->grdEmployees->item(ui->grdEmployees->currentRow(), 0)->data(Qt::UserRole); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Up and down in the filter move through the list, as in the host's pickers.
        if (watched == ui->txtFilter && event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            QTableWidget* table = ui->grdEmployees;
            if (key == Qt::Key_Down || key == Qt::Key_Up) {
                const int row = table->currentRow() + (key == Qt::Key_Down ? 1 : -1);
                if (row >= 0 && row < table->rowCount())
                    table->setCurrentCell(row, 0);
                return true;
            }
        }
        return QDialog::eventFilter(watched, event);
    }

private:
    void requery()
    {
        QTableWidget* table = ui->grdEmployees;
        table->setRowCount(0);
        try {
            for (const EmployeeRow& employee : FindEmployees(m_props, ui->txtFilter->text())) {
                const int row = table->rowCount();
                table->insertRow(row);
                auto* number = new QTableWidgetItem(employee.number);
                number->setData(Qt::UserRole, employee.itemId);
                table->setItem(row, 0, number);
                table->setItem(row, 1, new QTableWidgetItem(employee.name));
            }
            ui->lblStatus->setText(QString());
        } catch (const HostError& e) {
            ui->lblStatus->setText(MaskPasswords(e.description()));
        }
        if (table->rowCount() > 0)
            table->setCurrentCell(0, 0);
    }

    std::unique_ptr<Ui::EmployeePicker> ui;
    QString m_props;
};

class EmployeePicker : public IEmployeePicker {
public:
    EmployeePickResult Pick(QWidget* parent, const QString& props, const QString& text) override
    {
        EmployeeDialog dialog(parent, props, text);
        EmployeePickResult result;
        if (dialog.exec() != QDialog::Accepted || !dialog.hasChoice())
            return result;
        result.ReturnOK = true;
        result.ReturnObject.Detail = true;
        result.ReturnObject.Name = dialog.chosenName();
        result.ReturnObject.Itemid = dialog.chosenItemId();
        return result;
    }
};

const BuiltInServerObject registration(ProgIds::EmployeePicker, [] { return std::make_shared<EmployeePicker>(); });

} // namespace
