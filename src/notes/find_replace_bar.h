#pragma once

#include "notes/text_finder.h"

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QTextEdit;

// The find and replace bar shown below the page: a find box and, in replace mode, a replace
// box, both with histories kept under "fnte_IDX\Find" and "fnte_IDX\Replace"; the search
// choices are kept under "fnte_IDX\Details". It acts on the page set with setEditor(), which
// may change with the active document or be none.
class FindReplaceBar : public QWidget
{
    Q_OBJECT
public:
    explicit FindReplaceBar(QWidget *parent = nullptr);
    ~FindReplaceBar() override;

    void setEditor(QTextEdit *editor);
    QTextEdit *editor() const;

    QString statusText() const;

public slots:
    void showFind();
    void showReplace();
    void findNext();
    void findPrevious();
    void replace();
    void replaceAll();
    // Hides the bar and gives the focus back to the page.
    void hideBar();

signals:
    void closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void buildRows();
    void open(bool withReplace);
    void addOption(QCheckBox *box);
    void placeChoices(bool afterReplace);
    void prefillFromSelection();
    void find(bool backward);
    FindOptions options(bool backward) const;
    void remember(QComboBox *box);
    void saveHistories();
    void saveChoices() const;
    void updateButtons();
    void setStatus(const QString &text);

    QPointer<QTextEdit> m_editor;
    QGridLayout *m_grid = nullptr;
    QHBoxLayout *m_choices = nullptr;
    QComboBox *m_find = nullptr;
    QComboBox *m_replace = nullptr;
    QLabel *m_replaceLabel = nullptr;
    QPushButton *m_next = nullptr;
    QPushButton *m_previous = nullptr;
    QPushButton *m_replaceOne = nullptr;
    QPushButton *m_replaceAll = nullptr;
    QCheckBox *m_matchCase = nullptr;
    QCheckBox *m_wholeWord = nullptr;
    QCheckBox *m_wrap = nullptr;
    QLabel *m_status = nullptr;
    bool m_historiesChanged = false;
};
