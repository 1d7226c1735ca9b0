#include "calculator/calculator_widget.h"

#include "calculator/calculator_display.h"
#include "core/settings_store.h"
#include "core/widget_index.h"
#include "themes/painted_frame.h"
#include "themes/themed_button.h"
#include "themes/themed_chrome.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>

#include <algorithm>
#include <cmath>

namespace {

const QString kMemoryValue = QStringLiteral("Memory");
constexpr int kColumns = 4;
constexpr int kRows = 5;

void setPixelSize(QWidget *widget, int pixels)
{
    QFont f = widget->font();
    if (f.pixelSize() == pixels)
        return;
    f.setPixelSize(pixels);
    widget->setFont(f);
}

QString digitKeyName(int digit)
{
    return QStringLiteral("lblNUMBER_%1").arg(digit);
}

} // namespace

CalculatorWidget::CalculatorWidget(QWidget *parent)
    : WidgetWindow(WidgetWindowName(WidgetCalculator), WidgetCalculator, QStringLiteral("Vantora Calculator"),
                   parent)
{
    m_engine.restoreMemory(ReadDetail(objectName(), kMemoryValue, QStringLiteral("0")));
    m_display = new CalculatorDisplay(panel());
    buildKeys();
    showState();
}

CalculatorKey *CalculatorWidget::addKey(QWidget *parent, const QString &name, const QString &caption,
                                        CalculatorKey::Role role, const QString &toolTip,
                                        std::function<void()> action)
{
    auto *key = new CalculatorKey(name, caption, role, parent);
    if (!toolTip.isEmpty()) {
        key->setToolTip(toolTip);
        // Screen readers say "Delete the last character", not the key's symbol.
        key->setAccessibleName(toolTip.section(QStringLiteral(" ("), 0, 0));
    }
    m_keys.insert(name, key);
    m_actions.insert(name, std::move(action));
    connect(key, &CalculatorKey::clicked, this, [this, name] { pressKey(name); });
    return key;
}

void CalculatorWidget::buildKeys()
{
    using Role = CalculatorKey::Role;
    using Op = CalculatorEngine::Operator;
    CalculatorEngine *e = &m_engine;
    QWidget *p = panel();

    auto digit = [&](int d) {
        return addKey(p, digitKeyName(d), QString::number(d), Role::Digit, QString(),
                      [e, d] { e->pressDigit(d); });
    };
    auto op = [&](const QString &name, const QString &caption, Op which, const QString &tip) {
        return addKey(p, name, caption, Role::Operator, tip, [e, which] { e->pressOperator(which); });
    };

    // Row by row, as the grid shows them.
    m_grid = {
        addKey(p, QStringLiteral("lblCLEAR"), QStringLiteral("C"), Role::Function, tr("Clear (Esc)"),
               [e] { e->pressClear(); }),
        addKey(p, QStringLiteral("lblCLEARENTRY"), QStringLiteral("CE"), Role::Function,
               tr("Clear entry (Del)"), [e] { e->pressClearEntry(); }),
        addKey(p, QStringLiteral("lblDELETE"), QStringLiteral("\u232B"), Role::Function,
               tr("Delete the last character (Backspace)"), [e] { e->pressDelete(); }),
        op(QStringLiteral("lblDIVIDE"), QStringLiteral("÷"), Op::Divide, tr("Divide (/)")),
        digit(7),
        digit(8),
        digit(9),
        op(QStringLiteral("lblMULTIPLY"), QStringLiteral("×"), Op::Multiply, tr("Multiply (*)")),
        digit(4),
        digit(5),
        digit(6),
        op(QStringLiteral("lblSUBTRACT"), QStringLiteral("\u2212"), Op::Subtract, tr("Subtract (-)")),
        digit(1),
        digit(2),
        digit(3),
        op(QStringLiteral("lblADD"), QStringLiteral("+"), Op::Add, tr("Add (+)")),
        addKey(p, QStringLiteral("lblPLUSMINUS"), QStringLiteral("±"), Role::Function, tr("Change sign (F9)"),
               [e] { e->pressPlusMinus(); }),
        digit(0),
        addKey(p, QStringLiteral("lblPOINT"), QStringLiteral("."), Role::Digit, tr("Decimal point (. or ,)"),
               [e] { e->pressPoint(); }),
        addKey(p, QStringLiteral("lblEQUALS"), QStringLiteral("="), Role::Equals, tr("Equals (Enter)"),
               [e] { e->pressEquals(); }),
    };

    QWidget *b = bar();
    m_memoryKeys = {
        addKey(b, QStringLiteral("lblMEMCLEAR"), QStringLiteral(" MC "), Role::Memory,
               tr("Memory clear (Ctrl+L)"), [e] { e->memoryClear(); }),
        addKey(b, QStringLiteral("lblMEMRECALL"), QStringLiteral(" MR "), Role::Memory,
               tr("Memory recall (Ctrl+R)"), [e] { e->memoryRecall(); }),
        addKey(b, QStringLiteral("lblMEMSET"), QStringLiteral(" MS "), Role::Memory,
               tr("Memory store: keep the number shown (Ctrl+M)"), [e] { e->memorySet(); }),
        addKey(b, QStringLiteral("lblMEMADD"), QStringLiteral(" M+ "), Role::Memory,
               tr("Add the number shown to memory (Ctrl+P)"), [e] { e->memoryAdd(); }),
        addKey(b, QStringLiteral("lblMEMSUB"), QStringLiteral(" M\u2212 "), Role::Memory,
               tr("Subtract the number shown from memory (Ctrl+Q)"), [e] { e->memorySubtract(); }),
    };
}

