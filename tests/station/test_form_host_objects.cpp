// The host objects the station leans on, built in: the message box, the
// employee picker and the sound service.
#include "middletier/employee_list.h"
#include "station/station_fixture.h"
#include <QAbstractButton>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

namespace {

// Answers the next modal window that opens: hands it to `act` once it shows.
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

struct BoxSeen {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
    QString title;
    QString text;
    QString defaultButton;
};

// Shows a box through the built-in display, looks at it, presses `press`.
int showBuiltInBox(int flags, QMessageBox::StandardButton press, BoxSeen& seen)
{
    whenModalShows([&seen, press](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        if (!box) {
            modal->close();
            return;
        }
        seen.icon = box->icon();
        seen.title = box->windowTitle();
        seen.text = box->text();
        for (QAbstractButton* b : box->buttons())
            seen.buttons << b->text().remove(QLatin1Char('&'));
        if (box->defaultButton())
            seen.defaultButton = box->defaultButton()->text().remove(QLatin1Char('&'));
        if (QAbstractButton* b = box->button(press))
            b->click();
        else
            box->reject();
    });
    RestoreBuiltInServerObjects(ProgIds::MessageBox);
    return CreateServerObjectAs<IMessageBox>(ProgIds::MessageBox)->Show(nullptr, QStringLiteral("正文"), flags, QStringLiteral("标题"));
}

} // namespace

TEST(BuiltInMessageBox, ClassicFlagsGiveButtonsIconsAndAnswers)
{
    BoxSeen seen;
    EXPECT_EQ(showBuiltInBox(36, QMessageBox::No, seen), 7);
    EXPECT_EQ(seen.icon, QMessageBox::Question);
    EXPECT_EQ(seen.buttons.size(), 2);
    EXPECT_EQ(seen.title, QStringLiteral("标题"));
    EXPECT_EQ(seen.text, QStringLiteral("正文"));

    seen = {};
    EXPECT_EQ(showBuiltInBox(4, QMessageBox::Yes, seen), 6);
    EXPECT_EQ(seen.icon, QMessageBox::NoIcon);

    seen = {};
    EXPECT_EQ(showBuiltInBox(48, QMessageBox::Ok, seen), 1);
    EXPECT_EQ(seen.icon, QMessageBox::Warning);
    EXPECT_EQ(seen.buttons.size(), 1);

    seen = {};
    EXPECT_EQ(showBuiltInBox(1 | 16, QMessageBox::Cancel, seen), 2);
    EXPECT_EQ(seen.icon, QMessageBox::Critical);

    // Yes/No/Cancel with the second button as default; closing the box is Cancel.
    seen = {};
    EXPECT_EQ(showBuiltInBox(3 | 64 | 256, QMessageBox::NoButton, seen), 2);
    EXPECT_EQ(seen.icon, QMessageBox::Information);
    EXPECT_EQ(seen.buttons.size(), 3);
    ASSERT_FALSE(seen.defaultButton.isEmpty());
    EXPECT_EQ(seen.defaultButton, QMessageBox(QMessageBox::NoIcon, {}, {}, QMessageBox::No).buttons().first()->text().remove('&'));

    seen = {};
    EXPECT_EQ(showBuiltInBox(2, QMessageBox::Retry, seen), 4);
    seen = {};
    EXPECT_EQ(showBuiltInBox(5, QMessageBox::Retry, seen), 4);
}

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
    EXPECT_TRUE(names(QStringLiteral("%")).isEmpty());
    EXPECT_TRUE(names(QStringLiteral("E00_")).isEmpty());
    EXPECT_TRUE(names(QStringLiteral("' OR 1=1 --")).isEmpty());

    // The dialog: opened with the field's text, Enter takes the first match.
    whenModalShows([](QWidget* modal) {
        auto* filter = modal->findChild<QLineEdit*>(QStringLiteral("txtFilter"));
        auto* table = modal->findChild<QTableWidget*>(QStringLiteral("grdEmployees"));
        if (!filter || !table || filter->text() != QStringLiteral("E00") || table->rowCount() != 4) {
            static_cast<QDialog*>(modal)->reject();
            return;
        }
        filter->setText(QStringLiteral("王"));
        static_cast<QDialog*>(modal)->accept();
    });
    RestoreBuiltInServerObjects(ProgIds::EmployeePicker);
    auto picker = CreateServerObjectAs<IEmployeePicker>(ProgIds::EmployeePicker);
    EmployeePickResult result = picker->Pick(nullptr, props, QStringLiteral("E00"));
    EXPECT_TRUE(result.ReturnOK);
    EXPECT_TRUE(result.ReturnObject.Detail);
    EXPECT_EQ(result.ReturnObject.Name, QStringLiteral("王芳"));
    EXPECT_EQ(result.ReturnObject.Itemid.toInt(), 203);

    // Cancelled: nothing chosen.
    whenModalShows([](QWidget* modal) { static_cast<QDialog*>(modal)->reject(); });
    result = picker->Pick(nullptr, props, QString());
    EXPECT_FALSE(result.ReturnOK);
    EXPECT_FALSE(result.ReturnObject.Detail);
}

