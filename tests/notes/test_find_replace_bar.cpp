#include "core/settings_store.h"
#include "notes/find_replace_bar.h"
#include "support/test_home.h"

#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>
#include <memory>

namespace {
QComboBox *box(QObject *bar, const char *name)
{
    return bar->findChild<QComboBox *>(QLatin1String(name));
}

QString storedEntry(const QString &list, int k)
{
    return ReadSetting(Hive::CurrentUser, SettingsRoot() + list + QStringLiteral("\\Details"),
                       QStringLiteral("List %1").arg(k), QString());
}
} // namespace

class TestFindReplaceBar : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void historiesSurvive();
    void stepsThroughMatches_data();
    void stepsThroughMatches();
    void escapeHidesAndReturnsFocus();
    void tabOrder_data();
    void tabOrder();
    void typedReplacementReplacesAll();

private:
    // The editor and the bar in one shown, active window; the bar in replace or find mode.
    QWidget *showInWindow(bool replace);

    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<QTextEdit> m_editor;
    std::unique_ptr<FindReplaceBar> m_bar;
};

void TestFindReplaceBar::init()
{
    m_home = std::make_unique<TestHome>();
    m_editor = std::make_unique<QTextEdit>();
    m_bar = std::make_unique<FindReplaceBar>();
    m_bar->setEditor(m_editor.get());
}

void TestFindReplaceBar::cleanup()
{
    m_window.reset();
    m_bar.reset();
    m_editor.reset();
    m_home.reset();
}

void TestFindReplaceBar::historiesSurvive()
{
    m_editor->setPlainText(QStringLiteral("alpha gamma"));
    for (const char *text : {"gamma", "alpha"}) {
        box(m_bar.get(), "cboFIND")->setEditText(QLatin1String(text));
        m_bar->findNext();
    }
    box(m_bar.get(), "cboREPLACE")->setEditText(QStringLiteral("beta"));
    m_bar->replaceAll();
    m_bar.reset(); // saves

    QCOMPARE(storedEntry(QStringLiteral("fnte_IDX\\Find"), 1), QStringLiteral("alpha"));
    QCOMPARE(storedEntry(QStringLiteral("fnte_IDX\\Replace"), 1), QStringLiteral("beta"));
    FindReplaceBar again;
    QComboBox *find = box(&again, "cboFIND");
    QCOMPARE(find->count(), 2);
    QCOMPARE(find->itemText(0), QStringLiteral("alpha"));
    QCOMPARE(find->itemText(1), QStringLiteral("gamma"));
    QCOMPARE(box(&again, "cboREPLACE")->itemText(0), QStringLiteral("beta"));
}

void TestFindReplaceBar::stepsThroughMatches_data()
{
    QTest::addColumn<QString>("steps"); // n/p: findNext/findPrevious, E/S: Enter/Shift+Enter in the box
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("status");

    // "one two one two": "two" at 4 and 12.
    QTest::newRow("first") << "n" << 4 << "";
    QTest::newRow("second") << "nn" << 12 << "";
    QTest::newRow("wraps to the top") << "nnn" << 4 << "Wrapped to the top.";
    QTest::newRow("back from the second") << "nnp" << 4 << "";
    QTest::newRow("back wraps to the bottom") << "np" << 12 << "Wrapped to the bottom.";
    QTest::newRow("enter keys") << "EES" << 4 << "";
}

void TestFindReplaceBar::stepsThroughMatches()
{
    QFETCH(QString, steps);
    QFETCH(int, start);
    QFETCH(QString, status);
    m_editor->setPlainText(QStringLiteral("one two one two"));
    QLineEdit *field = box(m_bar.get(), "cboFIND")->lineEdit();
    field->setText(QStringLiteral("two"));
    for (QChar step : steps) {
        if (step == QLatin1Char('n'))
            m_bar->findNext();
        else if (step == QLatin1Char('p'))
            m_bar->findPrevious();
        else
            QTest::keyClick(box(m_bar.get(), "cboFIND"), Qt::Key_Return,
                            step == QLatin1Char('S') ? Qt::ShiftModifier : Qt::NoModifier);
    }
    QCOMPARE(m_editor->textCursor().selectionStart(), start);
    QCOMPARE(m_editor->textCursor().selectedText(), QStringLiteral("two"));
    QCOMPARE(m_bar->statusText(), status);
}

void TestFindReplaceBar::escapeHidesAndReturnsFocus()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    QTextEdit *editor = m_editor.release();
    FindReplaceBar *bar = m_bar.release();
    layout->addWidget(editor);
    layout->addWidget(bar);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    bar->showReplace();
    QVERIFY(box(bar, "cboREPLACE")->isVisible());
    QSignalSpy closed(bar, &FindReplaceBar::closed);
    QTest::keyClick(box(bar, "cboFIND")->lineEdit(), Qt::Key_Escape);
    QCOMPARE(closed.count(), 1);
    QVERIFY(!bar->isVisible());
    QVERIFY(editor->hasFocus());
}

QWidget *TestFindReplaceBar::showInWindow(bool replace)
{
    m_window = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(m_window.get());
    layout->addWidget(m_editor.release());
    FindReplaceBar *bar = m_bar.release();
    layout->addWidget(bar);
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
    if (!QTest::qWaitForWindowActive(m_window.get()))
        return nullptr;
    if (replace)
        bar->showReplace();
    else
        bar->showFind();
    return bar;
}

void TestFindReplaceBar::tabOrder_data()
{
    QTest::addColumn<bool>("replace");
    QTest::addColumn<int>("tabs");
    QTest::addColumn<QString>("focused");
    QTest::newRow("replace: Tab reaches the replace box") << true << 1 << "cboREPLACE";
    QTest::newRow("replace: then the find buttons") << true << 2 << "btnFINDNEXT";
    QTest::newRow("replace: then the replace buttons") << true << 4 << "btnREPLACE";
    QTest::newRow("replace: Replace All") << true << 5 << "btnREPLACEALL";
    QTest::newRow("find: the hidden replace box is skipped") << false << 1 << "btnFINDNEXT";
    QTest::newRow("find: the hidden replace buttons are skipped") << false << 3 << "chkMATCHCASE";
}

void TestFindReplaceBar::tabOrder()
{
    QFETCH(bool, replace);
    QFETCH(int, tabs);
    QFETCH(QString, focused);
    m_editor->setPlainText(QStringLiteral("one two"));
    QWidget *bar = showInWindow(replace);
    QVERIFY(bar);
    // The buttons take the focus once there is something to find.
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("one"));
    for (int i = 0; i < tabs; ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    auto *expected = bar->findChild<QWidget *>(focused);
    QVERIFY(expected);
    QWidget *focus = QApplication::focusWidget();
    QVERIFY2(focus == expected || expected->isAncestorOf(focus),
             qPrintable(focus ? focus->objectName() + u'/' + focus->metaObject()->className() : QStringLiteral("none")));
}

// What a user types: the search, Tab, the replacement, then Replace All.
void TestFindReplaceBar::typedReplacementReplacesAll()
{
    QTextEdit *editor = m_editor.get();
    editor->setPlainText(QStringLiteral("cat and cat"));
    QWidget *bar = showInWindow(true);
    QVERIFY(bar);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("cat"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("dog"));
    QCOMPARE(box(bar, "cboFIND")->currentText(), QStringLiteral("cat"));
    bar->findChild<QPushButton *>(QStringLiteral("btnREPLACEALL"))->click();
    QCOMPARE(editor->toPlainText(), QStringLiteral("dog and dog"));
}

QTEST_MAIN(TestFindReplaceBar)
#include "test_find_replace_bar.moc"
