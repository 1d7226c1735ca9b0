#pragma once

#include <QColor>
#include <QObject>
#include <QString>

// A colour as the settings and preset files store it: 0x00BBGGRR (red in the low byte). A value
// with the top bit set (0x80000000 + n) is not a colour but names system colour n; it is
// resolved only when painting.
using OleColor = quint32;

constexpr OleColor kSystemColorFlag = 0x80000000u;
constexpr OleColor kShadowGrey = 0x00272727u;       // red, green and blue 39
constexpr OleColor kWindowBackground = 0x80000005u; // system colour 5

// The one process-wide theme every window paints from. Field names are the ones the
// settings and preset files use.
struct Theme
{
    OleColor MainColor = 13855252; // 0x00D36A14
    int MainOpacity = 235;         // 10..255 in the editor
    int MainContrast = 130;        // 0..255 in the editor
    QString PanelFont = QStringLiteral("Tahoma");
    int PanelAngle = 123;
    OleColor PanelColor = 0x80000005u; // window background
    QString BarFont = QStringLiteral("Tahoma");
    int BarAngle = 270;
    OleColor BarColor = 0x80000009u; // active caption text

    bool operator==(const Theme &) const = default;
};

// The current theme. Change it through SetCurrentTheme() so that open windows repaint.
const Theme &CurrentTheme();
void SetCurrentTheme(const Theme &theme);

// Loads every field from "mdb_THM\Details" with its default; an empty font becomes "Tahoma".
void LoadThemeFromRegistry();
// Writes the nine values to "mdb_THM\Details".
void SaveThemeToRegistry();

// The settings key and the registry value names of the theme.
inline constexpr const char *kThemeWindow = "mdb_THM";

// Stored numbers are decimal text. A colour is written as the signed 32-bit number it is
// (system colour 5 is "-2147483643"); reading also takes its unsigned spelling. Leading digits
// count ("235px" reads 235); text without a number gives `fallback`.
qint64 ParseThemeNumber(const QString &text, qint64 fallback);
QString ColorToText(OleColor color);
OleColor TextToColor(const QString &text, OleColor fallback);

// Emits themeChanged() after SetCurrentTheme(); windows that paint themselves listen to it.
class ThemeNotifier : public QObject
{
    Q_OBJECT
public:
    static ThemeNotifier *instance();

signals:
    void themeChanged();
};
