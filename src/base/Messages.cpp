#include "base/Messages.h"

#include <cstdio>

namespace vexo {

MsgAnswer DefaultAnswer(MsgButtons buttons) {
    switch (buttons) {
    case MsgButtons::Ok:
        return MsgAnswer::Ok;
    case MsgButtons::YesNo:
    case MsgButtons::YesNoDefaultNo:
        return MsgAnswer::No;
    case MsgButtons::OkCancel:
    case MsgButtons::YesNoCancel:
    case MsgButtons::RetryCancel:
        return MsgAnswer::Cancel;
    }
    return MsgAnswer::Cancel;
}

MsgAnswer StderrMessages::show(const Message& message) {
    std::string text = message.text;
    for (std::size_t p; (p = text.find("\r\n")) != std::string::npos;)
        text.replace(p, 2, " / ");
    std::fprintf(stderr, "%s: %s\n", message.title.c_str(), text.c_str());
    return DefaultAnswer(message.buttons);
}

MsgAnswer ScriptedMessages::show(const Message& message) {
    m_shown.push_back(message);
    if (m_answers.empty())
        return DefaultAnswer(message.buttons);
    MsgAnswer a = m_answers.front();
    m_answers.pop_front();
    return a;
}

} // namespace vexo
