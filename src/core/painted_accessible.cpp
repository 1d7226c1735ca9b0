#include "core/painted_accessible.h"

#include <QSet>
#include <QWidget>

namespace {

const char *const kLiveValue = "vantoraLiveValue";

QSet<QString> &buttonClasses()
{
    static QSet<QString> classes;
    return classes;
}

QAccessibleInterface *factory(const QString &className, QObject *object)
{
    if (!object || !object->isWidgetType())
        return nullptr;
    auto *widget = static_cast<QWidget *>(object);
    if (buttonClasses().contains(className))
        return new PaintedAccessible(widget, QAccessible::Button);
    if (object->property(kLiveValue).isValid())
        return new PaintedAccessible(widget, QAccessible::StaticText);
    return nullptr;
}

void installFactory()
{
    static bool installed = false;
    if (!installed) {
        QAccessible::installFactory(factory);
        installed = true;
    }
}

// A caption as a screen reader should say it: without the padding spaces of the bar
// buttons and without the ampersand that marks an access key.
QString spokenCaption(QString text)
{
    text.replace(QLatin1String("&&"), QLatin1String("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QLatin1Char('\x01'), QLatin1Char('&'));
    return text.simplified();
}

} // namespace

void PaintedAccessible::registerButtonClass(const char *className)
{
    installFactory();
    buttonClasses().insert(QString::fromLatin1(className));
}

void PaintedAccessible::makeLiveValue(QWidget *display, const QString &name)
{
    installFactory();
    display->setProperty(kLiveValue, true);
    // A label with a name of its own does not announce each new text as a new name.
    display->setAccessibleName(name);
}

PaintedAccessible::PaintedAccessible(QWidget *widget, QAccessible::Role role)
    : QAccessibleWidget(widget, role)
{
}

QString PaintedAccessible::text(QAccessible::Text kind) const
{
    const QWidget *w = widget();
    // QLabel and QLineEdit both call what they show "text".
    const QString shown = spokenCaption(w->property("text").toString());
    if (kind == QAccessible::Name) {
        if (role() == QAccessible::StaticText)
            return w->accessibleName() + QStringLiteral(": ") + shown;
        return w->accessibleName().isEmpty() ? shown : w->accessibleName();
    }
    if (kind == QAccessible::Description && w->accessibleDescription().isEmpty())
        return w->toolTip();
    return QAccessibleWidget::text(kind);
}

QAccessible::State PaintedAccessible::state() const
{
    QAccessible::State s = QAccessibleWidget::state();
    if (!responds())
        s.disabled = true;
    return s;
}

bool PaintedAccessible::responds() const
{
    // Clickable labels switch off without being disabled, to keep their own dimmed look.
    const QVariant active = widget()->property("active");
    return widget()->isEnabled() && (!active.isValid() || active.toBool());
}

QStringList PaintedAccessible::actionNames() const
{
    if (role() != QAccessible::Button)
        return QAccessibleWidget::actionNames();
    return {pressAction()};
}

void PaintedAccessible::doAction(const QString &actionName)
{
    if (role() == QAccessible::Button && actionName == pressAction() && responds())
        QMetaObject::invokeMethod(widget(), "click", Qt::QueuedConnection);
    else
        QAccessibleWidget::doAction(actionName);
}

QStringList PaintedAccessible::keyBindingsForAction(const QString &) const
{
    return {};
}
