#pragma once

#include "themes/themed_dialog.h"

class QLabel;
class QLineEdit;
class WebcamCatalogue;

// Adds a camera of the user's own to the viewer's list, or changes one: a name and the address
// of a still picture (JPEG or PNG). OK stores it at once; a problem is shown in the dialog and
// nothing is stored until it is put right.
class WebcamCameraDialog : public ThemedDialog
{
    Q_OBJECT
public:
    // `editing` is the name of the camera to change, or empty to add a new one.
    WebcamCameraDialog(WebcamCatalogue *catalogue, const QString &editing, QWidget *parent = nullptr);

    // The name the camera was stored under, after OK.
    QString storedName() const { return m_storedName; }

private:
    void store();

    WebcamCatalogue *m_catalogue;
    QString m_editing;
    QString m_storedName;
    QLineEdit *m_name;
    QLineEdit *m_address;
    QLabel *m_problem;
};
