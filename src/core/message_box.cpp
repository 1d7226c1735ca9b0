// Placeholder until the themed message window lands.
#include "core/message_box.h"

namespace {
MessageResponder g_responder;
}

void SetMessageResponderForTesting(MessageResponder responder)
{
    g_responder = std::move(responder);
}

void ShowInfoMessage(int number, const QString &extraText, QWidget *)
{
    if (g_responder)
        g_responder(false, number, extraText);
}

int AskQuestion(int number, const QString &extraText, QWidget *)
{
    return g_responder ? g_responder(true, number, extraText) : int(AnswerCancel);
}
