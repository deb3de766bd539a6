#pragma once
// Every message and question the program puts to the user goes through this one
// interface, so the logic runs without a window: the desktop shows a message box, the
// command-line tool prints to stderr, and tests answer from a script.
#include <deque>
#include <string>
#include <vector>

namespace vexo {

enum class MsgIcon { None, Critical, Question, Exclamation, Information };
// YesNoDefaultNo: Yes and No with No on the Enter key, for questions whose careful answer
// is to leave things as they are.
enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel, YesNoDefaultNo };
enum class MsgAnswer { Ok, Cancel, Yes, No, Retry };

struct Message {
    std::string title; // "Vexo" unless the situation names another
    std::string text;  // lines joined with CR LF where a message has several
    MsgIcon icon = MsgIcon::None;
    MsgButtons buttons = MsgButtons::Ok;
};

class Messages {
public:
    virtual ~Messages() = default;
    virtual MsgAnswer show(const Message& message) = 0;

    // Shorthands for the usual shapes.
    void critical(const std::string& text, const std::string& title = "Vexo") {
        show({title, text, MsgIcon::Critical, MsgButtons::Ok});
    }
    void exclamation(const std::string& text, const std::string& title = "Vexo") {
        show({title, text, MsgIcon::Exclamation, MsgButtons::Ok});
    }
    void information(const std::string& text, const std::string& title = "Vexo") {
        show({title, text, MsgIcon::Information, MsgButtons::Ok});
    }
    bool askYesNo(const std::string& text, const std::string& title = "Vexo") {
        return show({title, text, MsgIcon::Question, MsgButtons::YesNo}) == MsgAnswer::Yes;
    }
};

// The answer a box gives when nobody can answer it: OK, No, or Cancel.
MsgAnswer DefaultAnswer(MsgButtons buttons);

// Prints each message as "title: text" (one line, CR LF shown as " / ") to stderr and
// answers with the default answer.
class StderrMessages : public Messages {
public:
    MsgAnswer show(const Message& message) override;
};

// Records every message and answers from a queue (the default answer once it is empty).
// For headless runs of dialogs and controllers whose questions must be answered.
class ScriptedMessages : public Messages {
public:
    MsgAnswer show(const Message& message) override;
    void queueAnswer(MsgAnswer answer) { m_answers.push_back(answer); }
    const std::vector<Message>& shown() const { return m_shown; }
    void clear() { m_shown.clear(); }

private:
    std::deque<MsgAnswer> m_answers;
    std::vector<Message> m_shown;
};

} // namespace vexo
