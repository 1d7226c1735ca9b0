#pragma once

#include "themes/themed_dialog.h"

class PrintEngine;
class PrintPageView;
class PrintSetupTabs;
class QComboBox;
class QLabel;
class QScrollArea;
class QSpinBox;
class QTextDocument;
class QTimer;
class QToolButton;

// fnte_PRN, the print preview: the document on pages of the chosen paper, page by page, at
// the chosen zoom, beside the page setup; it prints and saves the pages as a PDF. Setup
// changes show on the page at once, which stays on the text the user was looking at.
// Settings are kept when the window closes.
//
// No button is the default: the setup applies as it is typed, so Enter in a field only
// finishes that field (Ctrl+P prints, Escape closes).
class PrintPreviewWindow : public ThemedDialog
{
    Q_OBJECT
public:
    PrintPreviewWindow(PrintEngine *engine, const QTextDocument *document, const QString &fileName,
                       QWidget *parent = nullptr);
    ~PrintPreviewWindow() override;

    // Applies the paper and orientation chosen in the setup (and every other setup value).
    void PrintPageType();
    // Draws the page and its shadow again.
    void ShadowPageRedo();
    // Asks for a file name and saves the pages as a PDF there.
    void savePdf();

public slots:
    void ThemeElementsUpdate() override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void done(int result) override;

private:
    QWidget *buildCommandRow();
    QToolButton *addCommand(const QString &name, const QString &caption, const QString &toolTip,
                            const QKeySequence &shortcut = QKeySequence());
    void showPageNumbers(int page, int count);
    void showZoom(int percent);
    void zoomTyped();
    void fitViewToArea();

    PrintEngine *m_engine;
    PrintPageView *m_view;
    QScrollArea *m_scroll;
    PrintSetupTabs *m_setup;
    QSpinBox *m_pageNumber;
    QLabel *m_pageCount;
    QComboBox *m_zoom;
    QToolButton *m_first;
    QToolButton *m_previous;
    QToolButton *m_next;
    QToolButton *m_last;
    QTimer *m_refresh;
    QString m_fileName;
};
