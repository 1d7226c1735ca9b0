#include "themes/message_catalog.h"

#include <array>

namespace {

struct InfoEntry
{
    const char *title;
    const char *text;
};

// Messages 1 to 12; number 8 has no entry.
constexpr std::array<InfoEntry, 12> kInfo = {{
    {"The Spell Checking Now Been Completed",
     "Your page has been fully checked. It is always a good idea to proof yourself too."},
    {"Searching Has Now Been Completed", "All references have been found for "},
    {"There Are No Updates Available as Yet",
     "If you are in need of updates due to bugs or whatever then let me know."},
    {"Time Has Now Ended", " "},
    {"Printing Can Not Be Achieved on Your Computer",
     "Please make sure you have a printer installed. This can be done via the Windows Control Panel."},
    {"There Is a Problem When Trying to Print",
     "You have either nothing selected correctly or your file is empty. Please try again."},
    {"There Is a Problem Saving the Existing File",
     "A new file will be made. Please check if your previous file is damaged or missing."},
    {nullptr, nullptr},
    {"A New Folder Location Was Chosen", "A Whiteboard folder already exists in "},
    {"Your Folder Location Has Been Changed",
     "You should now restart to use the new location as soon as you can."},
    {"Toolbox Compression Is Now Complete", "Compression of the files has now been completed."},
    {"Saving of Your File Has NOT Been Completed", "You need to set a name before saving."},
}};

} // namespace

QString RunningVersionText()
{
    return QStringLiteral("%1.%2.%3")
        .arg(VANTORA_VERSION_MAJOR)
        .arg(VANTORA_VERSION_MINOR)
        .arg(VANTORA_VERSION_PATCH);
}

bool InfoMessageContent(int number, const QString &extraText, MessageContent *content)
{
    const int index = number - 1;
    if (index < 0 || index >= int(kInfo.size()) || !kInfo[index].title)
        return false;
    content->title = QString::fromLatin1(kInfo[index].title);
    content->text = QString::fromLatin1(kInfo[index].text);
    if (number == 2)
        content->text += extraText;
    else if (number == 9)
        content->text += extraText + QStringLiteral(" and shall now be used.");
    content->bar = MessageBar::Close;
    content->yesCaption = content->noCaption = content->cancelCaption = QString();
    content->warning = number == 12;
    return true;
}

bool QuestionContent(int number, const QString &, MessageContent *content)
{
    MessageContent c;
    switch (number) {
    case 1:
        c.title = QStringLiteral("You Can Now Download a Newer Version");
        c.text = QStringLiteral("The changes can be found on the website. These include new features, great "
                                "improvements to functionality and speed as well as UI Tweaks and fixes.") +
                 QStringLiteral("\r\n") + QStringLiteral("Your current version: ") + RunningVersionText();
        c.bar = MessageBar::YesNo;
        c.yesCaption = QStringLiteral("&Download");
        c.noCaption = QStringLiteral("&Ignore");
        break;
    case 2:
        c.title = QStringLiteral("There Are Unsaved Changes");
        c.text = QStringLiteral("Do you wish to save before you close? You may lose important changes if you "
                                "proceed without saving.");
        c.bar = MessageBar::YesNoCancel;
        c.cancelCaption = QStringLiteral("Cancel");
        c.yesCaption = QStringLiteral("&Save");
        c.noCaption = QStringLiteral("&Do not save");
        break;
    case 4:
        c.title = QStringLiteral("Are you sure you want to delete the board?");
        c.text = QStringLiteral("Pressing delete will clear the screen and delete the existing board.");
        c.bar = MessageBar::YesNo;
        c.yesCaption = QStringLiteral("&Delete");
        c.noCaption = QStringLiteral("&Cancel");
        c.noIsDefault = true; // a stray Enter must not delete the board
        break;
    default:
        return false;
    }
    *content = c;
    return true;
}
