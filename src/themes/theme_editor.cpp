#include "themes/theme_editor.h"

#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"
#include "themes/theme_presets.h"
#include "themes/theme_preview.h"

#include <QColorDialog>
#include <QDir>
#include <QFileInfo>
#include <QFontComboBox>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QPointer<ThemeEditor> g_editor;
ThemeEditor::ColorChooser g_colorChooser;

// Below this contrast text is hard to read for anyone; the editor says so.
constexpr double kLeastContrast = 3.0;

enum PresetColumn
{
    SwatchColumn,
    NameColumn,
    SizeColumn
};
constexpr int kFileRole = Qt::UserRole;

// The preview of a preset: its main colour with its panel and bar text colours as two dots.
QIcon swatchIcon(const PresetListEntry &entry, qreal dpr)
{
    const QSize size(44, 18);
    QPixmap pm(size * dpr);
    pm.setDevicePixelRatio(dpr);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0, 0, 0, 80), 1));
    p.setBrush(ResolveColor(entry.mainSwatch));
    p.drawRoundedRect(QRectF(0.5, 0.5, size.width() - 1, size.height() - 1), 4, 4);
    p.setPen(QPen(QColor(0, 0, 0, 60), 1));
    p.setBrush(ResolveColor(entry.panelColor));
    p.drawEllipse(QRectF(size.width() - 31, 4, 10, 10));
    p.setBrush(ResolveColor(entry.barColor));
    p.drawEllipse(QRectF(size.width() - 16, 4, 10, 10));
    return QIcon(pm);
}

QString colorText(OleColor color)
{
    if (!(color & kSystemColorFlag))
        return ResolveColor(color).name().toUpper();
    // The desktop colours a stored theme can refer to, by the part they play.
    static const char *const names[] = {
        QT_TRANSLATE_NOOP("ThemeEditor", "Scroll bar"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Desktop"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Active title"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Inactive title"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Menu"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Window"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Window frame"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Menu text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Window text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Title text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Active border"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Inactive border"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Workspace"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Highlight"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Highlighted text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Button face"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Button shadow"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Grey text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Button text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Inactive title text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Button highlight"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Dark shadow"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Light"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Tooltip text"),
        QT_TRANSLATE_NOOP("ThemeEditor", "Tooltip"),
    };
    const quint32 index = color & ~kSystemColorFlag;
    if (index < sizeof(names) / sizeof(names[0]))
        return ThemeEditor::tr("%1 (desktop colour)").arg(ThemeEditor::tr(names[index]));
    return ThemeEditor::tr("Desktop colour %1").arg(index);
}

QString groupTitle(const QString &group)
{
    return group.left(1).toUpper() + group.mid(1);
}

QLabel *noteLabel(const QString &name, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setWordWrap(true);
    label->hide();
    return label;
}

} // namespace

ThemeEditor::ThemeEditor(QWidget *parent)
    : ThemedDialog(QStringLiteral("mdb_THM"), tr("Vantora Theme Editor"), parent), m_theme(CurrentTheme())
{
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    // The controls sit on a plain body in the desktop's colours: a theme chosen on the way to a
    // good one may have text the colour of its background, and the editor must stay usable.
    // The preview and every open widget show the theme.
    auto *body = new QWidget(panel());
    body->setObjectName(QStringLiteral("pfrEDITOR"));
    auto *columns = new QHBoxLayout(body);
    columns->setContentsMargins(12, 12, 12, 12);
    columns->setSpacing(16);
    columns->addWidget(buildPresetColumn(), 1);
    columns->addWidget(buildValueColumn(), 1);
    auto *layout = new QVBoxLayout;
    layout->addWidget(body);
    setPanelLayout(layout);
    layout->setContentsMargins(1, 0, 1, 1);
    keepDesktopStyle(body);
    // Every change shows at once, so Enter has nothing to confirm: no default button. Enter in
    // the name field saves, as that field's own action.
    setDefaultButton(nullptr);

    showTheme(m_theme);
    selectGroup(PresetGroups().constFirst());
    connect(ThemeNotifier::instance(), &ThemeNotifier::themeChanged, this, &ThemeEditor::onThemeChanged);
}

