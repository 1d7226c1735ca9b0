#include "shell/wizard_dialog.h"

#include "core/settings_store.h"
#include "core/widget_index.h"
#include "shell/program_settings_model.h"
#include "shell/startup_decisions.h"
#include "shell/widget_registry.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

struct Option
{
    int index;
    const char *caption;
};

// The caption of each single widget (its access key is unique in the wizard). Which of them
// are offered is the widget registry's to say.
constexpr Option kSingleOptions[] = {
    {0, "A&larm Clock"}, {1, "&Calculator"}, {2, "Calen&dar"},   {3, "No&tes"},
    {4, "St&opwatch"},   {5, "Ti&mer"},      {6, "&Whiteboard"}, {7, "Weat&her"},
};

} // namespace

WizardDialog::WizardDialog(QWidget *parent)
    : ThemedDialog(QStringLiteral("msg_WIZ"), QStringLiteral("Vantora Wizard Setup"), parent)
{
    auto *layout = new QVBoxLayout;
    layout->setSpacing(12);

    auto *intro =
        new QLabel(QStringLiteral("Before you start using Vantora, you first have to choose what you want it "
                                  "to do as a default. Do not "
                                  "worry, you can change these settings from the dashboard at any time."));
    intro->setObjectName(QStringLiteral("lblDESCRIPTION"));
    intro->setWordWrap(true);
    layout->addWidget(intro);

    auto *group = new QButtonGroup(this);
    auto *all = new QGroupBox(QStringLiteral("All Widgets: Use many apps via the Dashboard"));
    all->setObjectName(QStringLiteral("fraALL"));
    auto *allLayout = new QVBoxLayout(all);
    QRadioButton *useAll = addOption(WidgetAll, QStringLiteral("Use &all Widgets"));
    group->addButton(useAll, WidgetAll);
    allLayout->addWidget(useAll);
    layout->addWidget(all);

    // Only widgets this build can open are offered, in two columns in widget order: choosing
    // one that is missing would silently end on the dashboard.
    QList<const Option *> offered;
    for (const Option &o : kSingleOptions) {
        if (WidgetRegistry::instance().isAvailable(o.index))
            offered.append(&o);
    }
    auto *single = new QGroupBox(QStringLiteral("Individual Widgets: - Use just one widget"));
    single->setObjectName(QStringLiteral("fraSINGLE"));
    auto *grid = new QGridLayout(single);
    const int rows = (int(offered.size()) + 1) / 2;
    for (int n = 0; n < offered.size(); ++n) {
        QRadioButton *option = addOption(offered[n]->index, QString::fromLatin1(offered[n]->caption));
        group->addButton(option, offered[n]->index);
        grid->addWidget(option, n % rows, n / rows);
    }
    layout->addWidget(single);
    if (offered.isEmpty())
        single->hide();

    m_launch = new QCheckBox(QStringLiteral("Start Vantora when I log &in"));
    m_launch->setObjectName(QStringLiteral("chkLAUNCH"));
    m_launch->setToolTip(QStringLiteral("Vantora starts by itself with your desktop session; you can "
                                        "change this later in the program settings"));
    m_launch->setChecked(ProgramSettingsModel::load().launchWithSystem);
    layout->addWidget(m_launch);

    auto *start = new QPushButton(QStringLiteral("&Start"));
    start->setObjectName(QStringLiteral("btnStart"));
    setDefaultButton(start);
    start->setToolTip(QStringLiteral("Keep this choice and start Vantora with it"));
    connect(start, &QPushButton::clicked, this, &WizardDialog::start);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(start);
    layout->addLayout(buttons);
    setPanelLayout(layout);

    connect(group, &QButtonGroup::idClicked, this, [this](int index) { m_choice = index; });
    setChoice(ReadIntDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), WidgetAll));
}

QRadioButton *WizardDialog::addOption(int index, const QString &caption)
{
    auto *option = new QRadioButton(caption);
    option->setObjectName(QStringLiteral("optUSE_%1").arg(index));
    if (index < WidgetCount)
        option->setToolTip(QStringLiteral("Start with the %1 alone; the dashboard stays in the tray")
                               .arg(WidgetDisplayName(index)));
    else
        option->setToolTip(QStringLiteral("Start with the dashboard and open widgets from it"));
    return option;
}

void WizardDialog::setChoice(int choice)
{
    // A stored value without an option of its own (9 and above act as all widgets; a first run
    // has none) selects all widgets.
    auto *option = findChild<QRadioButton *>(QStringLiteral("optUSE_%1").arg(choice));
    if (!option) {
        choice = WidgetAll;
        option = findChild<QRadioButton *>(QStringLiteral("optUSE_8"));
    }
    m_choice = choice;
    option->setChecked(true);
}

void WizardDialog::start()
{
    StartupDecisions::writeProgramChoice(m_choice);
    ProgramSettingsModel::setLaunchWithSystem(m_launch->isChecked());
    accept();
    emit started(m_choice);
}
