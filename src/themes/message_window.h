#pragma once

#include "themes/message_catalog.h"

#include <QDialog>

class QLabel;
class QPushButton;
class PaintedFrame;
class ThemedButton;

// msg_INF: the one themed window every notice and question goes through. It is filled by
// number, shown modally over the window that asked, and hidden again by a button, its close
// picture or Escape. The answer stays readable until the next question.
class MessageWindow : public QDialog
{
    Q_OBJECT
public:
    explicit MessageWindow(QWidget *parent = nullptr);

    // Fills the window for information message `number` and shows it until it is closed. A
    // number without an entry (8) keeps the previous texts.
    void showInfo(int number, const QString &extraText, QWidget *owner);
    // Fills the window for question `number`, shows it and returns the answer: 6 yes, 7 no,
    // 2 cancel. Closing it without a button gives the safe answer: cancel where the question
    // offers it, otherwise no.
    int askQuestion(int number, const QString &extraText, QWidget *owner);
    // Asks a question of the program's own wording (not a numbered one); same answers.
    int askContent(const MessageContent &content, QWidget *owner);

    int answer() const { return m_answer; }
    bool isRunning() const { return m_running; }
    QString titleText() const;
    QString descriptionText() const;
    // The bar that shows for the current message.
    MessageBar currentBar() const { return m_bar; }

public slots:
    // Fonts and colours of the labels and buttons from the theme (ApplyTheme calls it by name).
    void ThemeElementsUpdate();

protected:
    void reject() override;

private:
    void buildBar(QWidget *panel);
    void fill(const MessageContent &content);
    void arrangeButtons(const MessageContent &content);
    void run(QWidget *owner);
    void placeOver(QWidget *owner);
    void answerWith(int code);

    PaintedFrame *m_barFrame;
    PaintedFrame *m_panel;
    QLabel *m_title;
    QLabel *m_description;
    QLabel *m_icon;
    ThemedButton *m_close;
    QWidget *m_barO;
    QWidget *m_barYN;
    QWidget *m_barYNC;
    QPushButton *m_btnClose;
    QPushButton *m_btnYes;
    QPushButton *m_btnNo;
    QPushButton *m_btnCancel;
    MessageBar m_bar = MessageBar::Close;
    int m_answer = 2;
    bool m_running = false;
};
