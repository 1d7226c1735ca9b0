#pragma once

#include <QTextEdit>

// rtbPAGEBOX, the rich-text box that fills a document window. Beyond QTextEdit it pastes and
// drops pictures as embedded pictures, copies and pastes rich text as RTF (so pictures travel
// between documents and to other programs), and hands dropped document files to the editor.
class PageBox : public QTextEdit
{
    Q_OBJECT
public:
    explicit PageBox(QWidget *parent = nullptr);

    // Plain-text documents take no formatting and no pictures.
    void setPlainTextOnly(bool plain);
    bool isPlainTextOnly() const { return m_plainOnly; }

signals:
    // Files dropped on the page that are not pictures (the editor opens them).
    void filesDropped(const QStringList &paths);

protected:
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    bool insertRichText(const QByteArray &rtf);
    bool insertPictureFiles(const QList<QUrl> &urls);

    bool m_plainOnly = false;
};