ThemeEditor::~ThemeEditor() = default;

ThemeEditor *ThemeEditor::showEditor()
{
    if (!g_editor)
        g_editor = new ThemeEditor();
    g_editor->show();
    g_editor->raise();
    g_editor->activateWindow();
    return g_editor;
}

ThemeEditor *ThemeEditor::instance()
{
    return g_editor;
}

void ThemeEditor::setColorChooserForTesting(ColorChooser chooser)
{
    g_colorChooser = std::move(chooser);
}

QWidget *ThemeEditor::buildPresetColumn()
{
    auto *box = new QGroupBox(tr("Presets"), panel());
    auto *v = new QVBoxLayout(box);

    auto *lists = new QHBoxLayout;
    m_groups = new QListWidget(box);
    m_groups->setObjectName(QStringLiteral("lstFOLDERS"));
    m_groups->setAccessibleName(tr("Preset groups"));
    for (const QString &group : PresetGroups()) {
        auto *item = new QListWidgetItem(groupTitle(group), m_groups);
        item->setData(kFileRole, group);
    }
    m_groups->setFixedWidth(96);
    lists->addWidget(m_groups);

    m_presets = new QTreeWidget(box);
    m_presets->setObjectName(QStringLiteral("lvwPRESETS"));
    m_presets->setAccessibleName(tr("Presets of the group"));
    m_presets->setColumnCount(3);
    m_presets->setHeaderLabels({QString(), tr("Name"), tr("Size")});
    m_presets->setRootIsDecorated(false);
    m_presets->setUniformRowHeights(true);
    m_presets->setIconSize(QSize(44, 18));
    m_presets->header()->setStretchLastSection(false);
    m_presets->header()->setSectionResizeMode(SwatchColumn, QHeaderView::ResizeToContents);
    m_presets->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_presets->header()->setSectionResizeMode(SizeColumn, QHeaderView::ResizeToContents);
    m_presets->setMinimumSize(240, 220);
    lists->addWidget(m_presets, 1);
    v->addLayout(lists, 1);

    auto *deletes = new QHBoxLayout;
    m_delete = new QPushButton(tr("&Delete"), box);
    m_delete->setObjectName(QStringLiteral("btnDELETE"));
    m_delete->setToolTip(tr("Delete the selected preset"));
    m_deleteAll = new QPushButton(tr("Delete &All"), box);
    m_deleteAll->setObjectName(QStringLiteral("btnDELETEALL"));
    m_deleteAll->setToolTip(tr("Delete every preset of this group"));
    deletes->addStretch(1);
    deletes->addWidget(m_delete);
    deletes->addWidget(m_deleteAll);
    v->addLayout(deletes);

    auto *save = new QHBoxLayout;
    auto *nameLabel = new QLabel(tr("&Name:"), box);
    m_name = new QLineEdit(box);
    m_name->setObjectName(QStringLiteral("txtNAME"));
    m_name->setPlaceholderText(tr("Name of the new preset"));
    m_name->setMaxLength(80);
    nameLabel->setBuddy(m_name);
    auto *saveButton = new QPushButton(tr("&Save"), box);
    saveButton->setObjectName(QStringLiteral("btnSAVE"));
    saveButton->setToolTip(tr("Save the current values as a preset in the selected group"));
    save->addWidget(nameLabel);
    save->addWidget(m_name, 1);
    save->addWidget(saveButton);
    v->addLayout(save);

    m_status = new QLabel(box);
    m_status->setObjectName(QStringLiteral("lblSTATUS"));
    m_status->setWordWrap(true);
    v->addWidget(m_status);

    connect(m_groups, &QListWidget::currentRowChanged, this, [this] { refreshPresets(); });
    connect(m_presets, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *item) {
        if (item && !m_loading)
            applyPreset(item->data(NameColumn, kFileRole).toString());
    });
    // A click on the preset already selected applies it again (after edits).
    connect(m_presets, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item) {
        const QString file = item->data(NameColumn, kFileRole).toString();
        if (file == m_lastApplied && m_theme != m_appliedTheme)
            applyPreset(file);
    });
    connect(m_delete, &QPushButton::clicked, this, &ThemeEditor::deleteSelectedPreset);
    connect(m_deleteAll, &QPushButton::clicked, this, &ThemeEditor::deleteAllPresets);
    connect(saveButton, &QPushButton::clicked, this, &ThemeEditor::savePreset);
    connect(m_name, &QLineEdit::returnPressed, this, &ThemeEditor::savePreset);
    return box;
}

