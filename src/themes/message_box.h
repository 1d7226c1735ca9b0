#pragma once

#include <QString>
#include <functional>

class QWidget;

// Every notice and question of the program goes through one themed window, msg_INF.
// Messages are chosen by number; callers pass only the optional text some of them splice in.

// Answers of AskQuestion, the usual message-box result codes.
enum MessageAnswer : int {
    AnswerCancel = 2,
    AnswerYes = 6,
    AnswerNo = 7,
};

// Shows information message `number` (1-based) modally over `owner`.
void ShowInfoMessage(int number, const QString &extraText = QString(), QWidget *owner = nullptr);

// Asks question `number` (1-based) modally and returns AnswerYes, AnswerNo or AnswerCancel.
int AskQuestion(int number, const QString &extraText = QString(), QWidget *owner = nullptr);

// Asks before something that cannot be undone (delete, delete all, reset): `text` says what
// goes, `actionCaption` names the button that does it ("Delete"); "Cancel" is the default
// and the answer when the window is closed. True when the user chose the action.
bool ConfirmDestructiveAction(const QString &title, const QString &text, const QString &actionCaption,
                              QWidget *owner = nullptr);

// Tells the user something the numbered messages do not cover (a file that could not be read,
// a feature still missing): `text` says what happened and why, with a Close button. Warnings
// get the exclamation icon. The responder sees it as message 0 with its text.
void ShowNotice(const QString &title, const QString &text, bool warning = true, QWidget *owner = nullptr);

// Asks a yes/no question the numbered questions do not cover, with the two captions given;
// `yesIsDefault` picks the button Enter presses. Closing the window answers no. The responder
// sees it as question 0 with its text; true when the user chose `yesCaption`.
bool AskChoice(const QString &title, const QString &text, const QString &yesCaption, const QString &noCaption,
               bool yesIsDefault, QWidget *owner = nullptr);

// Tests only: while set, no window is shown; the responder gets each message (question false)
// or question (question true) with its number and extra text, and its result is the answer.
// ConfirmDestructiveAction and AskChoice reach it as question 0, ShowNotice as message 0, with their text.
using MessageResponder = std::function<int(bool question, int number, const QString &extraText)>;
void SetMessageResponderForTesting(MessageResponder responder);
