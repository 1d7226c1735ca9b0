#include "time/countdown_widget.h"

#include "core/clickable_label.h"
#include "core/painted_accessible.h"
#include "core/widget_index.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"
#include "time/font_fit.h"
#include "time/hover_check.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QStyle>
#include <QTimer>

namespace {
constexpr int kTickInterval = 1000;
constexpr int kMargin = 6;
const char *const kRunningNames[3] = {"txtHRS", "txtMIN", "txtSECS"};
const char *const kSetNames[3] = {"txtSUBHRS", "txtSUBMIN", "txtSUBSECS"};

// A two-digit field; one with a live name shows the running time, read out only when asked.
QLineEdit *field(const char *name, QWidget *parent, const QString &liveName = QString())
{
    auto *edit = new QLineEdit(parent);
    if (!liveName.isEmpty())
        PaintedAccessible::makeLiveValue(edit, liveName);
    edit->setObjectName(QLatin1String(name));
    edit->setAlignment(Qt::AlignCenter);
    edit->setMaxLength(2);
    return edit;
}

QLabel *colon(int index, QWidget *parent)
{
    auto *label = new QLabel(QStringLiteral(":"), parent);
    label->setObjectName(QStringLiteral("lblCOLON_") + QString::number(index));
    label->setAlignment(Qt::AlignCenter);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}
} // namespace

CountdownWidget::CountdownWidget(QWidget *parent)
    : WidgetWindow(WidgetWindowName(WidgetTimer), WidgetTimer, tr("Vantora Timer"), parent),
      m_model(new CountdownModel(this))
{
    m_model->setMessageOwner(this);
    m_model->load();

    auto *twoDigits = new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,2}")), this);
    const QString setNames[3] = {tr("Hours"), tr("Minutes"), tr("Seconds")};
    for (int f = 0; f < 3; ++f) {
        m_running[f] = field(kRunningNames[f], panel(), tr("%1 left").arg(setNames[f]));
        m_running[f]->setReadOnly(true);
        m_running[f]->setFrame(false);
        m_running[f]->setFocusPolicy(Qt::NoFocus);
        m_running[f]->setAttribute(Qt::WA_TransparentForMouseEvents); // the panel drags
        m_set[f] = field(kSetNames[f], panel());
        m_set[f]->setValidator(twoDigits);
        m_set[f]->setText(m_model->setField(CountdownModel::Field(f)));
        m_set[f]->setAccessibleName(tr("Set %1").arg(setNames[f]));
        m_set[f]->setToolTip(tr("Set %1").arg(setNames[f]));
        const auto which = CountdownModel::Field(f);
        connect(m_set[f], &QLineEdit::textEdited, this, [this, which] { setFieldEdited(which); });
        connect(m_set[f], &QLineEdit::editingFinished, this, [this, which] { setFieldFinished(which); });
        m_set[f]->installEventFilter(this); // Space starts and pauses from the fields too
    }
    for (int i = 0; i < 4; ++i)
        m_separators[i] = colon(i, panel());
    m_setCaption = new QLabel(tr("Set"), panel());
    m_setCaption->setObjectName(QStringLiteral("lblSETTIME"));
    m_setCaption->setAttribute(Qt::WA_TransparentForMouseEvents);

    m_start = new ClickableLabel(QStringLiteral("lblBTNSTART"), m_model->startCaption(), bar());
    m_stop = new ClickableLabel(QStringLiteral("lblBTNSTOP"), m_model->stopCaption(), bar());

    m_countTimer = new QTimer(this);
    m_countTimer->setObjectName(QStringLiteral("tmrSTARTPLAY"));
    m_panelHover = new HoverCheck(this, QStringLiteral("tmrPANEL"), {m_start, m_stop});

    connect(m_countTimer, &QTimer::timeout, m_model, &CountdownModel::tick);
    connect(m_model, &CountdownModel::fieldsChanged, this, &CountdownWidget::showFields);
    connect(m_model, &CountdownModel::buttonsChanged, this, &CountdownWidget::showButtons);
    connect(m_model, &CountdownModel::countingChanged, this, &CountdownWidget::setCounting);
    connect(m_start, &ClickableLabel::clicked, m_model, &CountdownModel::clickStart);
    connect(m_stop, &ClickableLabel::clicked, m_model, &CountdownModel::clickStop);
    showFields();
}