QWidget *ThemeEditor::buildValueColumn()
{
    auto *column = new QWidget(panel());
    auto *v = new QVBoxLayout(column);
    v->setContentsMargins(0, 0, 0, 0);

    m_preview = new ThemePreview(column);
    m_preview->setMinimumHeight(m_preview->sizeHint().height());
    v->addWidget(m_preview);
    m_contrastWarning = noteLabel(QStringLiteral("lblCONTRAST"), column);
    m_contrastWarning->setAccessibleName(tr("Contrast warning"));
    // The usual colours of a warning, fixed: it must stand out on any desktop scheme.
    m_contrastWarning->setStyleSheet(QStringLiteral("QLabel { background: #FFF4CE; color: #3D3000; border: 1px solid "
                                                    "#D9B44A; border-radius: 3px; padding: 4px; }"));
    v->addWidget(m_contrastWarning);

    auto *main = new QGroupBox(tr("Colour"), column);
    auto *mainGrid = new QGridLayout(main);
    m_mainColor = makeColorButton(QStringLiteral("btnMAINCOLOR"), tr("Main Colour"), &Theme::MainColor);
    mainGrid->addWidget(new QLabel(tr("Main colour:"), main), 0, 0);
    mainGrid->addWidget(m_mainColor, 0, 1, 1, 2);
    mainGrid->addWidget(new QLabel(tr("Opacity:"), main), 1, 0);
    QSpinBox *spin = nullptr;
    m_opacity = makeSliderRow(main, QStringLiteral("OPACITY"), 10, 255, &Theme::MainOpacity, &spin);
    mainGrid->addWidget(m_opacity, 1, 1);
    mainGrid->addWidget(spin, 1, 2);
    mainGrid->addWidget(new QLabel(tr("Contrast:"), main), 2, 0);
    m_contrast = makeSliderRow(main, QStringLiteral("CONTRAST"), 0, 255, &Theme::MainContrast, &spin);
    mainGrid->addWidget(m_contrast, 2, 1);
    mainGrid->addWidget(spin, 2, 2);
    v->addWidget(main);

    auto addArea = [&](const QString &title, const QString &tag, QFontComboBox **font, QSlider **angle,
                       QPushButton **colour, QString Theme::*fontField, int Theme::*angleField,
                       OleColor Theme::*colourField) {
        auto *box = new QGroupBox(title, column);
        auto *grid = new QGridLayout(box);
        *font = makeFontBox(QStringLiteral("cbo%1FONT").arg(tag), fontField);
        grid->addWidget(new QLabel(tr("Font:"), box), 0, 0);
        grid->addWidget(*font, 0, 1, 1, 2);
        auto *note = noteLabel(QStringLiteral("lbl%1FONTNOTE").arg(tag), box);
        note->setWordWrap(false);
        grid->addWidget(note, 3, 0, 1, 3);
        m_fontNotes.append({*font, note});
        QSpinBox *angleSpin = nullptr;
        *angle = makeSliderRow(box, tag + QStringLiteral("ANGLE"), 0, 360, angleField, &angleSpin);
        angleSpin->setSuffix(QStringLiteral("\u00B0"));
        grid->addWidget(new QLabel(tr("Gradient angle:"), box), 1, 0);
        grid->addWidget(*angle, 1, 1);
        grid->addWidget(angleSpin, 1, 2);
        *colour =
            makeColorButton(QStringLiteral("btn%1COLOR").arg(tag), title + tr(" Text Colour"), colourField);
        grid->addWidget(new QLabel(tr("Text colour:"), box), 2, 0);
        grid->addWidget(*colour, 2, 1, 1, 2);
        v->addWidget(box);
    };
    addArea(tr("Panel"), QStringLiteral("PANEL"), &m_panelFont, &m_panelAngle, &m_panelColor,
            &Theme::PanelFont, &Theme::PanelAngle, &Theme::PanelColor);
    addArea(tr("Bar"), QStringLiteral("BAR"), &m_barFont, &m_barAngle, &m_barColor, &Theme::BarFont,
            &Theme::BarAngle, &Theme::BarColor);

    auto *defaults = new QPushButton(tr("D&efault Theme"), column);
    defaults->setObjectName(QStringLiteral("btnDEFAULT"));
    defaults->setToolTip(tr("Go back to the program's own theme"));
    connect(defaults, &QPushButton::clicked, this, &ThemeEditor::useDefaultTheme);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(defaults);
    v->addLayout(row);
    v->addStretch(1);
    return column;
}

