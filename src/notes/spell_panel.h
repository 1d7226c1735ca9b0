#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

// The spelling page of the editor's side panel: the unknown word the check stopped at, its
// suggestions (lstSUGGESTIONS), the replacement box (txtSUGG) and the buttons that change
// (btnCHANGE), ignore (btnIGNORE, Ignore All), add (btnINCLUDE) or check again (btnSPELLRCHK).
class SpellPanel : public QWidget
{
    Q_OBJECT
public:
    explicit SpellPanel(QWidget *parent = nullptr);

    // The check stopped at `word`. A real suggestion fills the replacement box and is chosen.
    void showWord(const QString &word, const QStringList &suggestions);
    // No word to act on: `text` says why (finished, not started, loading).
    void showMessage(const QString &text);
    void focusSuggestions();

signals:
    void changeRequested(const QString &newText);
    void ignoreRequested();
    void ignoreAllRequested();
    void addRequested();
    void recheckRequested();

private:
    void setWordButtonsEnabled(bool enabled);
    void requestChange();

    QLabel *m_heading;
    QLabel *m_word;
    QLabel *m_message;
    QLineEdit *m_replacement;
    QListWidget *m_suggestions;
    QPushButton *m_change;
    QPushButton *m_ignore;
    QPushButton *m_ignoreAll;
    QPushButton *m_add;
    QPushButton *m_recheck;
    bool m_realSuggestions = false;
};
