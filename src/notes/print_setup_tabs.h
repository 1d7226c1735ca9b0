#pragma once

#include "notes/print_engine.h"
#include "notes/print_settings.h"

#include <QTabWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;

// The page setup of the print preview on three pages: "Page" (printer, paper, orientation),
// "Mgns" (the four margins) and "H&F" (what the head and foot show). Every change is told at
// once, so the preview follows as the user types.
class PrintSetupTabs : public QTabWidget
{
    Q_OBJECT
public:
    explicit PrintSetupTabs(const PrintSettings &settings, QWidget *parent = nullptr);

    const PrintSettings &settings() const { return m_settings; }
    // The printers to choose from; `chosen` (a printer's name) is selected.
    void setPrinters(const QList<PrintEngine::PrinterChoice> &printers, const QString &chosen);
    // Shows that the margins were narrowed to leave room for the text.
    void showMarginsReduced(bool reduced);

signals:
    void settingsChanged();
    void printerChosen(const QString &name);

private:
    QWidget *buildPaperPage();
    QWidget *buildMarginsPage();
    QWidget *buildHeadFootPage();
    QCheckBox *addCheck(const QString &name, const QString &caption, bool PrintSettings::*value);
    QLineEdit *addDecimalField(const QString &name, const QString &toolTip);
    void paperChosen(int index);
    void paperSizeTyped();
    void marginTyped(int side);
    // Shows the value a decimal field stands for, as the settings keep it.
    void tidyDecimalField(QLineEdit *field);

    PrintSettings m_settings;
    QComboBox *m_printer;
    QComboBox *m_paper;
    QLineEdit *m_paperWidth;
    QLineEdit *m_paperHeight;
    QRadioButton *m_portrait;
    QRadioButton *m_landscape;
    QLineEdit *m_margins[4];
    QCheckBox *m_lock;
    QLabel *m_reduced;
    QList<PrintEngine::PrinterChoice> m_printers;
};