QPushButton *ThemeEditor::makeColorButton(const QString &name, const QString &title, OleColor Theme::*field)
{
    auto *button = new QPushButton(panel());
    button->setObjectName(name);
    button->setAccessibleName(title);
    button->setToolTip(tr("Choose the %1").arg(title.toLower()));
    connect(button, &QPushButton::clicked, this, [this, button, title, field] { chooseColor(button, title, field); });
    return button;
}

QSlider *ThemeEditor::makeSliderRow(QWidget *parent, const QString &name, int min, int max, int Theme::*field,
                                    QSpinBox **spinOut)
{
    auto *slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(QStringLiteral("hsb") + name);
    slider->setRange(min, max);
    slider->setPageStep(qMax(1, (max - min) / 10));
    auto *spin = new QSpinBox(parent);
    spin->setObjectName(QStringLiteral("txt") + name);
    spin->setRange(min, max);
    spin->setAccessibleName(name.toLower());
    slider->setAccessibleName(name.toLower());
    connect(slider, &QSlider::valueChanged, spin, &QSpinBox::setValue);
    connect(spin, &QSpinBox::valueChanged, slider, &QSlider::setValue);
    connect(slider, &QSlider::valueChanged, this, [this, field](int value) {
        if (m_loading || m_theme.*field == value)
            return;
        m_theme.*field = value;
        themeEdited();
    });
    *spinOut = spin;
    return slider;
}

QFontComboBox *ThemeEditor::makeFontBox(const QString &name, QString Theme::*field)
{
    auto *box = new QFontComboBox(panel());
    box->setObjectName(name);
    box->setAccessibleName(name);
    connect(box, &QFontComboBox::currentFontChanged, this, [this, field](const QFont &font) {
        if (m_loading || font.family().isEmpty() || m_theme.*field == font.family())
            return;
        m_theme.*field = font.family();
        themeEdited();
    });
    return box;
}

void ThemeEditor::showTheme(const Theme &theme)
{
    m_loading = true;
    m_theme = theme;
    updateColorButton(m_mainColor, theme.MainColor);
    updateColorButton(m_panelColor, theme.PanelColor);
    updateColorButton(m_barColor, theme.BarColor);
    m_opacity->setValue(theme.MainOpacity);
    m_contrast->setValue(theme.MainContrast);
    m_panelAngle->setValue(theme.PanelAngle);
    m_barAngle->setValue(theme.BarAngle);
    // Show the stored face even when this system lacks it (the box would show a substitute).
    for (auto [box, face] : {std::pair{m_panelFont, theme.PanelFont}, std::pair{m_barFont, theme.BarFont}}) {
        box->setCurrentFont(QFont(face));
        box->setEditText(face);
    }
    m_loading = false;
    showThemeQuality();
}

void ThemeEditor::themeEdited()
{
    SetCurrentTheme(m_theme); // live on every open window
    showThemeQuality();
}