TEST_F(StationFormTest, TheSoundServiceIgnoresWhatItCannotPlay)
{
    RestoreBuiltInServerObjects(ProgIds::Sound);
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    SetComponentFolder(folder.path());
    QDir(folder.path()).mkpath(QStringLiteral("voice"));
    QFile notSound(folder.filePath(QStringLiteral("voice/Error.wav")));
    ASSERT_TRUE(notSound.open(QIODevice::WriteOnly));
    notSound.write("not a wave file");
    notSound.close();
    auto sound = CreateServerObjectAs<ISound>(ProgIds::Sound);
    // A missing file, a broken one, and the same one again: no error.
    EXPECT_NO_THROW(sound->Play(QStringLiteral("\\voice\\missing.wav")));
    EXPECT_NO_THROW(sound->Play(QStringLiteral("\\voice\\Error.wav")));
    EXPECT_NO_THROW(sound->Play(QStringLiteral("\\voice\\Error.wav")));
    SetComponentFolder(QString());

    // The station plays through whatever sound object is registered.
    frmPickigGoods* form = openStation();
    // Without one the refusal still goes on after its prompt, and no box comes.
    RegisterServerObject(ProgIds::Sound, [] { return std::shared_ptr<ServerObject>(); });
    m_rec->boxes.clear();
    scanInto(controls(form).TxtID, QStringLiteral("10006"));
    EXPECT_EQ(controls(form).lblMessage->text(), QStringLiteral("此单已校验通过"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("+"));
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();
    auto recorder = m_rec;
    RegisterServerObject(ProgIds::Sound, [recorder] { return std::make_shared<RecordingSounds>(recorder); });
    m_rec->voices.clear();
    scanInto(controls(form).TxtID, QStringLiteral("10004"));
    EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\refunds.wav")});
}

TEST(VoicePrompts, NineShortMonoWavesBesideTheComponent)
{
    const QStringList names{"findGoods", "scanSerial", "repeatScan", "DifKFPeriod", "Error",
                            "Excess",    "Succes",     "refunds",    "repeatCheck"};
    for (const QString& name : names) {
        QFile file(ComponentPath(QStringLiteral("\\voice\\") + name + QStringLiteral(".wav")));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        const QByteArray wav = file.readAll();
        ASSERT_GT(wav.size(), 44) << name.toStdString();
        auto u16 = [&](int at) { return quint16(quint8(wav[at]) | quint8(wav[at + 1]) << 8); };
        auto u32 = [&](int at) { return quint32(u16(at)) | quint32(u16(at + 2)) << 16; };
        EXPECT_EQ(wav.left(4), QByteArray("RIFF")) << name.toStdString();
        EXPECT_EQ(wav.mid(8, 8), QByteArray("WAVEfmt ")) << name.toStdString();
        EXPECT_EQ(u16(20), 1) << name.toStdString();        // PCM
        EXPECT_EQ(u16(22), 1) << name.toStdString();        // mono
        EXPECT_EQ(u32(24), 22050u) << name.toStdString();
        EXPECT_EQ(u16(34), 16) << name.toStdString();
        // Spoken, and short enough not to hold up the next scan.
        const double seconds = double(wav.size() - 44) / (22050.0 * 2.0);
        EXPECT_GT(seconds, 0.4) << name.toStdString();
        EXPECT_LT(seconds, 3.5) << name.toStdString();
    }
    // The success prompt keeps its historic spelling.
    EXPECT_FALSE(QFile::exists(ComponentPath(QStringLiteral("\\voice\\Success.wav"))));
}
