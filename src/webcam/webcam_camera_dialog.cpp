#include "webcam/webcam_camera_dialog.h"

#include "webcam/webcam_catalogue.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

WebcamCameraDialog::WebcamCameraDialog(WebcamCatalogue *catalogue, const QString &editing, QWidget *parent)
    : ThemedDialog(QStringLiteral("mdb_WCM_CAM"), editing.isEmpty() ? tr("Add a Camera") : tr("Change a Camera"),
                   parent)
    , m_catalogue(catalogue)
    , m_editing(editing)
    , m_name(new QLineEdit)
    , m_address(new QLineEdit)
    , m_problem(new QLabel)
{
    m_name->setObjectName(QStringLiteral("txtNAME"));
    m_address->setObjectName(QStringLiteral("txtADDRESS"));
    m_problem->setObjectName(QStringLiteral("lblPROBLEM"));
    m_name->setPlaceholderText(tr("Country - Place (kind)"));
    m_address->setPlaceholderText(tr("https://example.org/camera/current.jpg"));
    m_address->setMinimumWidth(m_address->fontMetrics().averageCharWidth() * 48);
    m_address->setToolTip(tr("The address of the camera's still picture, a JPEG or PNG file, not of its web page"));
    if (const WebcamCamera *camera = catalogue->find(editing)) {
        m_name->setText(camera->name);
        m_address->setText(camera->address);
    }
    m_problem->setWordWrap(true);

    auto *form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    form->addRow(tr("Picture &address:"), m_address);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("btnOK"));
    auto *layout = new QVBoxLayout;
    layout->addLayout(form);
    layout->addWidget(m_problem);
    layout->addWidget(buttons);
    setPanelLayout(layout);
    setDefaultButton(buttons->button(QDialogButtonBox::Ok));

    connect(buttons, &QDialogButtonBox::accepted, this, &WebcamCameraDialog::store);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void WebcamCameraDialog::store()
{
    QString error;
    const bool stored = m_editing.isEmpty() ? m_catalogue->addOwn(m_name->text(), m_address->text(), &error)
                                            : m_catalogue->replaceOwn(m_editing, m_name->text(), m_address->text(), &error);
    if (!stored) {
        m_problem->setText(error);
        return;
    }
    m_storedName = m_name->text().trimmed();
    accept();
}
