#include "shell/ui/QtMessages.h"

#include <QMessageBox>
#include <QString>

namespace vexo {

namespace {

QMessageBox::Icon IconOf(MsgIcon icon) {
    switch (icon) {
    case MsgIcon::Critical:
        return QMessageBox::Critical;
    case MsgIcon::Question:
        return QMessageBox::Question;
    case MsgIcon::Exclamation:
        return QMessageBox::Warning;
    case MsgIcon::Information:
        return QMessageBox::Information;
    case MsgIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(MsgButtons buttons) {
    switch (buttons) {
    case MsgButtons::Ok:
        return QMessageBox::Ok;
    case MsgButtons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case MsgButtons::YesNo:
    case MsgButtons::YesNoDefaultNo:
        return QMessageBox::Yes | QMessageBox::No;
    case MsgButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MsgButtons::RetryCancel:
        return QMessageBox::Retry | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

MsgAnswer AnswerOf(int button, MsgButtons buttons) {
    switch (button) {
    case QMessageBox::Ok:
        return MsgAnswer::Ok;
    case QMessageBox::Cancel:
        return MsgAnswer::Cancel;
    case QMessageBox::Yes:
        return MsgAnswer::Yes;
    case QMessageBox::No:
        return MsgAnswer::No;
    case QMessageBox::Retry:
        return MsgAnswer::Retry;
    default:
        return DefaultAnswer(buttons); // closed with Escape or the title bar
    }
}

} // namespace

MsgAnswer QtMessages::show(const Message& message) {
    QString text = QString::fromStdString(message.text);
    text.replace("\r\n", "\n"); // several-line messages are joined with CR LF
    QMessageBox box(IconOf(message.icon), QString::fromStdString(message.title), text,
                    ButtonsOf(message.buttons), m_parent);
    if (message.buttons == MsgButtons::YesNoDefaultNo)
        box.setDefaultButton(QMessageBox::No);
    return AnswerOf(box.exec(), message.buttons);
}

} // namespace vexo