void ThemeEditor::showThemeQuality()
{
    m_preview->setTheme(m_theme);
    const double panel = ContrastRatio(ResolveColor(m_theme.PanelColor), m_preview->panelBackground());
    const double bar = ContrastRatio(ResolveColor(m_theme.BarColor), m_preview->barBackground());
    QStringList problems;
    if (panel < kLeastContrast)
        problems << tr("panel text %1:1").arg(panel, 0, 'f', 1);
    if (bar < kLeastContrast)
        problems << tr("bar text %1:1").arg(bar, 0, 'f', 1);
    m_contrastWarning->setVisible(!problems.isEmpty());
    m_contrastWarning->setText(problems.isEmpty()
                                   ? QString()
                                   : QStringLiteral("\u26A0 ") +
                                         tr("Hard to read: %1. Text needs a contrast of 3:1 with its "
                                            "background at least; 4.5:1 reads comfortably.")
                                             .arg(problems.join(QStringLiteral(", "))));
    // A face missing here is kept in the theme (it may be there on another computer), but the
    // user should know what the widgets show instead.
    const QStringList installed = QFontDatabase::families();
    for (const auto &[box, note] : std::as_const(m_fontNotes)) {
        const QString wanted = box == m_panelFont ? m_theme.PanelFont : m_theme.BarFont;
        const QString drawn = QFontInfo(QFont(wanted)).family();
        const bool missing = !installed.contains(wanted, Qt::CaseInsensitive);
        note->setVisible(missing);
        note->setText(missing ? tr("\u201C%1\u201D is missing: drawn as %2").arg(wanted, drawn)
                              : QString());
    }
    // Notes that appear need room: the window grows rather than squeezing the controls.
    if (isVisible() && layout()) {
        layout()->activate();
        resize(size().expandedTo(sizeHint()));
    }
}

void ThemeEditor::useDefaultTheme()
{
    if (m_theme == Theme())
        return;
    if (!ConfirmDestructiveAction(tr("Default Theme"),
                                  tr("Put the program's own theme in place of the values shown? Values "
                                     "not saved as a preset are lost."),
                                  tr("Use Default"), this))
        return;
    m_lastApplied.clear();
    showTheme(Theme());
    themeEdited();
}

void ThemeEditor::onThemeChanged()
{
    // Someone else (an import, a reload) changed the theme: show its values.
    if (CurrentTheme() != m_theme)
        showTheme(CurrentTheme());
}

void ThemeEditor::chooseColor(QPushButton *button, const QString &title, OleColor Theme::*field)
{
    const QColor initial = ResolveColor(m_theme.*field);
    const QColor chosen =
        g_colorChooser ? g_colorChooser(initial, title) : QColorDialog::getColor(initial, this, title);
    if (!chosen.isValid())
        return; // cancelled
    m_theme.*field = ToOleColor(chosen);
    updateColorButton(button, m_theme.*field);
    themeEdited();
}

void ThemeEditor::updateColorButton(QPushButton *button, OleColor color)
{
    QPixmap pm(QSize(28, 14) * devicePixelRatioF());
    pm.setDevicePixelRatio(devicePixelRatioF());
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0, 0, 0, 90), 1));
    p.setBrush(ResolveColor(color));
    p.drawRoundedRect(QRectF(0.5, 0.5, 27, 13), 3, 3);
    p.end();
    button->setIcon(QIcon(pm));
    button->setIconSize(QSize(28, 14));
    button->setText(colorText(color));
}

QString ThemeEditor::selectedGroup() const
{
    const QListWidgetItem *item = m_groups->currentItem();
    return item ? item->data(kFileRole).toString() : QString::fromLatin1(kDefaultPresetGroup);
}

void ThemeEditor::selectGroup(const QString &group)
{
    const int row = PresetGroups().indexOf(group);
    if (row >= 0)
        m_groups->setCurrentRow(row);
    refreshPresets();
}

QString ThemeEditor::currentFileName() const
{
    const QTreeWidgetItem *item = m_presets->currentItem();
    return item ? item->data(NameColumn, kFileRole).toString() : QString();
}

void ThemeEditor::refreshPresets()
{
    const QString keep = currentFileName();
    m_loading = true;
    m_presets->clear();
    const QList<PresetListEntry> entries = ListPresets(selectedGroup(), m_theme);
    for (const PresetListEntry &e : entries) {
        auto *item = new QTreeWidgetItem(m_presets);
        item->setIcon(SwatchColumn, swatchIcon(e, devicePixelRatioF()));
        item->setText(NameColumn, e.caption);
        item->setData(NameColumn, kFileRole, e.fileName);
        item->setToolTip(NameColumn, e.fileName);
        item->setText(SizeColumn, e.sizeText);
        item->setTextAlignment(SizeColumn, Qt::AlignRight | Qt::AlignVCenter);
        if (e.fileName == keep)
            m_presets->setCurrentItem(item);
    }
    m_loading = false;
    m_delete->setEnabled(!entries.isEmpty());
    m_deleteAll->setEnabled(!entries.isEmpty());
}

