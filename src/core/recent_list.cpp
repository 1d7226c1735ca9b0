#include "core/recent_list.h"

#include "core/settings_store.h"

#include <QApplication>
#include <QComboBox>

namespace {

// The hourglass for as long as a list is being rebuilt.
class WaitCursor
{
public:
    WaitCursor() : m_shown(qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr)
    {
        if (m_shown)
            QApplication::setOverrideCursor(Qt::WaitCursor);
    }
    ~WaitCursor()
    {
        if (m_shown)
            QApplication::restoreOverrideCursor();
    }
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;

private:
    bool m_shown;
};

QString totalKey(const QString &name)
{
    return SettingsRoot() + name + QStringLiteral("\\Items Total");
}

QString entryName(int k)
{
    return QStringLiteral("List ") + QString::number(k);
}

const QString kTotal = QStringLiteral("List Total");

} // namespace

void AddRecentItem(QComboBox *list, const QString &text)
{
    if (!list || text.isEmpty())
        return;
    WaitCursor wait;
    const bool updates = list->updatesEnabled();
    list->setUpdatesEnabled(false);
    for (int i = list->count() - 1; i >= 0; --i) {
        if (list->itemText(i) == text)
            list->removeItem(i);
    }
    list->insertItem(0, text);
    list->setCurrentIndex(0);
    if (list->isEditable())
        list->setEditText(text);
    list->setUpdatesEnabled(updates);
}

void SaveList(QComboBox *list, const QString &name)
{
    if (!list)
        return;
    const int n = list->count();
    WriteSetting(Hive::CurrentUser, totalKey(name), kTotal, QString::number(n));
    const QString details = DetailsKey(name);
    WriteSetting(Hive::CurrentUser, details, entryName(0), TrimBlanks(list->currentText()));
    for (int k = 1; k <= n; ++k)
        WriteSetting(Hive::CurrentUser, details, entryName(k), TrimBlanks(list->itemText(k - 1)));
}

void RestoreList(QComboBox *list, const QString &name)
{
    if (!list)
        return;
    WaitCursor wait;
    bool ok = false;
    const int n =
        SettingToInt(ReadSetting(Hive::CurrentUser, totalKey(name), kTotal, QStringLiteral("0")), &ok);
    if (!ok || n > kLongestRecentList)
        return;
    const QString details = DetailsKey(name);
    for (int k = n; k >= 1; --k) {
        const QString text = ReadSetting(Hive::CurrentUser, details, entryName(k), QString());
        if (!text.isEmpty())
            AddRecentItem(list, text);
    }
}
