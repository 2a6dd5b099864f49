#include "log/log_list.h"
#include "ui_log_list.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "session/language.h"
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QResizeEvent>
#include <exception>

const QString LogList::SaveFilter = QStringLiteral("文本文件|*.txt|");

namespace {

constexpr int kRowPointSize = 12;
constexpr int kControlPointSize = 11;
constexpr int kMaxPool = 64;   // a very tall pane still gets no more labels than this

QString defaultSaveDialog(QWidget* parent, const QString& filter, const QString& proposed)
{
    return QFileDialog::getSaveFileName(parent, QString(), proposed, filter);
}

// "bsuccess" = False, read the way the runtime compares a value with False.
bool isFalse(const QVariant& value)
{
    if (!value.isValid() || value.isNull())
        return true;
    if (value.typeId() == QMetaType::Bool)
        return !value.toBool();
    bool ok = false;
    const double d = value.toDouble(&ok);
    if (ok)
        return d == 0;
    return value.toString().trimmed().compare(QLatin1String("False"), Qt::CaseInsensitive) == 0;
}

QString rowHtmlOf(const QString& text, int redPos)
{
    QString plain = text;
    plain.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    // Positions shift when CR LF folds to one break; find the mark again in the folded text.
    const QString mark = QStringLiteral("异常");
    const int p = redPos < 0 ? -1 : plain.indexOf(mark);
    QString body;
    if (p < 0) {
        body = plain.toHtmlEscaped();
    } else {
        body = plain.left(p).toHtmlEscaped() + QStringLiteral("<span style=\"color:#ff0000\">") + mark
            + QStringLiteral("</span>") + plain.mid(p + mark.size()).toHtmlEscaped();
    }
    return QStringLiteral("<div style=\"white-space:pre-wrap\">") + body + QStringLiteral("</div>");
}

} // namespace

QString LogList::qtFilter(const QString& filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList pairs;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        if (!parts[i].isEmpty() || !parts[i + 1].isEmpty())
            pairs << parts[i] + QStringLiteral(" (") + parts[i + 1] + QLatin1Char(')');
    }
    return pairs.join(QStringLiteral(";;"));
}

LogList::LogList(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::LogList>()), m_saveDialog(defaultSaveDialog),
      m_clock([] { return QDateTime::currentDateTime(); })
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("LogList"));
    QFont controls = font();
    controls.setPointSize(kControlPointSize);
    for (QWidget* w : {static_cast<QWidget*>(ui->ChkOnlyError), static_cast<QWidget*>(ui->ImgSave)})
        w->setFont(controls);
    for (QToolButton* b : {ui->ImgUp, ui->ImgDown, ui->ImgSave})
        b->setMinimumSize(32, 28);
    ui->ChkOnlyError->setText(LoadString(QStringLiteral("只显示异常")));
    ui->ImgSave->setText(LoadString(QStringLiteral("另存为")));
    // A whole page of rows always fits: the last page keeps seven rows in view.
    ui->PicBack->setMinimumHeight(TwipsToPixels(LogListModel::PageRows * LogListModel::RowHeightTwips)
                                  + 2 * ui->PicBack->frameWidth());
    ui->PicBack->setAutoFillBackground(true);
    QPalette pal = ui->PicBack->palette();
    pal.setColor(QPalette::Window, QColor(0xFF, 0xFF, 0xFF));
    ui->PicBack->setPalette(pal);

    connect(ui->ChkOnlyError, &QCheckBox::clicked, this, [this] { emit FilterChanged(); });
    connect(ui->ImgUp, &QToolButton::clicked, this, [this] { ImgUpClick(); });
    connect(ui->ImgDown, &QToolButton::clicked, this, [this] { ImgDownClick(); });
    connect(ui->ImgSave, &QToolButton::clicked, this, [this] { ImgSaveClick(); });
    ensurePool();
    render();
}

LogList::~LogList() = default;

void LogList::setSaveFileDialog(SaveFileDialog dialog)
{
    m_saveDialog = dialog ? std::move(dialog) : SaveFileDialog(defaultSaveDialog);
}

void LogList::setClock(Clock clock)
{
    m_clock = clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTime(); });
}

bool LogList::onlyErrors() const { return ui->ChkOnlyError->isChecked(); }

// --- The pane's methods ----------------------------------------------------

