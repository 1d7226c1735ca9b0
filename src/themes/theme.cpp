#include "themes/theme.h"

#include "core/settings_store.h"
#include "themes/theme_painter.h"

namespace {

Theme g_theme;

QString window()
{
    return QString::fromLatin1(kThemeWindow);
}

QString readValue(const char *name, const QString &defaultText)
{
    return ReadDetail(window(), QString::fromLatin1(name), defaultText);
}

int readInt(const char *name, int defaultValue)
{
    const qint64 v = ParseThemeNumber(readValue(name, QString::number(defaultValue)), defaultValue);
    return int(qBound(qint64(INT32_MIN), v, qint64(INT32_MAX)));
}

OleColor readColor(const char *name, OleColor defaultValue)
{
    return TextToColor(readValue(name, ColorToText(defaultValue)), defaultValue);
}

void write(const char *name, const QString &text)
{
    WriteDetail(window(), QString::fromLatin1(name), text);
}

} // namespace

const Theme &CurrentTheme()
{
    return g_theme;
}

void SetCurrentTheme(const Theme &theme)
{
    g_theme = theme;
    emit ThemeNotifier::instance()->themeChanged();
    ApplyThemeToAllWindows();
}

qint64 ParseThemeNumber(const QString &text, qint64 fallback)
{
    const QString t = text.trimmed();
    int end = 0;
    if (end < t.size() && (t[end] == QLatin1Char('-') || t[end] == QLatin1Char('+')))
        ++end;
    const int digitsStart = end;
    while (end < t.size() && t[end].isDigit() && end - digitsStart < 12)
        ++end;
    if (end == digitsStart)
        return fallback;
    bool ok = false;
    const qint64 value = t.left(end).toLongLong(&ok);
    return ok ? value : fallback;
}

QString ColorToText(OleColor color)
{
    return QString::number(qint32(color));
}

OleColor TextToColor(const QString &text, OleColor fallback)
{
    const qint64 value = ParseThemeNumber(text, qint64(qint32(fallback)));
    if (value < qint64(INT32_MIN) || value > qint64(UINT32_MAX))
        return fallback;
    return OleColor(quint32(value));
}

void LoadThemeFromRegistry()
{
    const Theme defaults;
    Theme t;
    t.MainColor = readColor("Theme Main-Color", defaults.MainColor);
    t.MainOpacity = qBound(0, readInt("Theme Main-Opacity", defaults.MainOpacity), 255);
    t.MainContrast = readInt("Theme Main-Contrast", defaults.MainContrast);
    t.PanelFont = readValue("Theme Panel-Font", defaults.PanelFont);
    t.PanelAngle = readInt("Theme Panel-Angle", defaults.PanelAngle);
    t.PanelColor = readColor("Theme Panel-Color", defaults.PanelColor);
    t.BarFont = readValue("Theme Bar-Font", defaults.BarFont);
    t.BarAngle = readInt("Theme Bar-Angle", defaults.BarAngle);
    t.BarColor = readColor("Theme Bar-Color", defaults.BarColor);
    if (t.BarFont.isEmpty())
        t.BarFont = QStringLiteral("Tahoma");
    if (t.PanelFont.isEmpty())
        t.PanelFont = QStringLiteral("Tahoma");
    SetCurrentTheme(t);
}

void SaveThemeToRegistry()
{
    const Theme &t = g_theme;
    write("Theme Main-Opacity", QString::number(t.MainOpacity));
    write("Theme Main-Contrast", QString::number(t.MainContrast));
    write("Theme Main-Color", ColorToText(t.MainColor));
    write("Theme Bar-Font", t.BarFont);
    write("Theme Bar-Angle", QString::number(t.BarAngle));
    write("Theme Bar-Color", ColorToText(t.BarColor));
    write("Theme Panel-Font", t.PanelFont);
    write("Theme Panel-Angle", QString::number(t.PanelAngle));
    write("Theme Panel-Color", ColorToText(t.PanelColor));
}

ThemeNotifier *ThemeNotifier::instance()
{
    static ThemeNotifier notifier;
    return &notifier;
}