void CalculatorWidget::pressKey(const QString &keyName)
{
    const auto action = m_actions.constFind(keyName);
    if (action == m_actions.constEnd())
        return;
    (*action)();
    showState();
}

void CalculatorWidget::showState()
{
    m_display->setTexts(m_engine.display(), m_engine.functionSign(), m_engine.memoryDisplay());
}

void CalculatorWidget::copyDisplay() const
{
    QGuiApplication::clipboard()->setText(m_engine.display());
}

void CalculatorWidget::pasteNumber()
{
    const QString text = QGuiApplication::clipboard()->text();
    if (text.trimmed().isEmpty())
        return; // nothing to paste: keep the number
    m_engine.enterText(text);
    showState();
}

void CalculatorWidget::saveValues()
{
    WriteDetail(objectName(), kMemoryValue, m_engine.memoryForSaving());
}

void CalculatorWidget::ThemeElementsUpdate()
{
    // The base colours the labels of bar and panel and sets the theme's fonts, then relays out.
    WidgetWindow::ThemeElementsUpdate();
    m_display->update();
}

void CalculatorWidget::relayout()
{
    if (!m_display)
        return; // called by the base before the keys exist
    // The bar grows a little with the window so that the memory keys stay easy to hit.
    const int wantedBar = std::clamp(height() / 12, 22, 34);
    if (barHeight() != wantedBar) {
        setBarHeight(wantedBar); // lays out again
        return;
    }
    layoutBar();
    layoutPanel();
}

void CalculatorWidget::layoutBar()
{
    const int h = barHeight();
    const int pixels = std::clamp(h / 2, 10, 16);
    int widest = 0;
    for (CalculatorKey *key : std::as_const(m_memoryKeys)) {
        setPixelSize(key, pixels);
        widest = std::max(widest, QFontMetrics(key->font()).horizontalAdvance(key->text()) + 6);
    }
    const int left = 4;
    const int right = closeButton() ? closeButton()->x() - 6 : width() - 4;
    const int count = int(m_memoryKeys.size());
    const int keyWidth = std::max(16, std::min(widest, (right - left) / count - 2));
    int x = left;
    for (CalculatorKey *key : std::as_const(m_memoryKeys)) {
        key->setGeometry(x, 3, keyWidth, h - 6);
        x += keyWidth + 2;
    }
}