void LogList::LoadLogList(const RecordList& entries)
{
    m_model.clear();
    if (entries.isNone() || entries.UpperBound() < 1) {
        render();
        return;
    }
    const bool errorsOnly = onlyErrors();
    bool pending = false;
    long number = 0;
    QString description;
    for (int i = entries.UpperBound(); i >= entries.LowerBound(); --i) {
        try {
            const GoodsRecord entry = entries.Item(i);
            if (!errorsOnly || isFalse(entry.Item(QStringLiteral("bsuccess"))))
                m_model.addLog(entry);
        } catch (const HostError& e) {
            pending = true;
            number = e.number();
            description = e.description();
        } catch (const std::exception& e) {
            pending = true;
            number = 0;
            description = QString::fromLocal8Bit(e.what());
        }
    }
    // One redraw for the whole list: a long shift holds thousands of entries.
    render();
    if (pending)
        ReportError(number, description, this);
}

void LogList::ClearLogList()
{
    m_model.clear();
    render();
}

void LogList::AddLog(const GoodsRecord& entry)
{
    m_model.addLog(entry);
    render();
}

void LogList::SelectedLogByIndex(qint16 index)
{
    if (index >= 0)
        render();
}

void LogList::ImgUpClick()
{
    if (m_model.scrollUp())
        render();
}

void LogList::ImgDownClick()
{
    if (m_model.scrollDown())
        render();
}

void LogList::ImgSaveClick()
{
    // The pane itself never trapped file errors; here they end in the error
    // box instead of taking the station down.
    ReportingErrors(this, [&] {
        if (m_model.upperBound() < 0)
            return;
        const QDateTime now = m_clock();
        const QString text = m_model.saveText(now);
        const QString name = m_saveDialog(this, qtFilter(SaveFilter), LogListModel::proposedFileName(now));
        if (name.isEmpty())
            return;
        QFile file(name);
        const QByteArray bytes = text.toUtf8();
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
            throw HostError(HostErrors::FileError, QStringLiteral("Path/File access error: %1").arg(file.errorString()));
    });
}

// --- Drawing ---------------------------------------------------------------

int LogList::rowAreaTwips() const
{
    return PixelsToTwips(ui->PicBack->contentsRect().height());
}

QStringList LogList::visibleRowTexts() const
{
    return m_model.rowTextsInView(rowAreaTwips());
}

QString LogList::rowHtml(int i) const
{
    return rowHtmlOf(m_model.rowText(i), m_model.rowRedPos(i));
}

void LogList::ensurePool()
{
    const int rowPx = qMax(1, TwipsToPixels(LogListModel::RowHeightTwips));
    const int areaPx = ui->PicBack->contentsRect().height();
    const int wanted = qBound(LogListModel::PageRows, areaPx / rowPx + 1, kMaxPool);
    QFont rowFont = font();
    rowFont.setPointSize(kRowPointSize);
    while (int(m_pool.size()) < wanted) {
        auto* label = new QLabel(ui->PicBack);
        label->setObjectName(QStringLiteral("rtfLog%1").arg(m_pool.size()));
        label->setTextFormat(Qt::RichText);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        label->setFont(rowFont);
        label->setContentsMargins(6, 0, 6, 0);
        label->setAutoFillBackground(true);
        label->hide();
        m_pool.push_back(label);
    }
}

void LogList::render()
{
    ensurePool();
    const QRect area = ui->PicBack->contentsRect();
    const int rowPx = TwipsToPixels(LogListModel::RowHeightTwips);
    const int areaTwips = rowAreaTwips();
    // Rows above the top index have negative tops; the pool draws from the top index down.
    const int first = m_model.topIndex();
    for (size_t k = 0; k < m_pool.size(); ++k) {
        QLabel* label = m_pool[k];
        const int i = first + int(k);
        const int top = m_model.rowTop(i);
        const bool drawn = i <= m_model.upperBound() && m_model.rowVisible(i) && top >= 0 && top < areaTwips;
        if (!drawn) {
            label->hide();
            continue;
        }
        label->setGeometry(area.left(), area.top() + TwipsToPixels(top), area.width(), rowPx);
        // Alternate shading keeps two-line entries apart; it follows the entry, not the slot.
        QPalette pal = label->palette();
        pal.setColor(QPalette::Window, i % 2 ? QColor(0xEE, 0xF2, 0xF7) : QColor(0xFF, 0xFF, 0xFF));
        pal.setColor(QPalette::WindowText, QColor(0, 0, 0));
        label->setPalette(pal);
        label->setText(rowHtml(i));
        label->show();
    }
}

void LogList::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (layout())
        layout()->activate();
    render();
}
