#include "gui/editor/CodeEditor.h"
#include "gui/editor/TemplateEditor.h"
#include "gui/editor/XmlHighlighter.h"
#include "gui/preview/PageView.h"
#include "reports/ReportLayout.h"
#include "reports/TemplateReader.h"
#include "support/Files.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

using namespace Qt::StringLiterals;

namespace {
// Line 5 holds the heading's memo.
const QString Template = uR"(<?xml version="1.0" encoding="utf-8"?>
<TfrxReport Version="6.9.3" ReportOptions.Name="Próba">
  <TfrxReportPage Name="Page1">
    <TfrxReportTitle Name="ReportTitle1" Top="20" Height="30" Width="718">
      <TfrxMemoView Name="Memo1" Width="400" Height="20" Text="Zestawienie stada"/>
    </TfrxReportTitle>
  </TfrxReportPage>
</TfrxReport>
)"_s;

// Answers every question with `answer` and keeps what the editor said.
class RecordingEditor : public TemplateEditor {
public:
    RecordingEditor(const QString& path, Preview preview) : TemplateEditor(path, std::move(preview))
    {
        setPreviewDelay(10);
    }

    QMessageBox::StandardButton answer = QMessageBox::Yes;
    QStringList messages;
    QStringList questions;

protected:
    void showMessage(const QString& message) override { messages.append(message); }
    QMessageBox::StandardButton ask(const QString& question, QMessageBox::StandardButtons) override
    {
        questions.append(question);
        return answer;
    }
};
} // namespace

class TestTemplateEditor : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir_; // a fresh one for each test
    int previewCalls_ = 0;

    QString templateFile(const QString& name = u"próba.fr3"_s, const QString& text = Template)
    {
        const QString path = dir_->filePath(name);
        WriteAll(path, text.toUtf8());
        return path;
    }

    TemplateEditor::Preview preview()
    {
        return [this](const ReportTemplate& report) {
            ++previewCalls_;
            return PrepareReport(report, {}, QDateTime(QDate(2024, 3, 1), QTime(8, 0)));
        };
    }

    static QStringList previewTexts(const TemplateEditor& editor)
    {
        const PreparedReport* report = editor.findChild<PageView*>()->report();
        return report ? report->pageTexts(0) : QStringList();
    }

    static QString errorText(const TemplateEditor& editor) { return editor.findChild<QLabel*>(u"lbError"_s)->text(); }

