#pragma once

#include <QColor>
#include <QPointer>
#include <QTabBar>

class QToolButton;

// The editor's strip of document tabs (tabDOCS). Its two scroll buttons are painted here,
// solid in the page's colours like the chosen tab, framed in the panel's text colour, with an
// arrow that fills the button: with the panel's button padding the style's own arrow was a
// pale dot.
class DocumentTabBar : public QTabBar
{
    Q_OBJECT
public:
    explicit DocumentTabBar(QWidget *parent = nullptr);

    // The widget whose palette gives the page's colours, and the panel's text colour for the
    // frame; the buttons are drawn again with them.
    void setScrollButtonColours(QWidget *page, const QColor &frame);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void paintScrollButton(QToolButton *button) const;

    QPointer<QWidget> m_page;
    QColor m_frame = Qt::gray;
};