void ThemeEditor::applyPreset(const QString &fileName)
{
    if (fileName.isEmpty())
        return;
    const QString path = PresetFilePath(selectedGroup(), fileName);
    if (!QFileInfo::exists(path)) {
        setStatus(tr("The preset \"%1\" is no longer there.").arg(fileName));
        refreshPresets();
        return;
    }
    m_lastApplied = fileName;
    showTheme(ReadPreset(path, m_theme));
    m_appliedTheme = m_theme;
    m_name->setText(QFileInfo(fileName).completeBaseName());
    setStatus(QString());
    themeEdited();
}

void ThemeEditor::savePreset()
{
    const QString name = m_name->text().trimmed();
    if (!name.isEmpty() && QFileInfo::exists(PresetFilePath(selectedGroup(), PresetFileNameFor(name))) &&
        !ConfirmDestructiveAction(tr("Replace Preset"),
                                  tr("The group \"%1\" already has a preset named \"%2\". Replace it with "
                                     "the values shown?")
                                      .arg(groupTitle(selectedGroup()), name),
                                  tr("Replace"), this))
        return;
    QString path;
    QString error;
    switch (SavePreset(selectedGroup(), m_name->text(), m_theme, &path, &error)) {
    case SavePresetResult::NoName:
        m_name->setFocus();
        return;
    case SavePresetResult::WriteFailed:
        setStatus(tr("The preset could not be saved to %1 (%2). Any preset of that name is kept as it "
                     "was.")
                      .arg(QDir::toNativeSeparators(QFileInfo(path).absolutePath()), error));
        return;
    case SavePresetResult::Saved:
        break;
    }
    setStatus(tr("Saved \"%1\".").arg(m_name->text().trimmed()));
    m_loading = true;
    refreshPresets();
    const QString fileName = QFileInfo(path).fileName();
    for (int i = 0; i < m_presets->topLevelItemCount(); ++i) {
        if (m_presets->topLevelItem(i)->data(NameColumn, kFileRole).toString() == fileName)
            m_presets->setCurrentItem(m_presets->topLevelItem(i));
    }
    m_lastApplied = fileName;
    m_loading = false;
}

void ThemeEditor::deleteSelectedPreset()
{
    const QString fileName = currentFileName();
    if (fileName.isEmpty())
        return;
    const QString caption = m_presets->currentItem()->text(NameColumn);
    if (!ConfirmDestructiveAction(tr("Delete Preset"),
                                  tr("Delete the preset \"%1\" of the group \"%2\"? This cannot be undone.")
                                      .arg(caption, groupTitle(selectedGroup())),
                                  tr("Delete"), this))
        return;
    if (!DeletePreset(selectedGroup(), fileName))
        setStatus(tr("\"%1\" could not be deleted.").arg(fileName));
    else
        setStatus(QString());
    refreshPresets();
}

void ThemeEditor::deleteAllPresets()
{
    const int count = m_presets->topLevelItemCount();
    if (count == 0)
        return;
    const QString question =
        tr("Delete all %n preset(s) of the group \"%1\"? This cannot be undone.", nullptr, count)
            .arg(groupTitle(selectedGroup()));
    if (!ConfirmDestructiveAction(tr("Delete All Presets"), question, tr("Delete All"), this))
        return;
    DeleteAllPresets(selectedGroup());
    setStatus(QString());
    refreshPresets();
}

void ThemeEditor::setStatus(const QString &text)
{
    m_status->setText(text);
}

void ThemeEditor::done(int result)
{
    // The settings get the theme just before the editor's position is saved.
    SaveThemeToRegistry();
    ThemedDialog::done(result);
    LoadThemeFromRegistry();
}
