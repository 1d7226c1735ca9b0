#pragma once

#include <QString>

// The texts of the program's numbered notices and questions (the msg_INF window shows them).

// Which button bar a message uses: pfrBTNBARO (btnCLOSE), pfrBTNBARYN (btnYES, btnNO) or
// pfrBTNBARYNC (btnCANCEL, btnYES, btnNO).
enum class MessageBar
{
    Close,
    YesNo,
    YesNoCancel
};

struct MessageContent
{
    QString title;
    QString text;
    MessageBar bar = MessageBar::Close;
    QString yesCaption;
    QString noCaption;
    QString cancelCaption;
    bool warning = false; // shown with an exclamation icon
    // The "no" button is the default (Enter) where "yes" cannot be undone.
    bool noIsDefault = false;
};

// Information message `number` (1-based) with `extraText` spliced in where it belongs. False
// for a number without an entry (8 is one): the window then keeps its previous texts.
bool InfoMessageContent(int number, const QString &extraText, MessageContent *content);

// Question `number` (1-based); false for a number without an entry.
bool QuestionContent(int number, const QString &extraText, MessageContent *content);

// The running version as question 1 shows it: major.minor.revision ("1.0.0").
QString RunningVersionText();
