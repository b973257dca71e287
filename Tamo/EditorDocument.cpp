#include "EditorDocument.h"

#include "AppCommands.h"
#include "CodeEditorView.h"
#include "DocumentWindow.h"
#include "EditorWindowView.h"
#include "EncodingName.h"
#include "HelpMenu.h"
#include "RecoveryState.h"
#include "TextDifference.h"
#include "XMLFileSuffixes.h"

#include <QMenuBar>

#include <cstdint>
#include <optional>

namespace {

/// What a file turned out to hold, on its way from a worker.
struct FileDocumentContents : DocumentContents {
    std::unique_ptr<XMLFileDocument> file;
    std::optional<std::int64_t> preparedFor; ///< The generation of the text that `difference` is to.
    std::optional<TextEdit> difference;
};

QString encodingName(const XMLFileDocument& file) {
    const QString name = localizedName(file.encoding());
    return file.bom().empty() ? name : name + QStringLiteral(" (BOM)");
}

QString allFilesFilter() { return QStringLiteral("Todos los archivos (*)"); }

/// "XML (*.xml *.xsd)".
QString filter(const QString& name, const QStringList& suffixes) {
    return QStringLiteral("%1 (*.%2)").arg(name, suffixes.join(QStringLiteral(" *.")));
}

} // namespace

EditorDocument::EditorDocument(std::unique_ptr<XMLFileDocument> file)
    : m_file(std::move(file)),
      m_session(std::make_unique<EditorSession>(m_file->buffer(), encodingName(*m_file))) {
    m_file->buffer().setUndoManager(&m_undoManager);
}

EditorDocument::~EditorDocument() {
    delete m_view;
    m_file->buffer().setUndoManager(nullptr);
}

TextStorage& EditorDocument::storage() { return m_file->buffer().storage(); }

QWidget* EditorDocument::makeView(QWidget* parent) {
    m_view = new EditorWindowView(*m_session, m_undoManager, parent);
    connect(&m_view->codeEditor().textView(), &TextView::selectionChanged, this,
            &EditorDocument::textSelectionChanged);
    if (auto* const window = qobject_cast<DocumentWindow*>(parent->window())) {
        window->menu(DocumentWindow::Menu::edit).addSeparator();
        window->menu(DocumentWindow::Menu::edit).addActions(m_view->findCommands());
    }
    connect(&m_view->codeEditor().textView(), &TextView::filesDropped, this, &EditorDocument::filesDropped);
    return m_view;
}

Document::Write EditorDocument::write() const {
    return [file = m_file, snapshot = m_file->snapshot()](
               const QString& path, const std::stop_token& stop) -> std::expected<void, QString> {
        if (const auto written = file->write(snapshot, path, stop); !written) {
            return std::unexpected(message(written.error(), path));
        }
        return {};
    };
}

Document::Preparation EditorDocument::preparation() const {
    return
        [text = m_file->snapshot(), generation = m_file->buffer().generation()](DocumentContents& contents) {
            auto& other = static_cast<FileDocumentContents&>(contents);
            other.difference = textDifference(text, other.file->snapshot());
            other.preparedFor = generation;
        };
}

void EditorDocument::replaceContents(std::unique_ptr<DocumentContents> contents, const QString& actionName) {
    auto& other = static_cast<FileDocumentContents&>(*contents);
    if (other.preparedFor != m_file->buffer().generation()) {
        other.difference = textDifference(m_file->snapshot(), other.file->snapshot());
    }
    if (other.difference) {
        m_file->buffer().apply(std::span(&*other.difference, 1), actionName);
    }
    m_file->adoptEncoding(std::move(*other.file));
    m_session->setEncodingName(encodingName(*m_file));
}

RecoveryFacts EditorDocument::recoveryFacts() const {
    RecoveryFacts facts;
    facts.encoding = m_file->encoding().converterName();
    facts.bom.assign(m_file->bom().begin(), m_file->bom().end());
    return facts;
}

TextSelection EditorDocument::textSelection() const { return TextSelection::of(m_session->textSelection()); }

void EditorDocument::setTextSelection(TextSelection selection) {
    if (m_view != nullptr) {
        m_view->codeEditor().select(selection.range());
    }
}

// The kind

std::unique_ptr<Document> EditorDocumentType::makeUntitled() const {
    return std::make_unique<EditorDocument>(std::make_unique<XMLFileDocument>());
}

std::expected<std::unique_ptr<DocumentContents>, QString> EditorDocumentType::read(const QString& path,
                                                                                   std::stop_token) const {
    auto file = XMLFileDocument::read(path);
    if (!file) {
        return std::unexpected(message(file.error(), path));
    }
    auto contents = std::make_unique<FileDocumentContents>();
    contents->file = std::move(*file);
    return contents;
}

std::unique_ptr<Document> EditorDocumentType::makeDocument(std::unique_ptr<DocumentContents> contents) const {
    return std::make_unique<EditorDocument>(std::move(static_cast<FileDocumentContents&>(*contents).file));
}

std::unique_ptr<Document> EditorDocumentType::makeDocument(const RecoveredText& recovered) const {
    auto file = std::make_unique<XMLFileDocument>();
    file->setEncoding(StringEncoding::named(recovered.facts.encoding).value_or(StringEncoding::utf8()),
                      recovered.facts.bom);
    // Before there is a session, which takes the text as that of its start.
    file->buffer().storage().replaceCharacters({}, recovered.text);
    auto document = std::make_unique<EditorDocument>(std::move(file));
    document->undoManager().resetClean();
    return document;
}

QStringList EditorDocumentType::openFilters() const {
    return {filter(QStringLiteral("Documentos XML"), XMLFileSuffixes::all()), allFilesFilter()};
}

QStringList EditorDocumentType::saveFilters() const {
    QStringList filters;
    for (const ContentType& type : XMLFileDocument::contentTypes()) {
        const bool isAnyXML = type.fileSuffixes.contains(XMLFileSuffixes::all().front());
        filters += filter(type.name, isAnyXML ? XMLFileSuffixes::all() : type.fileSuffixes);
    }
    return filters << allFilesFilter();
}

QString EditorDocumentType::untitledFileName() const { return QStringLiteral("Sin título.xml"); }

void EditorDocumentType::buildMenus(DocumentWindow& window) const {
    AppCommands::addModes(window.menu(DocumentWindow::Menu::view));
    AppCommands::addPlaces(window.menu(DocumentWindow::Menu::view));
    window.menuBar()->addMenu(AppCommands::makeFormatMenu(&window));
    window.menuBar()->addMenu(AppCommands::makeNodeMenu(&window));
    HelpMenu::fill(window.menu(DocumentWindow::Menu::help), window);
}
