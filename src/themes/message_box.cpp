#include "themes/message_box.h"

#include "themes/message_window.h"

#include <QApplication>
#include <QPointer>
#include <memory>

namespace {

MessageResponder g_responder;
QPointer<MessageWindow> g_window;
int g_lastAnswer = AnswerCancel;

bool canShowWindows()
{
    return qobject_cast<QApplication *>(QCoreApplication::instance()) != nullptr;
}

// The one msg_INF window, created on first use. A message that arrives while it is already
// open (an alarm during a question) gets a window of its own for as long as it shows.
template <typename Call> void withWindow(Call call)
{
    if (!g_window)
        g_window = new MessageWindow();
    if (!g_window->isRunning()) {
        call(g_window.data());
        return;
    }
    std::unique_ptr<MessageWindow> extra(new MessageWindow());
    call(extra.get());
}

} // namespace

void SetMessageResponderForTesting(MessageResponder responder)
{
    g_responder = std::move(responder);
}

void ShowInfoMessage(int number, const QString &extraText, QWidget *owner)
{
    if (g_responder) {
        g_responder(false, number, extraText);
        return;
    }
    if (!canShowWindows())
        return;
    withWindow([&](MessageWindow *w) { w->showInfo(number, extraText, owner); });
}

int AskQuestion(int number, const QString &extraText, QWidget *owner)
{
    if (g_responder)
        return g_lastAnswer = g_responder(true, number, extraText);
    if (!canShowWindows())
        return g_lastAnswer; // nothing shown: the answer stays as it was
    withWindow([&](MessageWindow *w) { g_lastAnswer = w->askQuestion(number, extraText, owner); });
    return g_lastAnswer;
}

bool ConfirmDestructiveAction(const QString &title, const QString &text, const QString &actionCaption, QWidget *owner)
{
    return AskChoice(title, text, actionCaption, QObject::tr("Cancel"), false, owner);
}

bool AskChoice(const QString &title, const QString &text, const QString &yesCaption, const QString &noCaption,
               bool yesIsDefault, QWidget *owner)
{
    if (g_responder)
        return g_responder(true, 0, text) == AnswerYes;
    if (!canShowWindows())
        return false;
    MessageContent content;
    content.title = title;
    content.text = text;
    content.bar = MessageBar::YesNo;
    content.yesCaption = yesCaption;
    content.noCaption = noCaption;
    content.warning = !yesIsDefault;
    content.noIsDefault = !yesIsDefault;
    int answer = AnswerNo;
    withWindow([&](MessageWindow *w) { answer = w->askContent(content, owner); });
    return answer == AnswerYes;
}

void ShowNotice(const QString &title, const QString &text, bool warning, QWidget *owner)
{
    if (g_responder) {
        g_responder(false, 0, text);
        return;
    }
    if (!canShowWindows())
        return;
    MessageContent content;
    content.title = title;
    content.text = text;
    content.bar = MessageBar::Close;
    content.warning = warning;
    withWindow([&](MessageWindow *w) { w->askContent(content, owner); });
}