void CalculatorWidget::layoutPanel()
{
    const QSize size = panel()->size();
    const int margin = std::clamp(size.width() / 28, 6, 16);
    const int gap = std::clamp(size.width() / 50, 3, 10);
    const QRect area(margin, margin, size.width() - 2 * margin, size.height() - 2 * margin);

    const int screenHeight = std::clamp(area.height() * 6 / 25, 40, 150);
    m_display->setGeometry(area.x(), area.y(), area.width(), screenHeight);
    m_display->relayout();

    const int gridTop = area.y() + screenHeight + gap + gap / 2;
    const double keyWidth = (area.width() - (kColumns - 1) * gap) / double(kColumns);
    const double keyHeight = (area.bottom() + 1 - gridTop - (kRows - 1) * gap) / double(kRows);
    const int pixels = std::clamp(int(std::min(keyHeight * 0.42, keyWidth * 0.36)), 10, 44);
    for (int i = 0; i < m_grid.size(); ++i) {
        const int row = i / kColumns;
        const int column = i % kColumns;
        const int x0 = area.x() + int(std::lround(column * (keyWidth + gap)));
        const int x1 = area.x() + int(std::lround(column * (keyWidth + gap) + keyWidth));
        const int y0 = gridTop + int(std::lround(row * (keyHeight + gap)));
        const int y1 = gridTop + int(std::lround(row * (keyHeight + gap) + keyHeight));
        CalculatorKey *key = m_grid.at(i);
        key->setGeometry(x0, y0, std::max(1, x1 - x0), std::max(1, y1 - y0));
        setPixelSize(key, pixels);
    }
}

QString CalculatorWidget::keyNameFor(const QKeyEvent *event) const
{
    const Qt::KeyboardModifiers mods = event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    const int key = event->key();
    if (mods == Qt::ControlModifier) {
        switch (key) {
        case Qt::Key_L:
            return QStringLiteral("lblMEMCLEAR");
        case Qt::Key_R:
            return QStringLiteral("lblMEMRECALL");
        case Qt::Key_M:
            return QStringLiteral("lblMEMSET");
        case Qt::Key_P:
            return QStringLiteral("lblMEMADD");
        case Qt::Key_Q:
            return QStringLiteral("lblMEMSUB");
        default:
            return QString();
        }
    }
    if (mods != Qt::NoModifier)
        return QString();
    if (key >= Qt::Key_0 && key <= Qt::Key_9)
        return digitKeyName(key - Qt::Key_0);
    switch (key) {
    case Qt::Key_Period:
    case Qt::Key_Comma:
        return QStringLiteral("lblPOINT");
    case Qt::Key_Plus:
        return QStringLiteral("lblADD");
    case Qt::Key_Minus:
        return QStringLiteral("lblSUBTRACT");
    case Qt::Key_Asterisk:
    case Qt::Key_multiply:
        return QStringLiteral("lblMULTIPLY");
    case Qt::Key_Slash:
    case Qt::Key_division:
        return QStringLiteral("lblDIVIDE");
    case Qt::Key_Enter:
    case Qt::Key_Return:
    case Qt::Key_Equal:
        return QStringLiteral("lblEQUALS");
    case Qt::Key_Backspace:
        return QStringLiteral("lblDELETE");
    case Qt::Key_Escape:
        return QStringLiteral("lblCLEAR");
    case Qt::Key_Delete:
        return QStringLiteral("lblCLEARENTRY");
    case Qt::Key_F9:
        return QStringLiteral("lblPLUSMINUS");
    default:
        return QString();
    }
}

bool CalculatorWidget::handleShortcut(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        copyDisplay();
        return true;
    }
    if (event->matches(QKeySequence::Paste)) {
        pasteNumber();
        return true;
    }
    return false;
}

void CalculatorWidget::keyPressEvent(QKeyEvent *event)
{
    if (handleShortcut(event))
        return;
    const QString name = keyNameFor(event);
    if (name.isEmpty()) {
        WidgetWindow::keyPressEvent(event);
        return;
    }
    if (!event->isAutoRepeat()) {
        if (CalculatorKey *key = m_keys.value(name)) {
            key->setPressed(true);
            m_heldByKeyboard.append(key);
        }
    }
    pressKey(name);
}

void CalculatorWidget::keyReleaseEvent(QKeyEvent *event)
{
    // A shifted key can come back up under another key code ("+" released as "="), so any
    // real release lets go of every key the keyboard holds down.
    if (!event->isAutoRepeat() && !m_heldByKeyboard.isEmpty()) {
        releaseKeyboardKeys();
        return;
    }
    WidgetWindow::keyReleaseEvent(event);
}

void CalculatorWidget::releaseKeyboardKeys()
{
    for (CalculatorKey *key : std::as_const(m_heldByKeyboard))
        key->setPressed(false);
    m_heldByKeyboard.clear();
}

void CalculatorWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        releaseKeyboardKeys(); // the release would go to another window
    WidgetWindow::changeEvent(event);
}