void CountdownWidget::showFields()
{
    for (int f = 0; f < 3; ++f) {
        const QString text = m_model->runningField(CountdownModel::Field(f));
        if (m_running[f]->text() != text)
            m_running[f]->setText(text);
    }
}

void CountdownWidget::showButtons()
{
    if (m_start->text() != m_model->startCaption())
        m_start->setText(m_model->startCaption());
    if (m_stop->text() != m_model->stopCaption())
        m_stop->setText(m_model->stopCaption());
    relayout();
}

void CountdownWidget::setCounting(bool counting)
{
    if (counting) {
        m_countTimer->setInterval(kTickInterval);
        m_countTimer->start();
    } else {
        m_countTimer->stop();
    }
}

void CountdownWidget::setFieldEdited(CountdownModel::Field field)
{
    m_model->setSetField(field, m_set[field]->text());
}

void CountdownWidget::setFieldFinished(CountdownModel::Field field)
{
    // "5" is kept as "05", an emptied field as "00": the set time is always two digits.
    const QString text = m_set[field]->text().rightJustified(2, QLatin1Char('0'));
    if (text == m_set[field]->text())
        return;
    m_set[field]->setText(text);
    m_model->setSetField(field, text);
}

int CountdownWidget::itemWidth(QWidget *item, const QFont &font) const
{
    const QFontMetrics fm(font);
    // A little air between the digits and the colons, growing with the font.
    const int air = qMax(2, fm.averageCharWidth() / 4);
    if (auto *edit = qobject_cast<QLineEdit *>(item)) {
        // A line edit keeps 2 pixels each side of its text, and its frame besides.
        const int frame = edit->hasFrame()
                              ? 2 * edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, edit)
                              : 0;
        return fm.horizontalAdvance(FontFit::widestDigits(font, QStringLiteral("00"))) + 4 + frame + air;
    }
    const QLabel *label = static_cast<QLabel *>(item);
    // The caption before the set fields keeps a blank's width away from the first box.
    const int gap = item == m_setCaption ? fm.horizontalAdvance(QLatin1Char(' ')) : 0;
    return fm.horizontalAdvance(label->text()) + air + gap;
}

int CountdownWidget::rowWidth(const QList<QWidget *> &row, const QFont &font) const
{
    int total = 0;
    for (QWidget *item : row)
        total += itemWidth(item, font);
    return total;
}

QFont CountdownWidget::fitRow(const QList<QWidget *> &row, const QFont &base, const QRect &area, int height,
                              int largest) const
{
    const int size = FontFit::largestPixelSize(
        [&](int px) {
            const QFont font = FontFit::withPixelSize(base, px);
            return FontFit::usage(rowWidth(row, font), QFontMetrics(font).height(), area.width(), height);
        },
        6, qMax(6, largest));
    return FontFit::withPixelSize(base, size);
}

void CountdownWidget::layoutRow(const QList<QWidget *> &row, const QFont &font, const QRect &area, int top,
                                int height)
{
    int x = area.left() + qMax(0, (area.width() - rowWidth(row, font)) / 2);
    for (QWidget *item : row) {
        if (item->font() != font)
            item->setFont(font);
        const int w = itemWidth(item, font);
        item->setGeometry(x, top, w, height);
        x += w;
    }
}

