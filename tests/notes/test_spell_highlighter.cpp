#include "core/app_paths.h"
#include "notes/page_box.h"
#include "notes/spell_checker.h"
#include "notes/spell_highlighter.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include <memory>

namespace {

// The underlined words of the page, in order.
QStringList underlined(const PageBox &page)
{
    QStringList words;
    for (QTextBlock block = page.document()->begin(); block.isValid(); block = block.next()) {
        for (const QTextLayout::FormatRange &range : block.layout()->formats()) {
            if (range.format.underlineStyle() == QTextCharFormat::WaveUnderline)
                words.append(block.text().mid(range.start, range.length));
        }
    }
    return words;
}

bool waitIdle(const PageBox &page)
{
    return QTest::qWaitFor([&page] { return page.spellHighlighter()->isIdle(); });
}

} // namespace

// Red underlines while typing: which words get them, when, and that they never touch the
// document itself.
class TestSpellHighlighter : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void theWordBeingTypedWaitsForTheCaret();
    void underlinesLeaveTheDocumentAlone();
    void ignoringAndAddingClearUnderlines();

private:
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<SpellChecker> m_checker;
    std::unique_ptr<PageBox> m_page;
};

void TestSpellHighlighter::initTestCase()
{
    m_home = std::make_unique<TestHome>();
    QDir().mkpath(AppPaths::dataPath(QStringLiteral("notes")));
    QFile file(AppPaths::dataPath(QStringLiteral("notes/wordsus.dct")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("the\r\nquick\r\nbrown\r\nfox\r\nand\r\n");
}

void TestSpellHighlighter::init()
{
    m_checker = std::make_unique<SpellChecker>();
    m_checker->DatabaseLoadCheck();
    m_page = std::make_unique<PageBox>();
    m_page->setSpellChecker(m_checker.get());
    m_page->resize(500, 300);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
}

void TestSpellHighlighter::cleanup()
{
    m_page.reset();
    m_checker.reset();
}

void TestSpellHighlighter::theWordBeingTypedWaitsForTheCaret()
{
    QTest::keyClicks(m_page.get(), QStringLiteral("the quikc brwn fox"));
    QCOMPARE(underlined(*m_page), (QStringList{"quikc", "brwn"}));
    QTest::keyClicks(m_page.get(), QStringLiteral(" jmups"));
    QCOMPARE(underlined(*m_page), (QStringList{"quikc", "brwn"}));
    QTest::keyClick(m_page.get(), Qt::Key_Home);
    QCOMPARE(underlined(*m_page), (QStringList{"quikc", "brwn", "jmups"}));

    // Mending a word in place: the underline goes as soon as the word is right.
    QTest::keyClick(m_page.get(), Qt::Key_Right, Qt::NoModifier);
    for (int i = 0; i < 8; ++i)
        QTest::keyClick(m_page.get(), Qt::Key_Right);
    QTest::keyClick(m_page.get(), Qt::Key_Backspace);
    QTest::keyClick(m_page.get(), Qt::Key_Backspace);
    QTest::keyClicks(m_page.get(), QStringLiteral("ck"));
    QCOMPARE(underlined(*m_page), (QStringList{"brwn", "jmups"}));
}

void TestSpellHighlighter::underlinesLeaveTheDocumentAlone()
{
    QTextDocument *document = m_page->document();
    document->setPlainText(QStringLiteral("teh quick fxo\nand brwn"));
    document->setModified(false);
    QSignalSpy changed(m_page.get(), &QTextEdit::textChanged);
    const int undoSteps = document->availableUndoSteps();
    m_checker->ignoreAll(QStringLiteral("teh"));
    QVERIFY(waitIdle(*m_page));
    QCOMPARE(underlined(*m_page), (QStringList{"fxo", "brwn"}));
    QCOMPARE(changed.count(), 0);
    QVERIFY(!document->isModified());
    QCOMPARE(document->availableUndoSteps(), undoSteps);
    QCOMPARE(document->toPlainText(), QStringLiteral("teh quick fxo\nand brwn"));
}

void TestSpellHighlighter::ignoringAndAddingClearUnderlines()
{
    m_page->setPlainText(QStringLiteral("fxo and brwn, fxo"));
    QVERIFY(waitIdle(*m_page));
    QCOMPARE(underlined(*m_page), (QStringList{"fxo", "brwn", "fxo"}));
    CutWord word;
    QVERIFY(m_page->spellHighlighter()->misspeltWordAt(9, &word));
    QCOMPARE(word.text, QStringLiteral("brwn"));
    QVERIFY(!m_page->spellHighlighter()->misspeltWordAt(5, &word));

    m_checker->ignoreAll(QStringLiteral("fxo"));
    QVERIFY(waitIdle(*m_page));
    QCOMPARE(underlined(*m_page), QStringList{"brwn"});
    m_checker->addWord(QStringLiteral("brwn"));
    QVERIFY(waitIdle(*m_page));
    QCOMPARE(underlined(*m_page), QStringList{});
}

QTEST_MAIN(TestSpellHighlighter)
#include "test_spell_highlighter.moc"
