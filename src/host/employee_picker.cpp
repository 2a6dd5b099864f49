// The host's base-list picker for employees: a modal list (number, name)
// filtered by what the worker types; Enter or a double click takes the
// employee in the current row. The rows come from the lookup it is given.
#include "host/employee_picker.h"
#include "host/host_error.h"
#include "host/props_text.h"
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

class EmployeeDialog : public QDialog {
public:
    EmployeeDialog(QWidget* parent, QString props, const QString& text, EmployeeLookup lookup)
        : QDialog(parent), m_props(std::move(props)), m_lookup(std::move(lookup))
    {
        setObjectName(QStringLiteral("EmployeePicker"));
        setWindowTitle(QStringLiteral("选择职员"));
        resize(520, 420);
        auto* layout = new QVBoxLayout(this);
        m_filter = new QLineEdit(text, this);
        m_filter->setObjectName(QStringLiteral("txtFilter"));
        m_filter->setPlaceholderText(QStringLiteral("代码或名称"));
        m_table = new QTableWidget(0, 2, this);
        m_table->setObjectName(QStringLiteral("grdEmployees"));
        m_table->setHorizontalHeaderLabels({QStringLiteral("代码"), QStringLiteral("名称")});
        m_table->horizontalHeader()->setStretchLastSection(true);
        m_table->verticalHeader()->hide();
        m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
        m_table->setSelectionMode(QAbstractItemView::SingleSelection);
        m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        m_status = new QLabel(this);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        layout->addWidget(m_filter);
        layout->addWidget(m_table, 1);
        layout->addWidget(m_status);
        layout->addWidget(buttons);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        connect(m_table, &QTableWidget::cellDoubleClicked, this, &QDialog::accept);
        connect(m_filter, &QLineEdit::textChanged, this, &EmployeeDialog::requery);
        m_filter->installEventFilter(this);
        requery();
    }

    bool hasChoice() const { return m_table->currentRow() >= 0; }
    QString chosenName() const { return m_table->item(m_table->currentRow(), 1)->text(); }
    QVariant chosenItemId() const { return m_table->item(m_table->currentRow(), 0)->data(Qt::UserRole); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Up and down in the filter move through the list, as in the host's pickers.
        if (watched == m_filter && event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Down || key == Qt::Key_Up) {
                const int row = m_table->currentRow() + (key == Qt::Key_Down ? 1 : -1);
                if (row >= 0 && row < m_table->rowCount())
                    m_table->setCurrentCell(row, 0);
                return true;
            }
        }
        return QDialog::eventFilter(watched, event);
    }

private:
    void requery()
    {
        m_table->setRowCount(0);
        try {
            for (const EmployeeRow& employee : m_lookup(m_props, m_filter->text())) {
                const int row = m_table->rowCount();
                m_table->insertRow(row);
                auto* number = new QTableWidgetItem(employee.number);
                number->setData(Qt::UserRole, employee.itemId);
                m_table->setItem(row, 0, number);
                m_table->setItem(row, 1, new QTableWidgetItem(employee.name));
            }
            m_status->setText(QString());
        } catch (const HostError& e) {
            m_status->setText(MaskPasswords(e.description()));
        }
        if (m_table->rowCount() > 0)
            m_table->setCurrentCell(0, 0);
    }

    QString m_props;
    EmployeeLookup m_lookup;
    QLineEdit* m_filter = nullptr;
    QTableWidget* m_table = nullptr;
    QLabel* m_status = nullptr;
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