void CountdownWidget::ThemeElementsUpdate()
{
    const Theme &theme = CurrentTheme();
    const QColor text = ResolveColor(theme.PanelColor);
    // The running time is display text on the panel: no field background, the panel's colour.
    for (QLineEdit *f : m_running) {
        QPalette pal = f->palette();
        pal.setColor(QPalette::Base, Qt::transparent);
        pal.setColor(QPalette::Text, text);
        f->setPalette(pal);
    }
    // The set time stays recognisably editable, but in the theme's colours rather than in
    // white boxes: the panel tinted towards its text, as the themed buttons are.
    for (QLineEdit *f : m_set) {
        QPalette pal = f->palette();
        pal.setColor(QPalette::Base, ResolveColor(BlendColor(theme.PanelColor, theme.MainColor, 40)));
        pal.setColor(QPalette::Text, text);
        f->setPalette(pal);
    }
    WidgetWindow::ThemeElementsUpdate(); // colours, font faces, then relayout()
}

void CountdownWidget::relayout()
{
    if (!m_setCaption)
        return; // a resize before this window's own controls exist
    const int h = barHeight();
    QFont barFont = m_start->font();
    barFont.setPixelSize(qMax(9, h / 2));
    const QFontMetrics bfm(barFont);
    int x = 6;
    for (ClickableLabel *b : {m_start, m_stop}) {
        if (b->font() != barFont)
            b->setFont(barFont);
        const int w = bfm.horizontalAdvance(b->text()) + 4;
        b->setGeometry(x, 0, w, h);
        x += w + 4;
    }

    // The running time takes the upper two thirds of the panel, the set row the rest. Both
    // rows get the largest font at which the whole row fits, so that no theme's font (a
    // monospaced face is much wider) pushes the digits against the edge.
    const QRect area = panel()->rect().adjusted(kMargin, kMargin / 2, -kMargin, -kMargin);
    const int setHeight = qMax(18, area.height() / 3);
    const int runHeight = qMax(10, area.height() - setHeight - kMargin / 2);
    const QList<QWidget *> runRow = {m_running[0], m_separators[0], m_running[1], m_separators[1],
                                     m_running[2]};
    const QList<QWidget *> setRow = {m_setCaption, m_set[0],        m_separators[2],
                                     m_set[1],     m_separators[3], m_set[2]};
    layoutRow(runRow, fitRow(runRow, m_running[0]->font(), area, runHeight, 800), area, area.top(),
              runHeight);
    const QFont setFont = fitRow(setRow, m_set[0]->font(), area, setHeight, setHeight * 11 / 20);
    layoutRow(setRow, setFont, area, area.bottom() - setHeight + 1, setHeight);
}

QSize CountdownWidget::minimumUsableSize() const
{
    // The longest pair of bar captions beside the close button; a running time about 24 px
    // high above a set row whose two-digit fields still take a caret.
    QFont barFont = m_start->font();
    barFont.setPixelSize(qMax(9, barHeight() / 2));
    const QFontMetrics fm(barFont);
    const int captions = fm.horizontalAdvance(QStringLiteral(" Resume ")) + fm.horizontalAdvance(QStringLiteral(" Reset "));
    return QSize(qMax(170, 6 + captions + 12 + 34), barHeight() + 76);
}

void CountdownWidget::keyPressEvent(QKeyEvent *event)
{
    // Space starts, pauses and resumes, as the bar's first button does.
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
        m_model->clickStart();
        return;
    }
    WidgetWindow::keyPressEvent(event);
}

bool CountdownWidget::eventFilter(QObject *watched, QEvent *event)
{
    // The set fields take digits only, so a Space typed there means the same as on the window.
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::NoModifier) {
            m_model->clickStart();
            return true;
        }
    }
    return WidgetWindow::eventFilter(watched, event);
}

void CountdownWidget::hideEvent(QHideEvent *event)
{
    m_panelHover->stop();
    WidgetWindow::hideEvent(event);
}

void CountdownWidget::enterEvent(QEnterEvent *event)
{
    m_panelHover->start();
    WidgetWindow::enterEvent(event);
}
