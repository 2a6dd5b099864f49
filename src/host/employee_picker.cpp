// The host's base-list picker for employees: a modal list (number, name)
// filtered by what the worker types; Enter or a double click takes the
// employee in the current row. The rows come from the lookup it is given; the
// dialog's layout is employee_picker.ui.
#include "host/employee_picker.h"
#include "ui_employee_picker.h"
#include "host/host_error.h"
#include "host/props_text.h"
#include <QDialog>
#include <QKeyEvent>
#include <memory>

namespace {

class EmployeeDialog : public QDialog {
public:
    EmployeeDialog(QWidget* parent, QString props, const QString& text, EmployeeLookup lookup)
        : QDialog(parent), ui(std::make_unique<Ui::EmployeePicker>()), m_props(std::move(props)), m_lookup(std::move(lookup))
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
            for (const EmployeeRow& employee : m_lookup(m_props, ui->txtFilter->text())) {
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
    EmployeeLookup m_lookup;
};

class EmployeePicker : public IEmployeePicker {
public:
    explicit EmployeePicker(EmployeeLookup lookup) : m_lookup(std::move(lookup)) {}

    EmployeePickResult Pick(QWidget* parent, const QString& props, const QString& text) override
    {
        EmployeeDialog dialog(parent, props, text, m_lookup);
        EmployeePickResult result;
        if (dialog.exec() != QDialog::Accepted || !dialog.hasChoice())
            return result;
        result.ReturnOK = true;
        result.ReturnObject.Detail = true;
        result.ReturnObject.Name = dialog.chosenName();
        result.ReturnObject.Itemid = dialog.chosenItemId();
        return result;
    }

private:
    EmployeeLookup m_lookup;
};

} // namespace

std::shared_ptr<IEmployeePicker> MakeEmployeePicker(EmployeeLookup lookup)
{
    return std::make_shared<EmployeePicker>(std::move(lookup));
}