private Q_SLOTS:
    void init()
    {
        dir_ = std::make_unique<QTemporaryDir>();
        previewCalls_ = 0;
    }

    void opensWithTheFileAndItsPreview()
    {
        RecordingEditor editor(templateFile(), preview());
        QCOMPARE(editor.objectName(), u"TemplateEditor"_s);
        QVERIFY(editor.windowTitle().startsWith(u"Projektowanie szablonu - próba.fr3"_s));
        QCOMPARE(editor.text(), Template);
        QVERIFY(!editor.isModified());
        QCOMPARE(previewCalls_, 1);
        QVERIFY(previewTexts(editor).contains(u"Zestawienie stada"_s));
        QCOMPARE(editor.findChild<QLabel*>(u"lbPages"_s)->text(), u"Stron: 1"_s);
        QVERIFY(errorText(editor).isEmpty());
    }

    void anOldFileWithWindows1250BytesOpensReadable()
    {
        const QString path = dir_->filePath(u"stary.fr3"_s);
        WriteAll(path, Template.toUtf8().replace("stada", "kr\xF3w"));
        RecordingEditor editor(path, preview());
        QVERIFY(editor.text().contains(u"Zestawienie krów"_s));
        QVERIFY(editor.text().contains(u"Próba"_s));
    }

    void editingLaysTheTemplateOutAgainAfterThePause()
    {
        RecordingEditor editor(templateFile(), preview());
        editor.setPreviewDelay(100);
        editor.setText(QString(Template).replace(u"Zestawienie stada"_s, u"Stado w grupach"_s));
        QVERIFY(editor.isModified());
        QVERIFY(editor.isWindowModified());
        QCOMPARE(previewCalls_, 1);
        QTRY_VERIFY(previewTexts(editor).contains(u"Stado w grupach"_s));
        QCOMPARE(previewCalls_, 2);
    }

    void aBrokenEditNamesItsLineAndKeepsTheLastGoodPages()
    {
        RecordingEditor editor(templateFile(), preview());
        editor.setText(QString(Template).replace(u"stada\"/>"_s, u"stada\"//>"_s));
        QTRY_VERIFY(!errorText(editor).isEmpty());
        QVERIFY2(errorText(editor).contains(u"wiersz 5"_s), qPrintable(errorText(editor)));
        QCOMPARE(editor.findChild<CodeEditor*>()->errorLine(), 5);
        QVERIFY(previewTexts(editor).contains(u"Zestawienie stada"_s));

        editor.setText(Template);
        QTRY_VERIFY(errorText(editor).isEmpty());
        QCOMPARE(editor.findChild<CodeEditor*>()->errorLine(), 0);
    }

    void aFailingPreviewShowsItsMessage()
    {
        RecordingEditor editor(templateFile(), [](const ReportTemplate&) -> PreparedReport {
            throw HalvarnError(u"Brak danych do wydruku"_s);
        });
        QCOMPARE(errorText(editor), u"Brak danych do wydruku"_s);
    }

    void saveKeepsThePreviousVersion()
    {
        const QString path = templateFile();
        RecordingEditor editor(path, preview());
        const QString first = QString(Template).replace(u"stada"_s, u"stada 1"_s);
        editor.setText(first);
        QVERIFY(editor.save());
        QVERIFY(!editor.isModified());
        QVERIFY(!editor.isWindowModified());
        QCOMPARE(ReadAll(path), first.toUtf8());
        QCOMPARE(ReadAll(path + u".bak"_s), Template.toUtf8());

        const QString second = QString(Template).replace(u"stada"_s, u"stada 2"_s);
        editor.setText(second);
        editor.findChild<QPushButton*>(u"btSave"_s)->click();
        QCOMPARE(ReadAll(path), second.toUtf8());
        QCOMPARE(ReadAll(path + u".bak"_s), first.toUtf8());
        QVERIFY(editor.messages.isEmpty());
    }

    void saveThatCannotWriteSaysWhyAndLeavesTheFile()
    {
        const QString path = templateFile();
        QVERIFY(QDir().mkdir(path + u".bak"_s)); // the backup cannot be written over a folder
        RecordingEditor editor(path, preview());
        editor.setText(u"<TfrxReport/>"_s);
        QVERIFY(!editor.save());
        QCOMPARE(editor.messages.size(), 1);
        QVERIFY(editor.messages.first().contains(u"Nie można zapisać pliku"_s));
        QCOMPARE(ReadAll(path), Template.toUtf8());
        QVERIFY(editor.isModified());
    }

    void saveIntoAFolderThatIsGoneSaysWhy()
    {
        QVERIFY(QDir(dir_->path()).mkdir(u"pendrive"_s));
        const QString path = templateFile(u"pendrive/próba.fr3"_s);
        RecordingEditor editor(path, preview());
        QVERIFY(QDir(dir_->filePath(u"pendrive"_s)).removeRecursively());
        editor.setText(u"<TfrxReport/>"_s);
        QVERIFY(!editor.save());
        QCOMPARE(editor.messages.size(), 1);
        QVERIFY(!QFile::exists(path));
    }

    void restoreOriginalPutsTheShippedTextIn()
    {
        const QString name = u"Grupy technologiczne.fr3"_s;
        const QString path = templateFile(name);
        RecordingEditor editor(path, preview());
        auto* restore = editor.findChild<QPushButton*>(u"btRestore"_s);
        QVERIFY(restore->isEnabled());

        editor.answer = QMessageBox::No;
        restore->click();
        QCOMPARE(editor.text(), Template);

        editor.answer = QMessageBox::Yes;
        restore->click();
        QCOMPARE(editor.questions.last(),
                 u"Przywrócić szablon dostarczony z programem? Bieżąca treść zostanie zastąpiona."_s);
        QCOMPARE(editor.text(), QString::fromUtf8(ReadAll(u":/templates/"_s + name)));
        QVERIFY(editor.isModified());
        QCOMPARE(ReadAll(path), Template.toUtf8());
    }

    void restoreOriginalIsOnlyForShippedNames()
    {
        RecordingEditor editor(templateFile(u"mój szablon.fr3"_s), preview());
        QVERIFY(!editor.findChild<QPushButton*>(u"btRestore"_s)->isEnabled());
    }

    void closingAModifiedEditorAsks()
    {
        const QString path = templateFile();
        RecordingEditor editor(path, preview());
        editor.show();
        editor.setText(u"<TfrxReport/>"_s);
        editor.answer = QMessageBox::Cancel;
        QTest::keyClick(&editor, Qt::Key_Escape);
        QVERIFY(editor.isVisible());
        QCOMPARE(editor.questions, QStringList{u"Zapisać zmiany w szablonie?"_s});

        editor.answer = QMessageBox::No;
        editor.findChild<QPushButton*>(u"btClose"_s)->click();
        QVERIFY(!editor.isVisible());
        QCOMPARE(ReadAll(path), Template.toUtf8());
    }

    void closingAnUnchangedEditorDoesNotAsk()
    {
        RecordingEditor editor(templateFile(), preview());
        editor.show();
        editor.findChild<QPushButton*>(u"btClose"_s)->click();
        QVERIFY(!editor.isVisible());
        QVERIFY(editor.questions.isEmpty());
    }

    void findWrapsRoundAndSaysWhenThereIsNothing()
    {
        RecordingEditor editor(templateFile(), preview());
        editor.show();
        QVERIFY(QTest::qWaitForWindowActive(&editor));
        auto* code = editor.findChild<CodeEditor*>();
        auto* find = editor.findChild<QLineEdit*>(u"edFind"_s);
        QVERIFY(!find->isVisible());
        QTest::keyClick(&editor, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(find->isVisible());
        QTest::keyClicks(find, u"TfrxReportPage"_s);
        QTest::keyClick(find, Qt::Key_Return);
        QCOMPARE(code->textCursor().blockNumber(), 2);
        QTest::keyClick(find, Qt::Key_F3);
        QCOMPARE(code->textCursor().blockNumber(), 6);
        QTest::keyClick(find, Qt::Key_F3);
        QCOMPARE(code->textCursor().blockNumber(), 2);

        find->setText(u"krowa"_s);
        QTest::keyClick(find, Qt::Key_Return);
        QCOMPARE(editor.findChild<QLabel*>(u"lbFindStatus"_s)->text(), u"Nie znaleziono"_s);
        QTest::keyClick(find, Qt::Key_Escape);
        QVERIFY(!find->isVisible());
        QVERIFY(editor.isVisible());
    }

    void xmlPartsAreColoured()
    {
        QTextDocument document(u"<a b=\"x&#13;y\"><!-- c\n d --></a>"_s);
        XmlHighlighter highlighter(&document);
        highlighter.rehighlight();
        const auto colourAt = [&document](int line, const QString& piece) {
            const QTextBlock block = document.findBlockByNumber(line);
            const auto at = block.text().indexOf(piece);
            for (const QTextLayout::FormatRange& range : block.layout()->formats())
                if (range.start <= at && at < range.start + range.length)
                    return range.format.foreground().color();
            return QColor();
        };
        const auto colourOf = [](XmlHighlighter::Part part) {
            return XmlHighlighter::format(part).foreground().color();
        };
        using Part = XmlHighlighter::Part;
        QCOMPARE(colourAt(0, u"<a"_s), colourOf(Part::Tag));
        QCOMPARE(colourAt(0, u"b="_s), colourOf(Part::AttributeName));
        QCOMPARE(colourAt(0, u"x&"_s), colourOf(Part::AttributeValue));
        QCOMPARE(colourAt(0, u"&#13;"_s), colourOf(Part::CharacterReference));
        QCOMPARE(colourAt(0, u"<!--"_s), colourOf(Part::Comment));
        QCOMPARE(colourAt(1, u"d -->"_s), colourOf(Part::Comment));
        QCOMPARE(colourAt(1, u"</a>"_s), colourOf(Part::Tag));
    }
};

QTEST_MAIN(TestTemplateEditor)
#include "test_template_editor.moc"
