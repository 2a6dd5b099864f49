// RnHost.MessageBox: the classic message box. The flags choose the buttons
// (low three bits), the icon (16, 32, 48, 64) and the default button (256,
// 512); the answer is the classic button number (Ok 1 ... Yes 6, No 7).
#include "host/object_factory.h"
#include <QMessageBox>
#include <QPushButton>
#include <utility>
#include <vector>

namespace {

constexpr int Cancel = 2, Abort = 3, Retry = 4, Ignore = 5;

struct ButtonChoice {
    QMessageBox::StandardButton button;
    int answer;
};

std::vector<ButtonChoice> buttonsFor(int flags)
{
    switch (flags & 7) {
    case 1: return {{QMessageBox::Ok, MsgBox::Ok}, {QMessageBox::Cancel, Cancel}};
    case 2: return {{QMessageBox::Abort, Abort}, {QMessageBox::Retry, Retry}, {QMessageBox::Ignore, Ignore}};
    case 3: return {{QMessageBox::Yes, MsgBox::Yes}, {QMessageBox::No, MsgBox::No}, {QMessageBox::Cancel, Cancel}};
    case 4: return {{QMessageBox::Yes, MsgBox::Yes}, {QMessageBox::No, MsgBox::No}};
    case 5: return {{QMessageBox::Retry, Retry}, {QMessageBox::Cancel, Cancel}};
    default: return {{QMessageBox::Ok, MsgBox::Ok}};
    }
}

QMessageBox::Icon iconFor(int flags)
{
    switch (flags & 0x70) {
    case MsgBox::Critical: return QMessageBox::Critical;
    case MsgBox::Question: return QMessageBox::Question;
    case MsgBox::Exclamation: return QMessageBox::Warning;
    case MsgBox::Information: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
    }
}

class MessageBoxDisplay : public IMessageBox {
public:
    int Show(QWidget* parent, const QString& text, int flags, const QString& title) override
    {
        QMessageBox box(iconFor(flags), title, text, QMessageBox::NoButton, parent);
        const std::vector<ButtonChoice> choices = buttonsFor(flags);
        for (const ButtonChoice& choice : choices)
            box.addButton(choice.button);
        const size_t defaultIndex = (flags & 512) ? 2 : (flags & 256) ? 1 : 0;
        if (defaultIndex < choices.size())
            box.setDefaultButton(choices[defaultIndex].button);
        // Closing the box by its window button answers as Cancel would, or as
        // the last button when there is no Cancel (No, Ok).
        box.setEscapeButton(choices.back().button);
        box.exec();
        const auto clicked = box.standardButton(box.clickedButton());
        for (const ButtonChoice& choice : choices)
            if (choice.button == clicked)
                return choice.answer;
        return choices.back().answer;
    }
};

const BuiltInServerObject registration(ProgIds::MessageBox, [] { return std::make_shared<MessageBoxDisplay>(); });

} // namespace
